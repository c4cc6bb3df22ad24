// The file is read as a whole: one filter that is not valid leaves none to ask.
// SPDX-License-Identifier: Apache-2.0
#include "FilterGroup.h"

#include <sstream>

#include "ErrorReport.h"
#include "Statements.h"
#include "TextInput.h"

bool FilterGroup::readFile(const std::string& path) {
  std::istringstream lines(normaliseText(readTextFile(path)));
  std::string text;
  bool areSound = true;
  for (QORuint32 line = 1; std::getline(lines, text); ++line) {
    if (text.find_first_not_of(" \t") == std::string::npos) continue;
    areSound = take(_session.check(text, line), line) && areSound;
  }
  return areSound;
}

bool FilterGroup::readOne(const std::string& text) { return take(_session.check(text), 0); }

bool FilterGroup::take(CheckedFilter filter, Line line) {
  const std::string place = placeOfFilter(line);
  if (!filter.reason.empty()) {
    reportRefusal(place + "the filter is not valid: " + filter.reason);
    return false;
  }
  if (!_session.passes(filter, place)) return false;
  const CQLFilterSet::Statement statement(filter.statement.release());
  _filters.add(line, statement);
  _statements.emplace(line, statement);
  return true;
}

const FilterGroup::Lines& FilterGroup::matching(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace) {
  _filters.match(instance, nameSpace, _found);
  return _found;
}

std::string FilterGroup::textOf(const Lines& lines, const char* separator) {
  std::string text;
  for (const Line line : lines) text += (text.empty() ? "" : separator) + std::to_string(line);
  return text;
}

std::string placeOfFilter(FilterGroup::Line line) { return line == 0 ? "" : "line " + std::to_string(line) + ": "; }
