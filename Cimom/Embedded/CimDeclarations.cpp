// Look-ups in declarations, and what a sink does that knows neither rows nor headings.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/CimDeclarations.h"

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Embedded/DeclarationHelpers.h"

const CimQualifier* CimPropertyDeclaration::findQualifier(const char* qualifier) const {
  return embedded::findQualifier(qualifiers, qualifier);
}

bool CimPropertyDeclaration::hasFlag(const char* qualifier) const { return embedded::hasFlag(qualifiers, qualifier); }

std::unique_ptr<CimInstanceMaker> CimDeclarationSink::instanceMaker(const QORString& /*nameSpace*/,
                                                                    const QORString& /*className*/,
                                                                    const std::vector<QORString>& /*propertyNames*/) {
  return nullptr;
}

bool CimDeclarationSink::declareClasses(const std::vector<CimClassHeading>& /*headings*/,
                                        const std::shared_ptr<CimDeclarationSource>& /*source*/) {
  return false;
}

std::unique_ptr<CimDeclarationSink> CimDeclarationSink::makeEmpty() const { return nullptr; }

// At once.
bool CimInstanceMaker::createLater(std::string_view rows, QORuint32 count,
                                   const std::shared_ptr<const void>& /*owner*/) {
  std::string_view row;
  for (; count != 0; --count) {
    if (!takeCimRow(rows, row) || !create(row)) return false;
  }
  return true;
}
