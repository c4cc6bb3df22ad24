// Arithmetic and comparison of the model's values.
// SPDX-License-Identifier: Apache-2.0
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

#include "FilterModel.h"

namespace filter_model {

static_assert(LDBL_MANT_DIG >= 64, "a long double holds every 64-bit integer");

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string folded(const std::string& text) {
  std::string result;
  for (const char c : text) result += lower(c);
  return result;
}

using Order = std::optional<int>;  // none: no order

Order orderOf(long double a, long double b) { return a < b ? -1 : a > b ? 1 : 0; }
int orderOf(const std::string& a, const std::string& b) { return a < b ? -1 : a > b ? 1 : 0; }

long double exact(const Value& number) {
  return number.kind == Kind::Real ? static_cast<long double>(number.real) : static_cast<long double>(number.integer);
}

// A datetime in UTC, in microseconds since the year 0 as if all months had 31 days.
Wide instantOf(const std::string& text) {
  const auto part = [&](std::size_t from, std::size_t size) { return Wide(std::stoll(text.substr(from, size))); };
  const Wide days = (part(0, 4) * 12 + part(4, 2)) * 31 + part(6, 2);
  const Wide minutes = (days * 24 + part(8, 2)) * 60 + part(10, 2) - (text[21] == '-' ? -1 : 1) * part(22, 3);
  return (minutes * 60 + part(12, 2)) * 1000000 + part(15, 6);
}

Order objectOrder(const Thing& a, const Thing& b);

// Of two values of one declaration.
Order likeOrder(const Value& a, const Value& b) {
  if (a.isNone() || b.isNone()) return int(!a.isNone()) - int(!b.isNone());
  switch (a.kind) {
    case Kind::Integer:
    case Kind::Real:
      return orderOf(exact(a), exact(b));
    case Kind::Boolean:
      return int(a.truth) - int(b.truth);
    case Kind::DateTime:
      return orderOf(static_cast<long double>(instantOf(a.text)), static_cast<long double>(instantOf(b.text)));
    case Kind::Object:
      return objectOrder(*a.object, *b.object);
    case Kind::Array:
      return compare(a, "=", b) == Truth::True ? Order(0) : std::nullopt;
    default:
      return orderOf(a.text, b.text);
  }
}

// By class, then by the first property that differs.
Order objectOrder(const Thing& a, const Thing& b) {
  Order order = orderOf(folded(a.className), folded(b.className));
  for (std::size_t i = 0; order == 0 && i < a.properties.size(); ++i) {
    order = likeOrder(a.properties[i].second, b.read(a.properties[i].first));
  }
  return order;
}

bool satisfies(const Order& order, const std::string& op) {
  if (op == "<>") return order != 0;
  if (!order) return false;
  if (op == "=") return *order == 0;
  if (op == "<") return *order < 0;
  if (op == ">") return *order > 0;
  return op == "<=" ? *order <= 0 : *order >= 0;
}

Wide asSint64(const Value& value) { return static_cast<std::int64_t>(static_cast<std::uint64_t>(value.integer)); }

// A uint64 beside a signed integer is taken as one of 64 bits.
Order numberOrder(const Value& a, const Value& b) {
  const bool areIntegers = a.kind == Kind::Integer && b.kind == Kind::Integer;
  if (!areIntegers || a.isUnsigned() == b.isUnsigned()) return orderOf(exact(a), exact(b));
  return orderOf(static_cast<long double>(asSint64(a)), static_cast<long double>(asSint64(b)));
}

// A boolean, or a text that says one: 1 or 0; otherwise none.
std::optional<int> saidTruth(const Value& value) {
  if (value.kind == Kind::Boolean) return value.truth ? 1 : 0;
  if (value.kind != Kind::Text) return std::nullopt;
  if (folded(value.text) == "true") return 1;
  return folded(value.text) == "false" ? std::optional<int>(0) : std::nullopt;
}

bool holdsForScalars(const Value& a, const std::string& op, const Value& b) {
  if (a.isNumber() && b.isNumber()) return satisfies(numberOrder(a, b), op);
  if (a.kind == Kind::Boolean || b.kind == Kind::Boolean) {
    const std::optional<int> left = saidTruth(a);
    const std::optional<int> right = saidTruth(b);
    return left && right && satisfies(*left - *right, op);
  }
  return a.kind == b.kind && satisfies(likeOrder(a, b), op);
}

bool areEqualElements(const Value& a, const Value& b) {
  if (a.isNone() || b.isNone()) return a.isNone() && b.isNone();
  return likeOrder(a, b) == 0;
}

Truth compareArrays(const Value& a, const std::string& op, const Value& b) {
  const auto isNumeric = [](const Value& array) {
    return array.type.find("int") != std::string::npos || array.type.starts_with("real");
  };
  const bool areAlike = a.type == b.type || (isNumeric(a) && isNumeric(b));
  if (a.kind != b.kind || !areAlike || (op != "=" && op != "<>")) return Truth::None;
  bool areEqual = a.elements.size() == b.elements.size();
  for (std::size_t i = 0; areEqual && i < a.elements.size(); ++i) {
    areEqual = areEqualElements(a.elements[i], b.elements[i]);
  }
  return areEqual == (op == "=") ? Truth::True : Truth::False;
}

constexpr Wide kLeast = std::numeric_limits<std::int64_t>::min();
constexpr Wide kGreatest = std::numeric_limits<std::int64_t>::max();
constexpr Wide kGreatestUnsigned = std::numeric_limits<std::uint64_t>::max();

Value fitted(Wide number, bool prefersUnsigned) {
  const bool fitsUnsigned = number >= 0 && number <= kGreatestUnsigned;
  const bool fitsSigned = number >= kLeast && number <= kGreatest;
  if (fitsUnsigned && (prefersUnsigned || !fitsSigned)) return integerValue("uint64", number);
  return fitsSigned ? integerValue("sint64", number) : Value();
}

Value combineReals(double a, char op, double b) {
  if (op == '+') return realValue("real64", a + b);
  if (op == '-') return realValue("real64", a - b);
  return realValue("real64", op == '*' ? a * b : a / b);
}

double toReal(const Value& number) {
  return number.kind == Kind::Real ? number.real : static_cast<double>(number.integer);
}

Value combineIntegers(const Value& a, char op, const Value& b) {
  const bool prefersUnsigned = a.isUnsigned() && (a.type == "uint64" || (op != '-' && b.isUnsigned()));
  Wide result = 0;
  if (op == '*' && __builtin_mul_overflow(a.integer, b.integer, &result)) return {};
  if (op == '+') result = a.integer + b.integer;
  if (op == '-') result = a.integer - b.integer;
  if (op == '/') result = a.integer / b.integer;
  return fitted(result, prefersUnsigned);
}

}  // namespace

bool areEqualNames(const std::string& a, const std::string& b) { return folded(a) == folded(b); }

Value textValue(const std::string& text) {
  Value value;
  value.kind = Kind::Text;
  value.type = "string";
  value.text = text;
  return value;
}

Value integerValue(const std::string& type, Wide number) {
  Value value;
  value.kind = Kind::Integer;
  value.type = type;
  value.integer = number;
  return value;
}

Value realValue(const std::string& type, double number) {
  Value value;
  value.kind = Kind::Real;
  value.type = type;
  value.real = number;
  return value;
}

Value booleanValue(bool truth) {
  Value value;
  value.kind = Kind::Boolean;
  value.type = "boolean";
  value.truth = truth;
  return value;
}

Value combine(const Value& a, char op, const Value& b) {
  if (op == '+' && a.kind == Kind::Text && b.kind == Kind::Text) return textValue(a.text + b.text);
  if (!a.isNumber() || !b.isNumber()) return {};
  if (op == '/' && exact(b) == 0) return {};
  const bool areIntegers = a.kind == Kind::Integer && b.kind == Kind::Integer;
  return areIntegers ? combineIntegers(a, op, b) : combineReals(toReal(a), op, toReal(b));
}

// An unsigned number widens; the smallest signed one has no negation in its type.
Value negate(const Value& value) {
  static const std::map<std::string, std::pair<const char*, int>> kResults = {
      {"uint8", {"sint16", 16}},  {"uint16", {"sint32", 32}}, {"uint32", {"sint64", 64}}, {"sint8", {"sint8", 8}},
      {"sint16", {"sint16", 16}}, {"sint32", {"sint32", 32}}, {"sint64", {"sint64", 64}}};
  if (value.kind == Kind::Real) return realValue(value.type, -value.real);
  const auto result = kResults.find(value.type);
  if (value.kind != Kind::Integer || result == kResults.end()) return {};
  const Wide greatest = (Wide(1) << (result->second.second - 1)) - 1;
  return -value.integer > greatest ? Value() : integerValue(result->second.first, -value.integer);
}

Truth compare(const Value& a, const std::string& op, const Value& b) {
  if (a.isNone() || b.isNone()) return Truth::None;
  if (a.kind == Kind::Array || b.kind == Kind::Array) return compareArrays(a, op, b);
  return holdsForScalars(a, op, b) ? Truth::True : Truth::False;
}

Truth compareElements(const Value& a, const std::string& op, const Value& b, bool isLeftAsked, bool isAny) {
  const Value& array = isLeftAsked ? a : b;
  if (a.isNone() || b.isNone() || array.kind != Kind::Array) return Truth::None;
  std::size_t count = 0;
  for (const Value& element : array.elements) {
    const Truth truth = isLeftAsked ? compare(element, op, b) : compare(a, op, element);
    count += truth == Truth::True ? 1 : 0;
  }
  const bool holds = isAny ? count > 0 : count > 0 && count == array.elements.size();
  return holds ? Truth::True : Truth::False;
}

}  // namespace filter_model
