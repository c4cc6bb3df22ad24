// The file is read as a whole: one filter that is not valid leaves none to ask.
// SPDX-License-Identifier: Apache-2.0
#include "FilterFile.h"

#include <sstream>

#include "ErrorReport.h"
#include "Statements.h"
#include "TextInput.h"

bool FilterFile::read(const std::string& path) {
  std::istringstream lines(normaliseText(readTextFile(path)));
  std::string text;
  bool areSound = true;
  for (QORuint32 line = 1; std::getline(lines, text); ++line) {
    if (text.find_first_not_of(" \t") != std::string::npos) areSound = add(text, line) && areSound;
  }
  return areSound;
}

bool FilterFile::add(const std::string& text, QORuint32 line) {
  CheckedFilter filter = _session.check(text, line);
  const std::string place = "line " + std::to_string(line) + ": ";
  if (!filter.reason.empty()) {
    reportRefusal(place + "the filter is not valid: " + filter.reason);
    return false;
  }
  if (!_session.passes(filter, place)) return false;
  _filters.add(line, CQLFilterSet::Statement(filter.statement.release()));
  return true;
}

std::string FilterFile::linesThatMatch(const QORSmrPtr<IQoriObject>& instance) {
  _filters.match(instance, instance->getNameSpace(), _found);
  std::string lines;
  for (const CQLFilterSet::Handle line : _found) lines += (lines.empty() ? "" : ",") + std::to_string(line);
  return lines;
}
