// The model of matching: a walk over the model's own statements.
// SPDX-License-Identifier: Apache-2.0
#include "FilterModel.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace filter_model {

namespace {

// The type that a literal has by its size, and by a minus right before it.
Value numberOf(const std::string& digits, bool isBehindMinus) {
  const std::uint64_t number = std::strtoull(digits.c_str(), nullptr, 10);
  if (!isBehindMinus) {
    const char* const type = number <= 255           ? "uint8"
                             : number <= 65535       ? "uint16"
                             : number <= 4294967295U ? "uint32"
                                                     : "uint64";
    return integerValue(type, static_cast<Wide>(number));
  }
  if (number > 2147483647U) return integerValue("sint64", static_cast<std::int64_t>(number));
  return integerValue(number >= 128 && number <= 32767 ? "sint16" : "sint32", static_cast<Wide>(number));
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

Value literalOf(const std::string& word, bool isBehindMinus) {
  if (word[0] == '\'') return textValue(word.substr(1, word.size() - 2));
  if (!isDigit(word[0])) return textValue(word);
  if (word.find('.') != std::string::npos) return realValue("real64", std::strtod(word.c_str(), nullptr));
  return numberOf(word, isBehindMinus);
}

bool isRelation(const std::string& op) {
  return op == "=" || op == "<>" || op == "<" || op == ">" || op == "<=" || op == ">=";
}

// Whether a sum contains neither a property nor a test of a class.
bool isConstant(const Sum& sum);

bool isConstant(const Factor& factor) {
  switch (factor.form) {
    case Factor::Form::Reference:
      return false;
    case Factor::Form::Negation:
      return isConstant(*factor.negated);
    case Factor::Form::Parentheses:
      return factor.inner->op != "ISA" && isConstant(factor.inner->left) &&
             (!factor.inner->right || isConstant(*factor.inner->right));
    default:
      return true;
  }
}

bool isConstant(const Sum& sum) {
  for (const Product& product : sum.products) {
    for (const Factor& factor : product.factors) {
      if (!isConstant(factor)) return false;
    }
  }
  return true;
}

// What a sum consists of when parentheses around it are taken off.
const Factor* loneFactor(const Sum& sum) {
  const Factor* factor = sum.isLone() ? &sum.first() : nullptr;
  while (factor != nullptr && factor->form == Factor::Form::Parentheses && factor->inner->op.empty()) {
    factor = factor->inner->left.isLone() ? &factor->inner->left.first() : nullptr;
  }
  return factor;
}

}  // namespace

Value Thing::read(const std::string& name) const {
  for (const auto& [property, value] : properties) {
    if (areEqualNames(property, name)) return value;
  }
  return {};
}

bool ClassType::has(const std::string& property) const {
  return std::any_of(properties.begin(), properties.end(),
                     [&](const PropertyType& own) { return areEqualNames(own.name, property); });
}

const ClassType* Schema::find(const std::string& name) const {
  for (const ClassType& one : classes) {
    if (areEqualNames(one.name, name)) return &one;
  }
  return nullptr;
}

bool Schema::isSubClass(const std::string& name, const std::string& superName) const {
  if (areEqualNames(name, superName)) return true;
  const ClassType* const own = find(name);
  return own != nullptr && !own->superName.empty() && isSubClass(own->superName, superName);
}

bool Matching::isFromName(const std::string& name) const {
  return std::any_of(_filter.from.begin(), _filter.from.end(), [&](const Source& source) {
    return areEqualNames(name, source.className) || (!source.alias.empty() && areEqualNames(name, source.alias));
  });
}

bool Matching::isOfFrom() const {
  return std::any_of(_filter.from.begin(), _filter.from.end(),
                     [&](const Source& source) { return _schema.isSubClass(_instance.className, source.className); });
}

// OR and NOT never match.
bool Matching::holdsWhere() const {
  if (_filter.hasOr) return false;
  return std::all_of(_filter.conditions.begin(), _filter.conditions.end(), [&](const auto& condition) {
    return !condition.first && decide(condition.second) == Truth::True;
  });
}

Truth Matching::decide(const Comparison& comparison) const {
  using Asked = Comparison::Asked;
  if (comparison.op.empty()) return decideBare(comparison);
  if (comparison.op == "ISA") return decideIsa(comparison);
  if (!isRelation(comparison.op)) return Truth::None;
  const Value left = valueOf(comparison.left);
  const Value right = valueOf(*comparison.right);
  if (comparison.asked == Asked::None) return compare(left, comparison.op, right);
  const bool isLeftAsked = comparison.asked == Asked::AnyLeft || comparison.asked == Asked::EveryLeft;
  const bool isAny = comparison.asked == Asked::AnyLeft || comparison.asked == Asked::AnyRight;
  return compareElements(left, comparison.op, right, isLeftAsked, isAny);
}

// Parentheses around a comparison are that comparison; anything else decides nothing.
Truth Matching::decideBare(const Comparison& comparison) const {
  const bool isNested = comparison.left.isLone() && comparison.left.first().form == Factor::Form::Parentheses;
  return isNested ? decide(*comparison.left.first().inner) : Truth::None;
}

// The property that the left side names; empty when it names none.
std::string Matching::isaProperty(const Sum& left) const {
  const Factor* const factor = loneFactor(left);
  if (factor != nullptr && factor->form == Factor::Form::Reference) {
    const bool isOwn = factor->path.empty() || (factor->path.size() == 1 && isFromName(factor->path[0]));
    const bool isPlain = factor->scope.empty() && factor->index == Factor::kNoIndex;
    return isOwn && isPlain ? factor->property : "";
  }
  const Value text = isConstant(left) ? valueOf(left) : Value();
  return text.kind == Kind::Text ? text.text : "";
}

Truth Matching::decideIsa(const Comparison& comparison) const {
  const std::string name = isaProperty(comparison.left);
  const Value className = valueOf(*comparison.right, true);
  if (name.empty() || className.kind != Kind::Text) return Truth::None;
  const Value value = _instance.read(name);
  if (value.isNone()) return Truth::None;
  bool holds = false;
  if (value.kind == Kind::Object) {
    holds = !value.object->className.empty() && _schema.isSubClass(value.object->className, className.text);
  } else if (value.kind == Kind::Text && areEqualNames(name, "AlertingManagedElement")) {
    holds = namesPathOf(value.text, className.text);
  }
  return holds ? Truth::True : Truth::False;
}

// Between the first colon and the next dot, when the format says that it is a path.
bool Matching::namesPathOf(const std::string& path, const std::string& className) const {
  const Value format = _instance.read("AlertingElementFormat");
  if (compare(format, "=", integerValue("uint8", 2)) != Truth::True || !path.starts_with("//")) return false;
  const std::size_t colon = path.find(':');
  if (colon == std::string::npos) return false;
  const std::size_t dot = path.find('.', colon);
  if (dot == std::string::npos || dot == colon + 1) return false;
  return _schema.isSubClass(path.substr(colon + 1, dot - colon - 1), className);
}

// Sums and products group to the right.
Value Matching::valueOf(const Sum& sum, bool isBehindIsa) const {
  const std::size_t last = sum.products.size() - 1;
  const auto operand = [&](std::size_t i) {
    if (i == 0 && isBehindIsa && sum.first().word[0] != '\'') return textValue(sum.first().word);
    return valueOf(sum.products[i], i > 0 && sum.operators[i - 1] == '-');
  };
  Value result = operand(last);
  for (std::size_t i = last; i-- > 0;) result = combine(operand(i), sum.operators[i], result);
  return result;
}

Value Matching::valueOf(const Product& product, bool isBehindMinus) const {
  const std::size_t last = product.factors.size() - 1;
  const auto operand = [&](std::size_t i) { return valueOf(product.factors[i], i == 0 && isBehindMinus); };
  Value result = operand(last);
  for (std::size_t i = last; i-- > 0;) result = combine(operand(i), product.operators[i], result);
  return result;
}

Value Matching::valueOf(const Factor& factor, bool isBehindMinus) const {
  switch (factor.form) {
    case Factor::Form::Literal:
      return literalOf(factor.word, isBehindMinus);
    case Factor::Form::Reference:
      return readReference(factor);
    case Factor::Form::Negation:
      return negate(valueOf(*factor.negated, true));
    case Factor::Form::Function:
      return {};
    case Factor::Form::Parentheses:
      break;
  }
  if (factor.inner->op.empty()) return valueOf(factor.inner->left);
  const Truth truth = decide(*factor.inner);
  return truth == Truth::None ? Value() : booleanValue(truth == Truth::True);
}

Value Matching::readReference(const Factor& factor) const {
  const Thing* thing = &_instance;
  std::shared_ptr<const Thing> holder;
  const std::size_t start = !factor.path.empty() && isFromName(factor.path[0]) ? 1 : 0;
  for (std::size_t i = start; i < factor.path.size(); ++i) {
    holder = thing->read(factor.path[i]).object;
    if (holder == nullptr) return {};
    thing = holder.get();
  }
  const bool isScoped = thing != &_instance && !factor.scope.empty();
  if (isScoped && !_schema.isSubClass(thing->className, factor.scope)) return {};
  Value value = thing->read(factor.property);
  if (factor.index < 0) return value;
  const bool isInside = value.kind == Kind::Array && static_cast<std::size_t>(factor.index) < value.elements.size();
  return isInside ? Value(value.elements[static_cast<std::size_t>(factor.index)]) : Value();
}

}  // namespace filter_model
