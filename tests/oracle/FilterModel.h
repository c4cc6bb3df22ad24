// A filter's meaning told a second time, on values, objects and statements of its own.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FILTERMODEL_H
#define QORQL_TESTS_FILTERMODEL_H

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace filter_model {

__extension__ using Wide = __int128;

// --- values -------------------------------------------------------------------

enum class Kind { None, Integer, Real, Text, Boolean, DateTime, Char, Reference, Object, Array };
enum class Truth { False, True, None };

struct Thing;

struct Value {
  Kind kind = Kind::None;
  std::string type;  // its CIM name; of an array its elements'
  Wide integer = 0;
  double real = 0;
  bool truth = false;
  std::string text;  // of texts, datetimes, characters; a reference's path
  std::shared_ptr<const Thing> object;
  std::vector<Value> elements;

  bool isNone() const { return kind == Kind::None; }
  bool isNumber() const { return kind == Kind::Integer || kind == Kind::Real; }
  bool isUnsigned() const { return kind == Kind::Integer && type[0] == 'u'; }
};

// An object; its properties in the order of its class.
struct Thing {
  std::string className;
  std::vector<std::pair<std::string, Value>> properties;

  Value read(const std::string& name) const;  // ignoring case
};

struct PropertyType {
  std::string name;
  std::string type;
  bool isArray = false;
};

struct ClassType {
  std::string name;
  std::string superName;                 // empty at the root
  std::vector<PropertyType> properties;  // inherited ones first

  bool has(const std::string& property) const;
};

struct Schema {
  std::vector<ClassType> classes;

  const ClassType* find(const std::string& name) const;  // ignoring case
  bool isSubClass(const std::string& name, const std::string& superName) const;
};

bool areEqualNames(const std::string& a, const std::string& b);

Value textValue(const std::string& text);
Value integerValue(const std::string& type, Wide number);
Value realValue(const std::string& type, double number);
Value booleanValue(bool truth);

// `a op b` for + - * /; none where it cannot be computed.
Value combine(const Value& a, char op, const Value& b);
Value negate(const Value& value);
// Two operands of a comparison without ANY and EVERY, and with them.
Truth compare(const Value& a, const std::string& op, const Value& b);
Truth compareElements(const Value& a, const std::string& op, const Value& b, bool isLeftAsked, bool isAny);

// --- statements ---------------------------------------------------------------

struct Comparison;

struct Factor {
  enum class Form { Literal, Reference, Negation, Parentheses, Function };
  static constexpr int kNoIndex = -1;
  static constexpr int kStar = -2;
  static constexpr int kBrackets = -3;

  Form form = Form::Literal;
  std::string word;  // a literal as written, a function's name
  std::vector<std::string> path;
  std::string scope;
  std::string property;
  int index = kNoIndex;
  std::shared_ptr<Factor> negated;
  std::shared_ptr<Comparison> inner;
  std::shared_ptr<Factor> argument;

  std::string toText() const;
};

// Operands with the operators between them.
struct Product {
  std::vector<Factor> factors;
  std::string operators;

  std::string toText() const;
};
struct Sum {
  std::vector<Product> products;
  std::string operators;

  const Factor& first() const { return products.front().factors.front(); }
  bool isLone() const { return products.size() == 1 && products.front().factors.size() == 1; }
  std::string toText() const;
};

struct Comparison {
  enum class Asked { None, AnyLeft, AnyRight, EveryLeft, EveryRight };

  Asked asked = Asked::None;
  Sum left;
  std::string op;  // empty for none
  std::optional<Sum> right;

  std::string toText() const;
};

struct Source {
  std::string className;
  std::string alias;  // empty for none
};

struct Filter {
  std::string selectList;
  std::vector<Source> from;
  std::vector<std::pair<bool, Comparison>> conditions;  // true: behind a NOT
  bool hasOr = false;                                   // in place of the last AND

  std::string toText() const;
};

// --- matching -----------------------------------------------------------------

// Whether an instance of the filter's namespace matches. BORROWS all it is given.
class Matching {
 public:
  Matching(const Schema& schema, const Filter& filter, const Thing& instance)
      : _schema(schema), _filter(filter), _instance(instance) {}

  bool isOfFrom() const;
  bool holdsWhere() const;
  bool holds() const { return isOfFrom() && holdsWhere(); }

 private:
  bool isFromName(const std::string& name) const;
  Truth decide(const Comparison& comparison) const;
  Truth decideBare(const Comparison& comparison) const;
  Truth decideIsa(const Comparison& comparison) const;
  bool namesPathOf(const std::string& path, const std::string& className) const;
  std::string isaProperty(const Sum& left) const;
  Value valueOf(const Sum& sum, bool isBehindIsa = false) const;
  Value valueOf(const Product& product, bool isBehindMinus) const;
  Value valueOf(const Factor& factor, bool isBehindMinus) const;
  Value readReference(const Factor& factor) const;

  const Schema& _schema;
  const Filter& _filter;
  const Thing& _instance;
};

}  // namespace filter_model

#endif
