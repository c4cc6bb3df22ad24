// What the codes of a property mean, as its qualifiers ValueMap and Values tell.
// SPDX-License-Identifier: Apache-2.0
#include "ValueTexts.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <system_error>

namespace {

std::vector<std::string> textsOf(const CimPropertyDeclaration& property, const char* name) {
  std::vector<std::string> texts;
  const CimQualifier* const qualifier = property.findQualifier(name);
  if (qualifier == nullptr || qualifier->value.IsNull() || !qualifier->value->isArray()) return texts;
  QORValSlistIterator<QORSmrPtr<IQoriValue>> each(*qualifier->value->getArray());
  while (++each) texts.emplace_back(each.key().IsNull() ? "" : each.key()->toString().view());
  return texts;
}

// A code of 64 bits, signed or not.
struct Number {
  bool isNegative;
  QORuint64 magnitude;

  bool operator==(const Number& other) const = default;
  bool operator<=(const Number& other) const {
    if (isNegative != other.isNegative) return isNegative;
    return isNegative ? magnitude >= other.magnitude : magnitude <= other.magnitude;
  }
};

std::optional<Number> numberOf(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative) text.remove_prefix(1);
  QORuint64 magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude);
  if (error != std::errc() || end != text.data() + text.size()) return {};
  return Number{isNegative && magnitude != 0, magnitude};
}

bool isInRange(std::string_view range, const Number& number) {
  constexpr std::string_view kTo = "..";
  const std::size_t to = range.find(kTo);
  if (to == std::string_view::npos) return false;
  const std::string_view least = range.substr(0, to);
  const std::string_view greatest = range.substr(to + kTo.size());
  const std::optional<Number> first = numberOf(least);
  const std::optional<Number> last = numberOf(greatest);
  const bool isFromFirst = least.empty() || (first && *first <= number);
  return isFromFirst && (greatest.empty() || (last && number <= *last));
}

}  // namespace

ValueTexts::ValueTexts(const CimPropertyDeclaration& property) {
  const std::vector<std::string> codes = textsOf(property, "ValueMap");
  const std::vector<std::string> texts = textsOf(property, "Values");
  const std::size_t count = codes.empty() ? texts.size() : codes.size();
  for (std::size_t i = 0; i < count; ++i) {
    _entries.push_back({codes.empty() ? std::to_string(i) : codes[i], i < texts.size() ? texts[i] : ""});
  }
}

std::string ValueTexts::textOf(const IQoriValue& value) const {
  const std::string code(value.toString().view());
  const std::optional<Number> number = numberOf(code);
  const auto isNamed = [&](const Entry& entry) {
    return entry.code == code || (number && numberOf(entry.code) == number);
  };
  auto found = std::find_if(_entries.begin(), _entries.end(), isNamed);
  if (found == _entries.end() && number) {
    // A range without ends is for what no other one holds.
    const auto holds = [&](const Entry& entry) { return entry.code != ".." && isInRange(entry.code, *number); };
    found = std::find_if(_entries.begin(), _entries.end(), holds);
    if (found == _entries.end()) {
      found = std::find_if(_entries.begin(), _entries.end(), [](const Entry& entry) { return entry.code == ".."; });
    }
  }
  return found == _entries.end() ? "" : found->text;
}
