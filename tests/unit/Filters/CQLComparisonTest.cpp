// Every comparison operator for every pair of CIM types, as scalars and in
// arrays, against a second, naive account of what the pair means.
// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <optional>

#include "FilterWorld.h"

namespace {

static_assert(LDBL_MANT_DIG >= 64, "the naive account holds every 64-bit integer in a long double");

enum class Kind { Unsigned, Signed, Real, Text, Boolean, DateTime, Char };

struct Type {
  const char* name;
  Kind kind;
  int bits;  // of an integer
  std::vector<const char*> samples;
};

const std::vector<Type>& types() {
  static const std::vector<Type> all = {
      {"uint8", Kind::Unsigned, 8, {"0", "5", "200", "255"}},
      {"uint16", Kind::Unsigned, 16, {"5", "200", "65535", "0"}},
      {"uint32", Kind::Unsigned, 32, {"200", "4294967295", "5", "65535"}},
      {"uint64", Kind::Unsigned, 64, {"5", "9223372036854775808", "18446744073709551615", "4294967295"}},
      {"sint8", Kind::Signed, 8, {"-128", "-1", "5", "127"}},
      {"sint16", Kind::Signed, 16, {"-32768", "-1", "200", "5"}},
      {"sint32", Kind::Signed, 32, {"-2147483648", "-1", "5", "65535"}},
      {"sint64", Kind::Signed, 64, {"-9223372036854775808", "-1", "9223372036854775807", "5"}},
      {"real32", Kind::Real, 0, {"5.0", "-1.5", "0.5", "200.0"}},
      {"real64", Kind::Real, 0, {"9223372036854775808.0", "5.0", "-1.0", "200.5"}},
      {"string", Kind::Text, 0, {"\"5\"", "\"abc\"", "\"TRUE\"", "\"false\""}},
      {"boolean", Kind::Boolean, 0, {"TRUE", "FALSE", "TRUE", "FALSE"}},
      {"datetime",
       Kind::DateTime,
       0,
       {"\"20240101120000.000000+000\"", "\"20240101130000.000000+060\"", "\"20231231235959.999999+000\"",
        "\"20240101120000.000001+000\""}},
      {"char16", Kind::Char, 0, {"'a'", "'b'", "'5'", "'B'"}},
  };
  return all;
}
constexpr std::size_t kSamples = 4;

// The naive account of a datetime: its place in the order of the samples, of
// which the first two are the same instant.
constexpr std::array<int, kSamples> kInstants = {2, 2, 1, 3};

const std::vector<std::string>& operators() {
  static const std::vector<std::string> all = {"=", "<>", "<", ">", "<=", ">="};
  return all;
}

bool isNumber(const Type& type) { return type.kind <= Kind::Real; }
long double number(const char* sample) { return std::strtold(sample, nullptr); }
std::string plainText(const char* sample) { return std::string(sample).substr(1, std::string(sample).size() - 2); }

int orderOf(long double a, long double b) { return a < b ? -1 : a > b ? 1 : 0; }

// An integer as the other type holds it: cut to its width.
long double converted(const char* sample, const Type& target) {
  const bool isNegative = sample[0] == '-';
  std::uint64_t bits = std::strtoull(sample + (isNegative ? 1 : 0), nullptr, 10);
  if (isNegative) bits = 0 - bits;
  if (target.bits < 64) bits &= (std::uint64_t{1} << target.bits) - 1;
  const bool isBelowZero = target.kind == Kind::Signed && (bits >> (target.bits - 1)) != 0;
  return static_cast<long double>(bits) - (isBelowZero ? std::scalbn(1.0L, target.bits) : 0.0L);
}

const Type& typeNamed(const std::string& name) {
  for (const Type& type : types()) {
    if (type.name == name) return type;
  }
  throw std::out_of_range(name);
}

// What each pair of integers is converted to: 1 the right type, 2 the left, 3 to
// 5 sint16, sint32 and sint64; by right type and left type.
int conversion(const Type& left, const Type& right) {
  static const std::map<std::string, std::map<std::string, int>> kCodes = {
      {"uint8",
       {{"sint8", 3}, {"sint16", 2}, {"sint32", 2}, {"sint64", 2}, {"uint16", 2}, {"uint32", 2}, {"uint64", 2}}},
      {"uint16",
       {{"sint8", 4}, {"sint16", 4}, {"sint64", 5}, {"sint32", 2}, {"uint32", 2}, {"uint64", 2}, {"uint8", 1}}},
      {"uint32",
       {{"sint8", 5}, {"sint16", 5}, {"sint32", 5}, {"sint64", 5}, {"uint64", 2}, {"uint8", 1}, {"uint16", 1}}},
      {"uint64",
       {{"sint8", 5}, {"sint16", 5}, {"sint32", 5}, {"sint64", 5}, {"uint8", 1}, {"uint16", 1}, {"uint32", 1}}},
      {"sint8",
       {{"uint8", 3}, {"uint16", 4}, {"uint32", 5}, {"uint64", 5}, {"sint16", 2}, {"sint32", 2}, {"sint64", 2}}},
      {"sint16",
       {{"uint16", 4}, {"uint32", 5}, {"uint64", 5}, {"sint32", 2}, {"sint64", 2}, {"uint8", 1}, {"sint8", 1}}},
      {"sint32",
       {{"uint32", 5}, {"uint64", 5}, {"sint64", 2}, {"uint8", 1}, {"uint16", 1}, {"sint8", 1}, {"sint16", 1}}},
      {"sint64",
       {{"uint64", 5}, {"uint8", 1}, {"uint16", 1}, {"uint32", 1}, {"sint8", 1}, {"sint16", 1}, {"sint32", 1}}}};
  return std::string(left.name) == right.name ? 0 : kCodes.at(right.name).at(left.name);
}

const Type& commonType(const Type& left, const Type& right) {
  switch (conversion(left, right)) {
    case 1:
      return right;
    case 3:
      return typeNamed("sint16");
    case 4:
      return typeNamed("sint32");
    case 5:
      return typeNamed("sint64");
    default:
      return left;
  }
}

std::optional<int> truthOfText(const std::string& text) {
  if (text == "TRUE") return 1;
  if (text == "false") return 0;
  return std::nullopt;
}
std::optional<int> truthOf(const Type& type, const char* sample) {
  if (type.kind == Kind::Boolean) return std::string(sample) == "TRUE" ? 1 : 0;
  return type.kind == Kind::Text ? truthOfText(plainText(sample)) : std::nullopt;
}

int instantOf(const char* sample) {
  for (std::size_t i = 0; i < kSamples; ++i) {
    if (std::string(typeNamed("datetime").samples[i]) == sample) return kInstants[i];
  }
  throw std::out_of_range(sample);
}

// The order of two scalars of a filter's comparison; none: they do not compare.
std::optional<int> scalarOrder(const Type& left, const char* a, const Type& right, const char* b) {
  if (isNumber(left) && isNumber(right)) {
    if (left.kind == Kind::Real || right.kind == Kind::Real) return orderOf(number(a), number(b));
    const Type& common = commonType(left, right);
    return orderOf(converted(a, common), converted(b, common));
  }
  if (left.kind == Kind::Boolean || right.kind == Kind::Boolean) {
    const std::optional<int> leftTruth = truthOf(left, a);
    const std::optional<int> rightTruth = truthOf(right, b);
    if (!leftTruth || !rightTruth) return std::nullopt;
    return *leftTruth - *rightTruth;
  }
  if (left.kind != right.kind) return std::nullopt;
  if (left.kind == Kind::DateTime) return instantOf(a) - instantOf(b);
  return plainText(a).compare(plainText(b));
}

// Whether two elements of arrays that are compared as wholes are equal: numbers by their value.
bool areEqualElements(const Type& left, const char* a, const Type& right, const char* b) {
  if (isNumber(left) && isNumber(right)) return number(a) == number(b);
  return scalarOrder(left, a, right, b) == 0;
}

bool satisfies(std::optional<int> order, const std::string& op) {
  if (!order) return false;
  if (op == "=") return *order == 0;
  if (op == "<>") return *order != 0;
  if (op == "<") return *order < 0;
  if (op == ">") return *order > 0;
  return op == "<=" ? *order <= 0 : *order >= 0;
}

// Arrays by sample: one element, two, none, two the other way round.
std::vector<const char*> elementsOf(const Type& type, std::size_t sample) {
  const char* const first = type.samples[0];
  const char* const second = type.samples[1];
  if (sample == 0) return {first};
  if (sample == 1) return {first, second};
  return sample == 2 ? std::vector<const char*>{} : std::vector<const char*>{second, first};
}

bool wholeArraysHold(const Type& left, std::size_t i, const Type& right, std::size_t j, const std::string& op) {
  const bool areComparable = left.kind == right.kind || (isNumber(left) && isNumber(right));
  if ((op != "=" && op != "<>") || !areComparable) return false;
  const std::vector<const char*> a = elementsOf(left, i);
  const std::vector<const char*> b = elementsOf(right, j);
  bool areEqual = a.size() == b.size();
  for (std::size_t k = 0; areEqual && k < a.size(); ++k) {
    areEqual = areEqualElements(left, a[k], right, b[k]);
  }
  return areEqual == (op == "=");
}

struct Form {
  const char* text;  // %l and %r the types' names, %o the operator
  bool (*expected)(const Type& left, std::size_t i, const Type& right, std::size_t j, const std::string& op);
};

void PrintTo(const Form& form, std::ostream* out) { *out << form.text; }

template <bool isAny, class Holds>
bool overElements(const std::vector<const char*>& elements, const Holds& holds) {
  std::size_t count = 0;
  for (const char* element : elements) count += holds(element) ? 1 : 0;
  return isAny ? count != 0 : !elements.empty() && count == elements.size();
}
template <bool isAny>
bool leftElementsHold(const Type& left, std::size_t i, const Type& right, std::size_t j, const std::string& op) {
  return overElements<isAny>(elementsOf(left, i), [&](const char* element) {
    return satisfies(scalarOrder(left, element, right, right.samples[j]), op);
  });
}
template <bool isAny>
bool rightElementsHold(const Type& left, std::size_t i, const Type& right, std::size_t j, const std::string& op) {
  return overElements<isAny>(elementsOf(right, j), [&](const char* element) {
    return satisfies(scalarOrder(left, left.samples[i], right, element), op);
  });
}
bool scalarsHold(const Type& left, std::size_t i, const Type& right, std::size_t j, const std::string& op) {
  return satisfies(scalarOrder(left, left.samples[i], right, right.samples[j]), op);
}
bool neverHolds(const Type&, std::size_t, const Type&, std::size_t, const std::string&) { return false; }

constexpr Form kForms[] = {
    {"L_%l %o R_%r", scalarsHold},
    {"(L_%l) %o (R_%r)", scalarsHold},
    {"LA_%l %o RA_%r", wholeArraysHold},
    {"LA_%l[*] %o RA_%r[]", wholeArraysHold},
    {"LA_%l %o R_%r", neverHolds},
    {"L_%l %o RA_%r", neverHolds},
    {"ANY LA_%l[*] %o R_%r", leftElementsHold<true>},
    {"EVERY LA_%l[*] %o R_%r", leftElementsHold<false>},
    {"L_%l %o ANY RA_%r[*]", rightElementsHold<true>},
    {"L_%l %o EVERY RA_%r[*]", rightElementsHold<false>},
    {"ANY L_%l %o R_%r", neverHolds},
    {"L_%l %o EVERY R_%r", neverHolds},
};

std::string filled(const Form& form, const Type& left, const std::string& op, const Type& right) {
  std::string text;
  for (const char* c = form.text; *c != '\0'; ++c) {
    if (*c != '%') {
      text += *c;
      continue;
    }
    ++c;
    text += *c == 'l' ? std::string(left.name) : *c == 'r' ? std::string(right.name) : op;
  }
  return text;
}

std::string schema() {
  std::string text = "[indication] class T_Pair {\n";
  for (const Type& type : types()) {
    const std::string name = type.name;
    for (const char* side : {"L", "R"}) {
      text += name + " " + side + "_" + name + "; " + name + " " + side + "A_" + name + "[];\n";
    }
  }
  return text + "};\n";
}

std::string sideOf(const char* side, std::size_t sample) {
  std::string text;
  for (const Type& type : types()) {
    std::string elements;
    for (const char* element : elementsOf(type, sample))
      elements += (elements.empty() ? "" : ", ") + std::string(element);
    text += std::string(side) + "_" + type.name + " = " + type.samples[sample] + "; ";
    text += std::string(side) + "A_" + type.name + " = {" + elements + "};\n";
  }
  return text;
}

// The left values by the first index, the right ones by the second.
using Pairs = std::array<std::array<QORSmrPtr<IQoriObject>, kSamples>, kSamples>;

Pairs makePairs(FilterWorld& world) {
  Pairs pairs;
  for (std::size_t i = 0; i < kSamples; ++i) {
    for (std::size_t j = 0; j < kSamples; ++j) {
      pairs[i][j] = world.indication("instance of T_Pair {\n" + sideOf("L", i) + sideOf("R", j) + "};");
    }
  }
  return pairs;
}

class FilterComparison : public testing::TestWithParam<Form> {
 protected:
  FilterWorld world{schema().c_str()};
};

TEST_P(FilterComparison, MeansTheSameAsTheNaiveAccount) {
  const Pairs pairs = makePairs(world);
  const QORString nameSpace(kNameSpace);
  for (const Type& left : types()) {
    for (const Type& right : types()) {
      for (const std::string& op : operators()) {
        const std::string condition = filled(GetParam(), left, op, right);
        CQLQueryStatement statement("CQL", QORString("SELECT * FROM T_Pair WHERE " + condition), nameSpace, nameSpace);
        ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition << ": " << statement.getFault().message;
        for (std::size_t i = 0; i < kSamples; ++i) {
          for (std::size_t j = 0; j < kSamples; ++j) {
            const bool expected = GetParam().expected(left, i, right, j, op);
            EXPECT_EQ(statement.isMatch(pairs[i][j], nameSpace), expected)
                << condition << " for samples " << i << " and " << j;
            EXPECT_EQ(statement.isMatchWhereClause(pairs[i][j]), expected)
                << "the tree: " << condition << " for samples " << i << " and " << j;
          }
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, FilterComparison, testing::ValuesIn(kForms));

}  // namespace
