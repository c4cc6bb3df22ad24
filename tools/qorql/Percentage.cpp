// Which columns are percentages, and how people read those.
// SPDX-License-Identifier: Apache-2.0
#include "Percentage.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace {

constexpr double kMostShown = 1e15;  // from here on a double has no such digits

bool isPercent(const CimQualifier* qualifier) {
  return qualifier != nullptr && !qualifier->value.IsNull() &&
         QORString::equalIgnoringCase(qualifier->value->toString().view(), "percent");
}

// 12.50 is 12.5, 3.00 is 3 and -0.00 is 0.
std::string withoutIdleDigits(std::string text) {
  text.resize(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text == "-0" ? "0" : text;
}

}  // namespace

bool isPercentageName(std::string_view name) {
  constexpr std::string_view kWord = "percent";
  constexpr std::string_view kOther = "il";
  const auto isSame = [](char letter, char small) { return (letter | 0x20) == small; };
  const auto place = std::search(name.begin(), name.end(), kWord.begin(), kWord.end(), isSame);
  if (place == name.end()) return false;
  const std::string_view rest = name.substr(static_cast<std::size_t>(place - name.begin()) + kWord.size());
  return !QORString::equalIgnoringCase(rest.substr(0, kOther.size()), kOther);
}

bool hasPercentageUnit(const CimPropertyDeclaration& property) {
  return isPercent(property.findQualifier("PUnit")) || isPercent(property.findQualifier("Units"));
}

std::string percentageText(const IQoriValue& value) {
  const QoriScalar scalar = value.scalar();
  if (scalar.kind != QoriScalarKind::Real || !(std::abs(scalar.r) < kMostShown)) {
    return std::string(value.toString().view());
  }
  char digits[32];
  char* const end = std::to_chars(std::begin(digits), std::end(digits), scalar.r, std::chars_format::fixed, 2).ptr;
  return withoutIdleDigits(std::string(digits, end));
}
