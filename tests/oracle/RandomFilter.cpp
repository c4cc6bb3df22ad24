// Chance is weighted so that a fair part of the conditions holds: values and
// literals come from short lists, and arrays are asked as arrays.
// SPDX-License-Identifier: Apache-2.0
#include "RandomFilter.h"

#include <algorithm>

using namespace filter_model;

namespace {

const std::vector<std::string> kIntegerTypes = {"uint8", "uint16", "uint32", "uint64",
                                                "sint8", "sint16", "sint32", "sint64"};
const std::vector<std::string> kOtherTypes = {"real32", "real64", "string", "boolean", "datetime", "char16", "object"};
const std::vector<std::string> kTexts = {"a", "abc", "TRUE", "false", "False", "5", "", "B", "Objobject", "Class"};
const std::vector<double> kReals = {0.0, 1.0, 5.0, 0.5, -1.5, 200.25, 0.1};
const std::vector<std::string> kTimes = {"20240101120000.000000+000", "20240101130000.000000+060",
                                         "20231231235959.999999+000", "20240101120000.000001+000"};
const std::vector<std::string> kPaths = {"//h/root/a:C_A1.Id=1",
                                         "//h/root/a:C_B0.Id=\"x\"",
                                         "/h/root/a:C_A1.Id=1",
                                         "//h/root/a:C_A2",
                                         "//h.x/n:.Id=1",
                                         "//h/n:D_Lone.X=1",
                                         ""};
const std::vector<std::string> kRelations = {"=", "<>", "<", ">", "<=", ">="};

std::string nameOf(const std::string& type, bool isArray) {
  std::string name = type;
  name[0] = static_cast<char>(name[0] - 'a' + 'A');
  return (isArray ? "List" : "One") + name;
}

std::vector<PropertyType> allProperties() {
  std::vector<PropertyType> all = {{"AlertingManagedElement", "string", false},
                                   {"AlertingElementFormat", "uint16", false},
                                   {"Objobject", "object", false}};
  for (const auto* types : {&kIntegerTypes, &kOtherTypes}) {
    for (const std::string& type : *types) {
      all.push_back({nameOf(type, false), type, false});
      all.push_back({nameOf(type, true), type, true});
    }
  }
  return all;
}

Wide greatestOf(const std::string& type) {
  const int bits = std::stoi(type.substr(4)) - (type[0] == 'u' ? 0 : 1);
  return (Wide(1) << bits) - 1;
}

}  // namespace

// --- schemas and instances ------------------------------------------------------

void RandomSchema::addClass(Schema& schema, const std::string& name, const std::string& superName, unsigned percent) {
  ClassType added{name, superName, {}};
  if (const ClassType* const parent = schema.find(superName)) added.properties = parent->properties;
  for (const PropertyType& property : allProperties()) {
    if (!added.has(property.name) && _choice.chance(percent)) added.properties.push_back(property);
  }
  schema.classes.push_back(added);
}

Schema RandomSchema::make() {
  Schema schema;
  for (const char* family : {"C_A", "C_B"}) {
    addClass(schema, family + std::string("0"), "", 50);
    addClass(schema, family + std::string("1"), family + std::string("0"), 40);
    addClass(schema, family + std::string("2"), family + std::string("1"), 40);
  }
  addClass(schema, "D_Lone", "", 30);
  addClass(schema, "D_Tie", "", 20);
  for (const char* end : {"OneReference", "TwoReference"}) {
    schema.classes.back().properties.push_back({end, "reference", false});
  }
  return schema;
}

std::shared_ptr<Thing> RandomSchema::makeThing(const Schema& schema, int depth) {
  const ClassType& type = _choice.of(schema.classes);
  auto thing = std::make_shared<Thing>();
  thing->className = type.name;
  for (const PropertyType& property : type.properties) {
    thing->properties.emplace_back(property.name, _choice.chance(20) ? Value() : makeValue(schema, property, depth));
  }
  return thing;
}

Value RandomSchema::makeValue(const Schema& schema, const PropertyType& property, int depth) {
  if (property.name == "AlertingManagedElement") return textValue(_choice.of(kPaths));
  if (property.name == "AlertingElementFormat") return integerValue("uint16", _choice.chance(70) ? 2 : 3);
  if (!property.isArray) return makeScalar(schema, property.type, depth);
  Value array;
  array.kind = Kind::Array;
  array.type = property.type;
  for (unsigned i = _choice.below(4); i > 0; --i) {
    array.elements.push_back(_choice.chance(12) ? Value() : makeScalar(schema, property.type, depth));
  }
  return array;
}

Value RandomSchema::makeScalar(const Schema& schema, const std::string& type, int depth) {
  if (type == "object") {
    Value value;
    if (depth == 0) return value;
    value.kind = Kind::Object;
    value.type = type;
    value.object = makeThing(schema, depth - 1);
    return value;
  }
  if (type == "boolean") return booleanValue(_choice.chance(50));
  if (type == "real64") return realValue(type, _choice.of(kReals));
  if (type == "real32") return realValue(type, static_cast<double>(static_cast<float>(_choice.of(kReals))));
  if (type.find("int") != std::string::npos) {
    const Wide greatest = greatestOf(type);
    const Wide least = type[0] == 'u' ? Wide(0) : -greatest - 1;
    const std::vector<Wide> numbers = {0, 1, 2, 5, 5, 100, greatest, least, type[0] == 'u' ? Wide(1) : Wide(-1)};
    return integerValue(type, _choice.of(numbers));
  }
  Value value = textValue(type == "datetime" ? _choice.of(kTimes) : _choice.of(kTexts));
  value.type = type;
  if (type == "reference") {
    value.kind = Kind::Reference;
    value.text = std::string("root/a:D_Lone.Id=\"") + "xyz"[_choice.below(3)] + "\"";
  }
  if (type == "datetime") value.kind = Kind::DateTime;
  if (type != "char16") return value;
  value.kind = Kind::Char;
  value.text = std::string(1, "aB5"[_choice.below(3)]);
  return value;
}

// --- filters --------------------------------------------------------------------

Filter RandomFilter::make() {
  _filter = Filter();
  addSources();
  _filter.selectList = selectList();
  const unsigned count = _choice.below(4);
  for (unsigned i = 0; i < count; ++i) _filter.conditions.emplace_back(_choice.chance(3), wellFormed(2));
  _filter.hasOr = count > 1 && _choice.chance(3);
  return _filter;
}

void RandomFilter::addSources() {
  for (unsigned i = _choice.chance(75) ? 1 : 2; i > 0; --i) {
    const std::string& name = _choice.of(_schema.classes).name;
    const bool isThere = !_filter.from.empty() && areEqualNames(_filter.from[0].className, name);
    if (!isThere) _filter.from.push_back({spelled(name), _choice.chance(40) ? "f" + std::to_string(i) : ""});
  }
}

// A property that one FROM class alone has may stand by itself.
bool RandomFilter::isUnambiguous(const std::string& property) const {
  return std::count_if(_filter.from.begin(), _filter.from.end(),
                       [&](const Source& source) { return _schema.find(source.className)->has(property); }) == 1;
}

const ClassType& RandomFilter::anySource() { return *_schema.find(_choice.of(_filter.from).className); }

std::string RandomFilter::nameOfSource(const ClassType& source) {
  for (const Source& from : _filter.from) {
    const bool isOfSource = areEqualNames(from.className, source.name);
    if (isOfSource && !from.alias.empty() && _choice.chance(60)) return spelled(from.alias);
  }
  return spelled(source.name);
}

// Names ignore case.
std::string RandomFilter::spelled(std::string name) {
  if (_choice.chance(85)) return name;
  const bool isUpper = _choice.chance(50);
  for (char& c : name) {
    if (isUpper && c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (!isUpper && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

std::string RandomFilter::selectList() {
  const ClassType& source = anySource();
  if (_choice.chance(30) || source.properties.empty()) return "*";
  return nameOfSource(source) + "." + _choice.of(source.properties).name;
}

// Whole arrays in brackets against single values, and elements behind ANY, are refused.
RandomFilter::Comparison RandomFilter::wellFormed(int depth) {
  using Asked = Comparison::Asked;
  for (;;) {
    const unsigned kind = _choice.below(100);
    Comparison made = kind < 15 ? isaTest() : kind < 55 ? alikeComparison() : comparison(depth);
    if (!made.right) return made;
    const int left = made.left.first().index;
    const int right = made.right->first().index;
    const bool isLeftAsked = made.asked == Asked::AnyLeft || made.asked == Asked::EveryLeft;
    const bool isRightAsked = made.asked == Asked::AnyRight || made.asked == Asked::EveryRight;
    if (isLeftAsked && (left >= 0 || right < Factor::kNoIndex)) continue;
    if (isRightAsked && (right >= 0 || left < Factor::kNoIndex)) continue;
    const bool isRefused = (left < Factor::kNoIndex) != (right < Factor::kNoIndex);
    if (made.asked == Asked::None && isRefused) continue;
    return made;
  }
}

RandomFilter::Comparison RandomFilter::comparison(int depth) {
  static const std::vector<std::string> kOthers = {"LIKE", "IS NULL", "IS NOT NULL", "*=", "=*", "*=*", ""};
  Comparison made;
  if (_choice.chance(30)) made.asked = static_cast<Comparison::Asked>(1 + _choice.below(4));
  made.op = _choice.chance(90) ? _choice.of(kRelations) : _choice.of(kOthers);
  const bool isLeftAsked = made.asked == Comparison::Asked::AnyLeft || made.asked == Comparison::Asked::EveryLeft;
  const bool isRightAsked = made.asked == Comparison::Asked::AnyRight || made.asked == Comparison::Asked::EveryRight;
  made.left = sum(depth, isLeftAsked);
  const bool hasRight = made.op != "IS NULL" && made.op != "IS NOT NULL" && !made.op.empty();
  if (!hasRight) made.asked = Comparison::Asked::None;
  if (hasRight) made.right = sum(depth, isRightAsked);
  return made;
}

// A property against a literal or a property that it compares with.
RandomFilter::Comparison RandomFilter::alikeComparison() {
  const ClassType& source = anySource();
  const PropertyType& property = _choice.of(source.properties);
  const PropertyType& other = _choice.of(source.properties);
  const bool isProperty = other.isArray <= property.isArray && (other.type == property.type || _choice.chance(5));
  Comparison made;
  made.op = _choice.of(kRelations);
  made.left.products.push_back({{plainReference(property)}, ""});
  made.right = Sum{{{{isProperty ? plainReference(other) : literalFor(property.type)}, ""}}, ""};
  if (property.isArray && !(isProperty && other.isArray)) {
    made.asked = _choice.chance(50) ? Comparison::Asked::AnyLeft : Comparison::Asked::EveryLeft;
  }
  if (made.asked == Comparison::Asked::None || _choice.chance(50)) return made;
  std::swap(made.left, *made.right);
  made.asked = made.asked == Comparison::Asked::AnyLeft ? Comparison::Asked::AnyRight : Comparison::Asked::EveryRight;
  return made;
}

RandomFilter::Factor RandomFilter::plainReference(const PropertyType& property) {
  Factor made;
  made.form = Factor::Form::Reference;
  made.property = spelled(property.name);
  if (!isUnambiguous(property.name)) {
    for (const Source& source : _filter.from) {
      if (_schema.find(source.className)->has(property.name)) made.path = {source.className};
    }
  }
  return made;
}

RandomFilter::Factor RandomFilter::literalFor(const std::string& type) {
  static const std::vector<std::string> kTruths = {"TRUE", "FALSE", "'true'", "'False'", "'other'"};
  static const std::vector<std::string> kNumbers = {"0", "1", "2", "5", "100", "0.5", "5.0", "127", "255", "65535"};
  Factor made;
  made.word = "'" + _choice.of(kTexts) + "'";
  if (type == "boolean") made.word = _choice.of(kTruths);
  if (type.find("int") != std::string::npos || type.starts_with("real")) made.word = _choice.of(kNumbers);
  return made;
}

RandomFilter::Comparison RandomFilter::isaTest() {
  static const std::vector<std::string> kNames = {"Objobject", "AlertingManagedElement", "OneObject", "ListObject"};
  Comparison made;
  made.op = "ISA";
  const bool isReference = _choice.chance(60);
  Factor left = isReference ? reference(_choice.chance(70)) : literal();
  if (isReference && _choice.chance(75)) {
    left.property = spelled(_choice.of(kNames));
    if (left.path.empty() && !isUnambiguous(left.property)) left.path = {nameOfSource(anySource())};
  }
  if (!isReference && _choice.chance(80)) left.word = "'" + spelled(_choice.of(kNames)) + "'";
  made.left.products.push_back({{left}, ""});
  if (_choice.chance(10)) {
    made.left.operators += '+';
    made.left.products.push_back({{_choice.chance(50) ? literal() : reference(true)}, ""});
  }
  Factor right;
  right.word = spelled(_choice.of(_schema.classes).name);
  if (_choice.chance(50)) right.word = "'" + right.word + "'";
  made.right = Sum{{{{right}, ""}}, ""};
  if (_choice.chance(10)) {
    made.right->operators += '+';
    made.right->products.push_back({{_choice.chance(50) ? literal() : reference(true)}, ""});
  }
  return made;
}

Sum RandomFilter::sum(int depth, bool isAsked) {
  Sum made;
  if (isAsked && _choice.chance(85)) {
    Factor array = reference(true);
    if (_choice.chance(40)) array.index = _choice.chance(50) ? Factor::kStar : Factor::kBrackets;
    made.products.push_back({{array}, ""});
    return made;
  }
  made.products.push_back(product(depth));
  while (_choice.chance(10)) {
    made.operators += _choice.chance(60) ? '+' : '-';
    made.products.push_back(product(depth));
  }
  return made;
}

Product RandomFilter::product(int depth) {
  Product made{{factor(depth)}, ""};
  while (_choice.chance(6)) {
    made.operators += _choice.chance(60) ? '*' : '/';
    made.factors.push_back(factor(depth));
  }
  return made;
}

RandomFilter::Factor RandomFilter::factor(int depth) {
  const unsigned kind = _choice.below(100);
  if (kind < 45) return reference(false);
  if (kind < 80 || depth == 0) return literal();
  Factor made;
  if (kind < 88) {
    made.form = Factor::Form::Negation;
    made.negated = std::make_shared<Factor>(factor(depth - 1));
  } else if (kind < 98) {
    made.form = Factor::Form::Parentheses;
    made.inner = std::make_shared<Comparison>(wellFormed(depth - 1));
  } else {
    made.form = Factor::Form::Function;
    made.word = "MAX";
    made.argument = std::make_shared<Factor>(_choice.chance(50) ? reference(true) : literal());
  }
  return made;
}

// A property of the instance, or of an object that one of its properties holds.
RandomFilter::Factor RandomFilter::reference(bool isWhole) {
  Factor made;
  made.form = Factor::Form::Reference;
  const ClassType& source = anySource();
  made.property = spelled(_choice.of(source.properties).name);
  if (_choice.chance(5)) made.scope = spelled(_choice.of(_schema.classes).name);
  if (!isUnambiguous(made.property) || _choice.chance(40)) made.path.push_back(nameOfSource(source));
  if (_choice.chance(30)) goThroughObjects(made);
  if (!isWhole && _choice.chance(10)) made.index = static_cast<int>(_choice.below(5)) - 2;
  if (made.index == Factor::kNoIndex || made.index < Factor::kBrackets) made.index = Factor::kNoIndex;
  return made;
}

void RandomFilter::goThroughObjects(Factor& factor) {
  static const std::vector<std::string> kHolders = {"Objobject", "OneObject", "Objobject", "ListObject", "OneUint8"};
  static const std::vector<PropertyType> kProperties = allProperties();
  do {
    factor.path.push_back(spelled(_choice.of(kHolders)));
  } while (_choice.chance(20));
  factor.property = spelled(_choice.of(kProperties).name);
  factor.scope = _choice.chance(50) ? spelled(_choice.of(_schema.classes).name) : "";
}

RandomFilter::Factor RandomFilter::literal() {
  static const std::vector<std::string> kWords = {"0",
                                                  "1",
                                                  "2",
                                                  "5",
                                                  "5",
                                                  "100",
                                                  "200",
                                                  "255",
                                                  "300",
                                                  "65535",
                                                  "2147483648",
                                                  "4294967295",
                                                  "TRUE",
                                                  "false",
                                                  "0.5",
                                                  "5.0",
                                                  "200.25",
                                                  "1.5",
                                                  "9223372036854775807",
                                                  "9223372036854775808",
                                                  "18446744073709551615",
                                                  "0.1"};
  Factor made;
  made.word = _choice.chance(70) ? _choice.of(kWords) : "'" + _choice.of(kTexts) + "'";
  return made;
}
