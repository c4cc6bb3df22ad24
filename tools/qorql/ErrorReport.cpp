// Errors as a person reads them on standard error.
#include "ErrorReport.h"

#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "ExitStatus.h"
#include "TableWriter.h"
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

}  // namespace

int reportFailure(const Statement& statement) noexcept {
  try {
    throw;
  } catch (const QORQL_ParseException& error) {
    printError(error.getMessage().view(), placeOf(error, statement));
  } catch (const QORQL_Exception& error) {
    printError(error.getMessage().view(), atStatus(error.getCIMErrorCode()));
  } catch (const CQoriProviderException& error) {
    printError(error.getMessage().view(), atStatus(error.getCode()));
    return kExitPlatform;
  } catch (const QoriBaseException& error) {
    printError(error.getMessage().view(), atStatus(kCimErrFailed));
  } catch (const std::exception& error) {
    printError(error.what(), atStatus(kCimErrFailed));
  }
  return kExitRefused;
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
