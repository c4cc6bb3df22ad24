// What the codes of a property mean, as its qualifiers ValueMap and Values, BitMap and BitValues tell.
// SPDX-License-Identifier: Apache-2.0
#include "ValueTexts.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>
#include <utility>

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

std::optional<Number> numberIn(std::string_view text) {
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
  const std::optional<Number> first = numberIn(least);
  const std::optional<Number> last = numberIn(greatest);
  const bool isFromFirst = least.empty() || (first && *first <= number);
  return isFromFirst && (greatest.empty() || (last && number <= *last));
}

// The codes of one qualifier with the texts of another; texts alone count from 0.
std::vector<ValueTexts::Entry> entriesOf(const CimPropertyDeclaration& property, const char* codeName,
                                         const char* textName) {
  const std::vector<std::string> codes = textsOf(property, codeName);
  const std::vector<std::string> texts = textsOf(property, textName);
  std::vector<ValueTexts::Entry> entries;
  const std::size_t count = codes.empty() ? texts.size() : codes.size();
  for (std::size_t i = 0; i < count; ++i) {
    entries.push_back({codes.empty() ? std::to_string(i) : codes[i], i < texts.size() ? texts[i] : ""});
  }
  return entries;
}

std::string bitName(const std::string& position) { return "bit " + position; }

}  // namespace

ValueTexts::ValueTexts(const CimPropertyDeclaration& property) : _entries(entriesOf(property, "ValueMap", "Values")) {
  _valueCount = _entries.size();
  for (Entry& bit : entriesOf(property, "BitMap", "BitValues")) {
    _entries.push_back({bitName(bit.code), std::move(bit.text)});
  }
}

std::string ValueTexts::textOf(const IQoriValue& value) const {
  const std::string code(value.toString().view());
  const std::string text = valueText(code);
  const std::optional<Number> number = numberIn(code);
  const bool hasBits = _valueCount < _entries.size() && number && !number->isNegative;
  return text.empty() && hasBits ? bitTexts(number->magnitude) : text;
}

std::string ValueTexts::valueText(const std::string& code) const {
  const auto end = _entries.begin() + static_cast<std::ptrdiff_t>(_valueCount);
  const std::optional<Number> number = numberIn(code);
  const auto isNamed = [&](const Entry& entry) {
    return entry.code == code || (number && numberIn(entry.code) == number);
  };
  auto found = std::find_if(_entries.begin(), end, isNamed);
  if (found == end && number) {
    // A range without ends is for what no other one holds.
    const auto holds = [&](const Entry& entry) { return entry.code != ".." && isInRange(entry.code, *number); };
    found = std::find_if(_entries.begin(), end, holds);
    if (found == end) found = std::find_if(_entries.begin(), end, [](const Entry& e) { return e.code == ".."; });
  }
  return found == end ? "" : found->text;
}

std::string ValueTexts::bitTexts(QORuint64 bits) const {
  std::string texts;
  bool hasText = false;
  for (unsigned position = 0; bits != 0; ++position, bits >>= 1U) {
    if ((bits & 1U) == 0) continue;
    const std::string name = bitName(std::to_string(position));
    const auto isNamed = [&name](const Entry& entry) { return entry.code == name && !entry.text.empty(); };
    const auto found =
        std::find_if(_entries.begin() + static_cast<std::ptrdiff_t>(_valueCount), _entries.end(), isNamed);
    hasText = hasText || found != _entries.end();
    texts += (texts.empty() ? "" : ", ") + (found == _entries.end() ? name : found->text);
  }
  return hasText ? texts : "";
}
