// Errors as a person reads them on standard error.
#include "ErrorReport.h"

#include <exception>
#include <iostream>
#include <sstream>
#include <string>

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
  int status = kExitRefused;
};

Report reportOf(const Statement& statement) {
  const auto text = [](const QoriBaseException& error) { return std::string(error.getMessage().view()); };
  try {
    throw;
  } catch (const QORQL_ParseException& error) {
    return {text(error), placeOf(error, statement)};
  } catch (const QORQL_Exception& error) {
    return {text(error), atStatus(error.getCIMErrorCode())};
  } catch (const CQoriProviderException& error) {
    return {text(error), atStatus(error.getCode()), kExitPlatform};
  } catch (const QoriBaseException& error) {
    return {text(error), atStatus(kCimErrFailed)};
  } catch (const std::exception& error) {
    return {error.what(), atStatus(kCimErrFailed)};
  }
}

}  // namespace

int reportFailure(const Statement& statement, std::optional<std::size_t> faultOffset) noexcept {
  const Report report = reportOf(statement);
  printError(report.message, report.place);
  const TerminalShape terminal = standardErrorShape();
  if (!terminal.isTerminal) return report.status;
  if (!faultOffset) faultOffset = findQuotedName(statement.text, report.message);
  if (faultOffset) std::cerr << lineWithCaret(statement.text, *faultOffset, terminal.width);
  return report.status;
}

// MOF faults come with the source line under each, so their lines stay.
int reportStartFailure() noexcept {
  try {
    throw;
  } catch (const std::exception& error) {
    std::istringstream lines(error.what());
    std::string line;
    std::getline(lines, line);
    printError(line, "");
    while (std::getline(lines, line)) std::cerr << printableText(line) << '\n';
  }
  return kExitPlatform;
}

int reportRefusal(const std::string& message) noexcept {
  printError(message, "");
  return kExitRefused;
}
