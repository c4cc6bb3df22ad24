// Errors as a person reads them on standard error.
// SPDX-License-Identifier: Apache-2.0
#include "ErrorReport.h"

#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/Mof/MofError.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "DisplayText.h"
#include "ExitStatus.h"
#include "QueryText.h"
#include "Terminal.h"
#include "cimom/CQoriProviderException.h"
#include "cmpbase.h"

namespace {

constexpr QORuint32 kCimErrFailed = 1;
constexpr const char* kNoMemory = "there is not enough memory";

void printError(std::string_view message, const std::string& place) {
  std::cerr << "qorql: error: " << printableText(message) << place << '\n';
}

std::string atStatus(QORuint32 cimStatus) { return " (CIM status " + std::to_string(cimStatus) + ")"; }

std::string atLine(QORuint32 line, QORuint32 cimStatus) {
  return " (line " + std::to_string(line) + ", CIM status " + std::to_string(cimStatus) + ")";
}

// A fault that was found after the text was read has no line.
std::string placeOf(const QORQL_ParseException& error, const Statement& statement) {
  if (error.getLineNr() == 0) return atStatus(error.getCIMErrorCode());
  return atLine(statement.firstLine - 1 + error.getLineNr(), error.getCIMErrorCode());
}

// The message and status of the error that is being handled.
struct Report {
  std::string message;
  std::string place;
  std::optional<std::size_t> offset{};  // of the word at fault
  int status = kExitRefused;
};

std::optional<std::size_t> offsetOf(const QoriBaseException& error) {
  const QORQL_Fault* const fault = QORQL_faultOf(error);
  return fault != nullptr && fault->hasPlace() ? std::optional<std::size_t>(fault->offset) : std::nullopt;
}

Report reportOf(const Statement& statement) {
  const auto text = [](const QoriBaseException& error) { return std::string(error.getMessage().view()); };
  try {
    throw;
  } catch (const QORQL_ParseException& error) {
    return {text(error), placeOf(error, statement), offsetOf(error)};
  } catch (const QORQL_Exception& error) {
    return {text(error), atStatus(error.getCIMErrorCode()), offsetOf(error)};
  } catch (const CQoriProviderException& error) {
    return {text(error), atStatus(error.getCode()), {}, kExitPlatform};
  } catch (const QoriBaseException& error) {
    return {text(error), atStatus(kCimErrFailed), offsetOf(error)};
  } catch (const std::bad_alloc&) {
    return {kNoMemory, atStatus(kCimErrFailed)};
  } catch (const std::exception& error) {
    return {error.what(), atStatus(kCimErrFailed)};
  }
}

// Byte of a text at which its n-th character begins, counted from 0.
std::size_t offsetOfCharacter(std::string_view text, std::size_t count) {
  std::size_t offset = 0;
  for (; offset < text.size(); ++offset) {
    const bool begins = (text[offset] & 0xC0) != 0x80;
    if (begins && count-- == 0) break;
  }
  return offset;
}

// A fault with its line of the source, the caret under what a terminal shows there.
void printMofFault(const MofDiagnostic& fault, const char* kind) {
  const TerminalShape terminal = standardErrorShape();
  const std::size_t width = terminal.isTerminal ? terminal.width : std::string::npos;
  const std::string place =
      fault.line == 0 ? "" : ':' + std::to_string(fault.line) + ':' + std::to_string(fault.column);
  std::cerr << kind << printableText(fault.file + place + ": " + fault.message) << '\n';
  if (fault.line == 0) return;
  std::cerr << lineWithCaret(fault.sourceLine, offsetOfCharacter(fault.sourceLine, fault.caret), width);
}

void printMofFaults(const std::vector<MofDiagnostic>& faults) {
  const char* kind = "qorql: error: ";
  for (const MofDiagnostic& fault : faults) printMofFault(fault, std::exchange(kind, ""));
  if (faults.size() >= MofException::kMaximumFaults) {
    std::cerr << "No more than " << MofException::kMaximumFaults << " faults are shown at once.\n";
  }
}

}  // namespace

int reportFailure(const Statement& statement, const QORQL_Hint& hint) noexcept {
  const Report report = reportOf(statement);
  printError(report.message, report.place);
  const TerminalShape terminal = standardErrorShape();
  const bool hasCaret = terminal.isTerminal && report.offset;
  if (hasCaret) std::cerr << lineWithCaret(statement.text, *report.offset, terminal.width);
  printHint(hint, statement.text, "", hasCaret ? *report.offset : std::string::npos);
  return report.status;
}

void printHint(const QORQL_Hint& hint, const std::string& text, const std::string& place, std::size_t shown) {
  if (hint.text.empty()) return;
  std::cerr << "qorql: hint: " << place << printableText(hint.text) << '\n';
  if (!hint.hasPlace() || hint.offset == shown) return;
  const TerminalShape terminal = standardErrorShape();
  std::cerr << lineWithCaret(text, hint.offset, terminal.isTerminal ? terminal.width : std::string::npos);
}

int reportStartFailure() noexcept {
  try {
    throw;
  } catch (const MofException& refusal) {
    printMofFaults(refusal.getDiagnostics());
  } catch (const std::bad_alloc&) {
    printError(kNoMemory, "");
  } catch (const std::exception& error) {
    printError(error.what(), "");
  }
  return kExitPlatform;
}

void reportMofWarnings(const MofFaults& faults) {
  for (const MofDiagnostic& fault : faults.shown) printMofFault(fault, "qorql: warning: ");
  std::cerr << "qorql: warning: MOF has " << faults.count << (faults.count == 1 ? " fault" : " faults");
  if (faults.count > faults.shown.size()) std::cerr << ", of which " << faults.shown.size() << " are shown";
  std::cerr << "; what is at fault is left out\n";
}

int reportRefusal(const std::string& message) noexcept {
  printError(message, "");
  return kExitRefused;
}
