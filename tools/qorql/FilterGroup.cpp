// The file is read as a whole: one filter that is not valid leaves none to ask.
// SPDX-License-Identifier: Apache-2.0
#include "FilterGroup.h"

#include "DisplayText.h"
#include "ErrorReport.h"
#include "FilterFile.h"
#include "JsonValue.h"
#include "Statements.h"
#include "TextInput.h"

bool FilterGroup::readFile(const std::string& path) {
  const std::vector<FileFilter> filters = splitFilters(normaliseText(readTextFile(path)));
  const std::map<QORuint32, std::string> doubled = doubledNames(filters);
  for (const auto& [line, complaint] : doubled) reportRefusal("line " + std::to_string(line) + ": " + complaint);
  if (filters.empty()) reportRefusal(printableText(path) + " holds no filter");
  bool areSound = doubled.empty() && !filters.empty();
  for (const FileFilter& filter : filters) {
    if (!filter.name.empty()) _names.emplace(filter.line, filter.name);
    areSound = take(_session.check(filter), filter.line) && areSound;
  }
  return areSound;
}

bool FilterGroup::readOne(const std::string& text) { return take(_session.check(text), 0); }

bool FilterGroup::take(CheckedFilter filter, Line line) {
  const std::string place = placeOf(line);
  _lacksClass = _lacksClass || filter.lacksClass;
  if (!filter.reason.empty()) {
    reportRefusal(place + "the filter is not valid: " + filter.reason);
    _session.tellHint(filter, place);
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

std::string FilterGroup::textOf(const Lines& lines) const {
  std::string text;
  for (const Line line : lines) {
    const std::string name = nameOf(line);
    text += (text.empty() ? "" : ",") + (name.empty() ? std::to_string(line) : printableText(name));
  }
  return text;
}

std::string FilterGroup::jsonOf(const Lines& lines) const {
  std::string text;
  for (const Line line : lines) {
    const std::string name = nameOf(line);
    text += (text.empty() ? "" : ", ") + (name.empty() ? std::to_string(line) : jsonText(name));
  }
  return '[' + text + ']';
}

std::string FilterGroup::placeOf(Line line) const {
  if (line == 0) return {};
  return placeOfFilter({.name = printableText(nameOf(line)), .text = "", .line = static_cast<QORuint32>(line)});
}

std::string FilterGroup::nameOf(Line line) const {
  const auto found = _names.find(line);
  return found == _names.end() ? "" : found->second;
}
