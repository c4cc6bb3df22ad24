// Comparison of values. Every pair is brought to an order (or to none), which
// the relation is then asked of. Numbers, booleans and texts take no allocation.
// SPDX-License-Identifier: Apache-2.0
#include <string_view>

#include "Cimom/Model/ModelDateTime.h"
#include "Cimom/Model/ModelError.h"
#include "Cimom/Model/ModelScalar.h"
#include "cimom/CQoriValue.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"

namespace {

using Kind = QoriScalarKind;
using Order = std::partial_ordering;

Order textOrder(const QORString& a, const QORString& b) noexcept { return a.view() <=> b.view(); }

[[noreturn]] void raiseComparison(const IQoriValue& left, const IQoriValue& right) {
  model::raiseValueError(
      "relate", "Cannot compare " + model::typeText(*left.getType()) + " with " + model::typeText(*right.getType()));
}

// A boolean against text.
bool booleanOrder(bool a, const QORString& text, Order& order) noexcept {
  bool b = false;
  if (!model::readBoolean(text, b)) return false;
  order = a <=> b;
  return true;
}

// A char16 against text.
bool char16Order(char16_t a, const QORString& text, Order& order) noexcept {
  char16_t b = 0;
  if (!model::readChar16(text, b)) return false;
  order = a <=> b;
  return true;
}

// A datetime against text.
bool dateTimeOrder(const QORString& a, const QORString& text, Order& order) noexcept {
  if (!model::isDateTime(text.view())) return false;
  order = model::compareDateTimes(a.view(), text.view());
  return true;
}

// A literal has lost the quotes at its end, also the closing quote of a last text key: a text that begins a path is
// compared as if quotes followed. At most one path consists of the text and such quotes.
Order pathOrder(std::string_view path, std::string_view text) noexcept {
  if (!path.starts_with(text)) return path <=> text;
  const std::size_t other = path.find_first_not_of('"', text.size());
  return other == std::string_view::npos ? Order::equivalent : path.substr(other, 1) <=> std::string_view("\"");
}

bool referenceOrder(const IQoriValue& a, const QORString& text, Order& order) {
  const QORSmrPtr<IQoriInstanceName> name = a.getReference();
  if (name.IsNull()) return false;
  order = pathOrder(name->toString().view(), text.view());
  return true;
}

// The order of two scalars of different kinds, the second one text; false when there is none.
bool orderAgainstText(const QoriScalar& a, const QORString& text, Order& order) {
  switch (a.kind) {
    case Kind::Boolean:
      return booleanOrder(a.b, text, order);
    case Kind::Char16:
      return char16Order(a.c, text, order);
    case Kind::DateTime:
      return dateTimeOrder(*a.text, text, order);
    case Kind::Complex:
      return referenceOrder(*a.value, text, order);
    default:
      return false;
  }
}

Order valueOrder(const QORSmrPtr<IQoriValue>& a, const QORSmrPtr<IQoriValue>& b) {
  if (a.IsNull() || b.IsNull()) return !a.IsNull() <=> !b.IsNull();
  if (a->relate(QoriRelation::Equal, *b) == QoriTruth::True) return Order::equivalent;
  if (*a < *b) return Order::less;
  return *a > *b ? Order::greater : Order::unordered;
}

// By class, then by the first property (in a's order) that differs; a missing value comes before any value.
Order objectOrder(const IQoriObject& a, const IQoriObject& b) {
  if (&a == &b) return Order::equivalent;
  Order order = a.getClassName().compareTo(b.getClassName(), 0) <=> 0;
  for (QORuint32 i = 0; order == 0 && i < a.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> mine = a.getPropertyAt(i);
    const QORSmrPtr<IQoriProperty> theirs = b.getProperty(mine->getName(), true);
    order = theirs.IsNull() ? Order::greater : valueOrder(mine->getValue(), theirs->getValue());
  }
  return order != 0 ? order : a.getPropertyCount() <=> b.getPropertyCount();
}

bool equalArrays(const IQoriValue::List& a, const IQoriValue::List& b) {
  if (a.entries() != b.entries()) return false;
  const model::NestingGuard guard("relate");
  QORValSlistIterator<QORSmrPtr<IQoriValue>> x(a);
  QORValSlistIterator<QORSmrPtr<IQoriValue>> y(b);
  while (++x && ++y) {
    const QORSmrPtr<IQoriValue>& left = x.key();
    const QORSmrPtr<IQoriValue>& right = y.key();
    if (left.IsNull() != right.IsNull()) return false;
    if (!left.IsNull() && left->relate(QoriRelation::Equal, *right) != QoriTruth::True) return false;
  }
  return true;
}

// Of one type, or both numbers.
bool haveComparableElements(const IQoriValue& a, const IQoriValue& b) {
  const CQoriType::Code left = CQoriType::codeOf(*a.getType());
  const CQoriType::Code right = CQoriType::codeOf(*b.getType());
  return left == right || (left <= CQoriType::Code::Real64 && right <= CQoriType::Code::Real64);
}

// Where an array takes part: equality of two arrays is known, everything else is not.
QoriTruth relateArrays(QoriRelation relation, const IQoriValue& a, const IQoriValue& b) {
  const bool isEquality = relation == QoriRelation::Equal || relation == QoriRelation::NotEqual;
  if (!isEquality || !a.isArray() || !b.isArray() || !haveComparableElements(a, b)) return QoriTruth::Null;
  return qori::truth(equalArrays(*a.getArray(), *b.getArray()) == (relation == QoriRelation::Equal));
}

// References and embedded objects; no other type reaches this place.
Order complexOrder(const IQoriValue& left, const IQoriValue& right) {
  const QORSmrPtr<IQoriInstanceName> a = left.getReference();
  const QORSmrPtr<IQoriInstanceName> b = right.getReference();
  if (!a.IsNull() && !b.IsNull()) return textOrder(a->toString(), b->toString());
  const QORSmrPtr<IQoriObject> x = left.getObject();
  const QORSmrPtr<IQoriObject> y = right.getObject();
  if (x.IsNull() || y.IsNull()) raiseComparison(left, right);
  const model::NestingGuard guard("relate");
  return objectOrder(*x, *y);
}

Order sameKindOrder(const IQoriValue& left, const IQoriValue& right) {
  const QoriScalar a = left.scalar();
  const QoriScalar b = right.scalar();
  switch (a.kind) {
    case Kind::Text:
      return textOrder(*a.text, *b.text);
    case Kind::Boolean:
      return a.b <=> b.b;
    case Kind::Char16:
      return a.c <=> b.c;
    case Kind::DateTime:
      return model::compareDateTimes(a.text->view(), b.text->view());
    default:
      return complexOrder(left, right);
  }
}

Order mixedOrder(const IQoriValue& left, const IQoriValue& right) {
  const QoriScalar a = left.scalar();
  const QoriScalar b = right.scalar();
  Order order = Order::unordered;
  if (b.kind == Kind::Text && orderAgainstText(a, *b.text, order)) return order;
  if (a.kind == Kind::Text && orderAgainstText(b, *a.text, order)) return 0 <=> order;
  raiseComparison(left, right);
}

}  // namespace

QoriTruth CQoriValue::relate(QoriRelation relation, const IQoriValue& other) const {
  const QoriScalar a = _scalar;
  const QoriScalar b = other.scalar();
  if (a.isNumber() && b.isNumber()) return qori::truth(qori::satisfies(qori::compareNumbers(a, b), relation));
  if (model::holdsArray(a) || model::holdsArray(b)) return relateArrays(relation, *this, other);
  const Order order = a.kind == b.kind ? sameKindOrder(*this, other) : mixedOrder(*this, other);
  return qori::truth(qori::satisfies(order, relation));
}
