// What validation found out about a filter, as text and as JSON.
// SPDX-License-Identifier: Apache-2.0
#include "FilterVerdict.h"

#include "JoinedWords.h"
#include "JsonValue.h"

namespace {

std::string jsonArray(const std::vector<std::string>& texts) {
  std::string array;
  for (const std::string& text : texts) array += (array.empty() ? "" : ", ") + jsonText(text);
  return '[' + array + ']';
}

}  // namespace

std::string textOf(const FilterVerdict& verdict) {
  std::string text = verdict.isValid()
                         ? "valid\t" + joined(verdict.classes, ",") + '\t' + joined(verdict.properties, ",")
                         : "invalid\t" + verdict.reason;
  if (verdict.line != 0) text += "\tline " + std::to_string(verdict.line);
  if (!verdict.name.empty()) text += '\t' + verdict.name;
  return text;
}

std::string jsonOf(const FilterVerdict& verdict) {
  std::string text = "{";
  if (verdict.line != 0) text += "\"line\": " + std::to_string(verdict.line) + ", ";
  if (!verdict.name.empty()) text += "\"name\": " + jsonText(verdict.name) + ", ";
  if (!verdict.isValid()) return text + "\"valid\": false, \"reason\": " + jsonText(verdict.reason) + '}';
  return text + "\"valid\": true, \"classes\": " + jsonArray(verdict.classes) +
         ", \"properties\": " + jsonArray(verdict.properties) + ", \"warnings\": " + jsonArray(verdict.warnings) + '}';
}
