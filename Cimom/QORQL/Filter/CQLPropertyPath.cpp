// Reading a filter's properties off an instance.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLPropertyPath.h"

#include "Cimom/QORQL/QORQL_Text.h"
namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

}  // namespace

// A leading FROM name stands for the instance itself.
CQLPropertyPath::CQLPropertyPath(const CQLScope& scope, const QORQL_Factor& factor)
    : _scope(scope), _requiredClass(QORQL_textOrEmpty(factor.getPropertyScope())), _index(factor.getArrayIndexList()) {
  const QORString property(QORQL_textOrEmpty(factor.getPropertyName()));
  if (factor.getClassName().IsNull() || property.isEmpty() || property == '*') return;
  const QORString chain(QORQL_textOrEmpty(factor.getChain()));
  addSteps(chain.find(".") == QORString::npos ? *factor.getClassName() : chain, scope);
  if (_steps.empty()) _requiredClass = QORString::emptyString();
  _steps.push_back(std::make_unique<Step>(property));
}

CQLPropertyPath::CQLPropertyPath(const CQLScope& scope, const QORString& property) : _scope(scope) {
  _steps.push_back(std::make_unique<Step>(property));
}

void CQLPropertyPath::addSteps(const QORString& path, const CQLScope& scope) {
  std::size_t start = 0;
  while (start <= path.length()) {
    std::size_t end = path.find(".", start);
    if (end == QORString::npos) end = path.length();
    const QORString name(path.subStr(start, end - start));
    const bool isFromName = start == 0 && !scope.fromClassOf(name).isEmpty();
    if (!isFromName && !name.isEmpty()) _steps.push_back(std::make_unique<Step>(name));
    start = end + 1;
  }
}

std::string CQLPropertyPath::text() const {
  std::string text;
  for (const std::unique_ptr<Step>& step : _steps) {
    const bool isLast = step == _steps.back();
    if (!text.empty()) text += '.';
    if (isLast && !_requiredClass.isEmpty()) text += std::string(_requiredClass.view()) + "::";
    text += step->name.view();
  }
  if (_index >= 0) text += "[" + std::to_string(_index) + "]";
  if (_index == QORQL_Factor::kWholeArray) text += "[*]";
  if (_index == QORQL_Factor::kEmptyBrackets) text += "[]";
  return text;
}

QORsint32 CQLPropertyPath::placeOf(const Step& step, const IQoriLayout& layout) const {
  const QORuint32 guess = step.place.load(std::memory_order_relaxed);
  if (guess < layout.getPropertyCount() && layout.getName(guess).isEqualCaseInsensitive(step.name)) {
    return static_cast<QORsint32>(guess);
  }
  const QORsint32 place = layout.getPosition(step.name);
  if (place >= 0) step.place.store(static_cast<QORuint32>(place), std::memory_order_relaxed);
  return place;
}

Value CQLPropertyPath::read(const IQoriObject& object, const Step& step) const {
  const IQoriLayout* const layout = object.getLayout();
  if (layout != nullptr) {
    const QORsint32 place = placeOf(step, *layout);
    return place < 0 ? Value() : object.getValueAt(static_cast<QORuint32>(place));
  }
  const QORSmrPtr<IQoriProperty> property(object.getProperty(step.name, true));
  return property.IsNull() ? Value() : property->getValue();
}

const IQoriObject* CQLPropertyPath::follow(const IQoriObject& instance, Object& object) const {
  const IQoriObject* current = &instance;
  for (std::size_t i = 0; i + 1 < _steps.size(); ++i) {
    const IQoriLayout* const layout = current->getLayout();
    Object next;
    if (layout != nullptr) {
      const QORsint32 place = placeOf(*_steps[i], *layout);
      if (place < 0) return nullptr;
      const QoriScalar view = current->getScalarAt(static_cast<QORuint32>(place));
      if (view.kind == QoriScalarKind::Complex) next = view.value->getObject();
    } else {
      const Value value(read(*current, *_steps[i]));
      if (!value.IsNull()) next = value->getObject();
    }
    if (next.IsNull()) return nullptr;
    object = next;
    current = object.Get();
  }
  const bool isScoped = _steps.size() > 1 && !_requiredClass.isEmpty();
  if (isScoped && !_scope.isSubClass(current->getClassName(), _requiredClass)) {
    return nullptr;
  }
  return current;
}

Value CQLPropertyPath::elementOf(const IQoriValue& array) const {
  const QORSmrPtr<IQoriValue::List> elements(array.getArray());
  if (elements.IsNull() || static_cast<QORuint32>(_index) >= elements->entries()) return {};
  return elements->at(static_cast<QORuint32>(_index));
}

Value CQLPropertyPath::value(const IQoriObject& instance) const {
  if (_steps.empty()) return {};
  Object object;
  const IQoriObject* const owner = follow(instance, object);
  if (owner == nullptr) return {};
  const Value whole(read(*owner, *_steps.back()));
  return _index < 0 || whole.IsNull() ? whole : elementOf(*whole);
}

QoriScalar CQLPropertyPath::view(const IQoriObject& instance, Object& object, Value& holder) const {
  if (_steps.empty()) return {};
  const IQoriObject* const owner = follow(instance, object);
  if (owner == nullptr) return {};
  const IQoriLayout* const layout = owner->getLayout();
  if (layout == nullptr) {
    holder = read(*owner, *_steps.back());
    if (_index >= 0 && !holder.IsNull()) holder = elementOf(*holder);
    return holder.IsNull() ? QoriScalar() : holder->scalar();
  }
  const QORsint32 place = placeOf(*_steps.back(), *layout);
  const QoriScalar whole = place < 0 ? QoriScalar() : owner->getScalarAt(static_cast<QORuint32>(place));
  if (_index < 0) return whole;
  if (whole.kind != QoriScalarKind::Complex) return {};
  holder = elementOf(*whole.value);
  return holder.IsNull() ? QoriScalar() : holder->scalar();
}
