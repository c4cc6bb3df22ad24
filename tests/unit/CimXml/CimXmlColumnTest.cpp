// Columns write what the writer makes of an instance that has them, whatever type the value is of.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "Cimom/CimXml/CimXmlColumn.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Model/ModelInstance.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

using Code = CQoriType::Code;
using Value = QORSmrPtr<IQoriValue>;
using Type = QORSmrPtr<IQoriType>;

constexpr const char* kName = "N<\"\t&'>";

QORSmrPtr<IQoriObject> instanceOf(const Type& type, const Value& value) {
  const QORSmrPtr<ModelLayout> layout(new ModelLayout({{kName, type}}));
  return ModelInstance::create(QORSmrPtr<ModelShape>(new ModelShape("root", "C", layout, {})), {value});
}

// The property as it is written for an instance; nothing where there can be no such instance.
std::optional<std::string> propertyOf(const Type& type, const Value& value) {
  const std::string begin = "<INSTANCE CLASSNAME=\"C\">";
  std::string text;
  try {
    CimXmlWriter(text).writeInstance(*instanceOf(type, value));
  } catch (const QoriBaseException&) {
    return std::nullopt;
  }
  return text.substr(begin.size(), text.size() - begin.size() - std::string("</INSTANCE>").size());
}

std::optional<std::string> columnOf(const Type& type, const Value& value) {
  std::string text;
  try {
    CimXmlColumn(kName, type).appendValue(text, value);
  } catch (const QoriBaseException&) {
    return std::nullopt;
  }
  return text;
}

template <class Number>
void addNumber(std::vector<Value>& values, const Type& type, Number number) {
  values.emplace_back(new CQoriValue(number, type));
}

QORSmrPtr<IQoriInstanceName> someName(const char* host, const char* nameSpace, bool hasKey) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  if (hasKey) {
    const Value key(new CQoriValue(QORString("<k>")));
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty("Id", key, false)));
  }
  return QORSmrPtr<IQoriInstanceName>(
      new CQoriInstanceName("Part", keys, QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath(host, nameSpace))));
}

std::vector<Value> numbers() {
  std::vector<Value> values;
  for (const Type& type : {CQoriType::sint8, CQoriType::sint16, CQoriType::sint32, CQoriType::sint64}) {
    for (const long long number : {0LL, -1LL, 127LL, -128LL}) addNumber(values, type, number);
  }
  addNumber(values, CQoriType::sint64, std::numeric_limits<long long>::min());
  for (const Type& type : {CQoriType::uint8, CQoriType::uint16, CQoriType::uint32, CQoriType::uint64}) {
    for (const unsigned long long number : {0ULL, 7ULL, 255ULL}) addNumber(values, type, number);
  }
  addNumber(values, CQoriType::uint64, std::numeric_limits<unsigned long long>::max());
  for (const Type& type : {CQoriType::real32, CQoriType::real64}) {
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.0, -0.0, 0.1, -1.5, 3e9, 1e300, 5e-324, Limits::infinity(), -Limits::infinity(),
                                Limits::quiet_NaN(), Limits::max()}) {
      addNumber(values, type, number);
    }
  }
  return values;
}

std::vector<Value> scalars() {
  std::vector<Value> values = numbers();
  for (const bool truth : {true, false}) values.emplace_back(new CQoriValue(truth, CQoriType::boolean));
  for (const char16_t c : {u'x', u'<', u'\xE4', u'\1', u'\r', u'\xD800'}) {
    values.emplace_back(new CQoriValue(c, CQoriType::char16));
  }
  using namespace std::string_view_literals;
  for (const std::string_view text :
       {""sv, "plain text"sv, "<a b=\"c\">&'</a>"sv, "\t\n\r"sv, "\0\x01\x1F\x7F"sv, "\xC3\xA4\xE2\x82\xAC"sv,
        "\xFF\xC3"sv, "\xEF\xBF\xBE"sv, "\xED\xA0\x80"sv, "12"sv, "TRUE"sv, "20260101000000.000000+000"sv}) {
    values.emplace_back(new CQoriValue(QORString(text)));
  }
  for (const char* text : {"20260101000000.000000+000", "00000001000000.000000:000", "2026**************.******+000"}) {
    values.emplace_back(new CQoriValue(QORString(text), CQoriType::datetime));
  }
  return values;
}

std::vector<Value> complexes() {
  std::vector<Value> values;
  values.emplace_back(new CQoriValue(someName("", "", true)));
  values.emplace_back(new CQoriValue(someName("", "root/cimv2", true)));
  values.emplace_back(new CQoriValue(someName("h:1", "root", false)));
  const Value inner(new CQoriValue(instanceOf(CQoriType::string, Value(new CQoriValue(QORString("<&>\r"))))));
  values.push_back(inner);
  values.emplace_back(new CQoriValue(instanceOf(CQoriType::object, inner)));
  return values;
}

// Each value in an array of its type: alone, before and after NULL, and none at all.
void addArrays(std::vector<Value>& values) {
  const std::vector<Value> elements = values;
  for (const Value& element : elements) {
    const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
    list->append(Value());
    list->append(element);
    list->append(Value());
    const Type type = CQoriType::arrayOf(element->getType());
    values.emplace_back(new CQoriValue(list, type));
    values.emplace_back(new CQoriValue(QORSmrPtr<IQoriValue::List>(new IQoriValue::List), type));
  }
}

std::vector<Value> allValues() {
  std::vector<Value> values = scalars();
  for (const Value& value : complexes()) values.push_back(value);
  addArrays(values);
  values.emplace_back();
  return values;
}

std::vector<Type> allTypes() {
  std::vector<Type> types;
  for (const char* name : {"sint8", "uint8", "sint16", "uint16", "sint32", "uint32", "sint64", "uint64", "real32",
                           "real64", "boolean", "string", "datetime", "char16", "reference", "object"}) {
    for (const bool isArray : {false, true}) types.push_back(CQoriType::find(name, isArray));
  }
  return types;
}

TEST(CimXmlColumns, WriteEveryValueAsAnInstanceOfTheirTypeHasIt) {
  std::size_t written = 0;
  const std::vector<Value> values = allValues();
  for (const Type& type : allTypes()) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      const std::optional<std::string> expected = propertyOf(type, values[i]);
      EXPECT_EQ(columnOf(type, values[i]), expected) << type->getName().c_str() << " of value " << i;
      if (expected) ++written;
    }
  }
  EXPECT_GT(written, 2000U) << "values have forms in many types";
}

// A cell is what an instance holds in place.
TEST(CimXmlColumns, WriteCellsAsValues) {
  for (const Value& value : scalars()) {
    const CimXmlColumn column(kName, value->getType());
    const QORSmrPtr<IQoriObject> object = instanceOf(value->getType(), value);
    std::string text;
    EXPECT_TRUE(column.takesCells());
    EXPECT_TRUE(column.appendCell(text, object->getScalarAt(0)));
    EXPECT_EQ(text, propertyOf(value->getType(), value));
  }
}

TEST(CimXmlColumns, LeaveToValuesWhatIsNoScalar) {
  for (const Value& value : complexes()) {
    const CimXmlColumn column(kName, value->getType());
    std::string text;
    EXPECT_FALSE(column.takesCells());
    EXPECT_FALSE(column.appendCell(text, value->scalar()));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(column.appendCell(text, QoriScalar())) << "NULL is written by every column";
  }
}

TEST(CimXmlColumns, RefuseObjectsThatNestTooDeeply) {
  Value value(new CQoriValue(instanceOf(CQoriType::object, {})));
  for (int depth = 0; depth < 70; ++depth) value = Value(new CQoriValue(instanceOf(CQoriType::object, value)));
  std::string text;
  EXPECT_THROW(CimXmlColumn(kName, CQoriType::object).appendValue(text, value), QoriBaseException);
}

}  // namespace
