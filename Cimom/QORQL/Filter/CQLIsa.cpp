// The test of a class: of an embedded object, or in the path text of an alert.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Filter/CQLIsa.h"

#include "Cimom/QORQL/Filter/CQLConditionText.h"

namespace {

// The value of AlertingElementFormat that announces a path.
bool announcesPath(const QoriScalar& format) {
  QoriScalar path;
  path.kind = QoriScalarKind::Unsigned;
  path.u = 2;
  return format.isNumber() && qori::compareNumbers(format, path) == 0;
}

}  // namespace

CQLIsa::CQLIsa(const CQLScope& scope, const QORString& propertyName, const QORString& className)
    : _scope(scope),
      _className(className),
      _isAlertingElement(propertyName.isEqualCaseInsensitive(kAlertingElement)),
      _property(scope, propertyName),
      _format(scope, QORString(kAlertingFormat)) {}

QoriTruth CQLIsa::test(const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  const QoriScalar found = _property.view(instance, owner, holder);
  if (found.isNull()) return QoriTruth::Null;
  const QORString shown(classIn(found, instance));
  return qori::truth(!shown.isEmpty() && _scope.isSubClass(shown, _className));
}

QORString CQLIsa::foundClass(const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  return classIn(_property.view(instance, owner, holder), instance);
}

QORString CQLIsa::classIn(const QoriScalar& found, const IQoriObject& instance) const {
  if (found.kind == QoriScalarKind::Complex && !found.value->isArray()) {
    const QORSmrPtr<IQoriObject> object(found.value->getObject());
    return object.IsNull() ? QORString() : object->getClassName();
  }
  return found.kind == QoriScalarKind::Text && _isAlertingElement ? namedClass(*found.text, instance) : QORString();
}

// The class stands between the first colon and the next dot: //host/namespace:Class.Key="..."
QORString CQLIsa::namedClass(const QORString& path, const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  if (!announcesPath(_format.view(instance, owner, holder)) || !path.beginsWith("//")) return {};
  const std::string_view text = path.view();
  const std::size_t colon = text.find(':');
  const std::size_t dot = colon == std::string_view::npos ? colon : text.find('.', colon + 1);
  return dot == std::string_view::npos ? QORString() : QORString(text.substr(colon + 1, dot - colon - 1));
}

std::string CQLIsa::foundText(const IQoriObject& instance) const {
  const QORSmrPtr<IQoriValue> value(_property.value(instance));
  const QORSmrPtr<IQoriObject> object(value.IsNull() ? QORSmrPtr<IQoriObject>() : value->getObject());
  return object.IsNull() ? CQLTextOfValue(value) : std::string(object->getClassName().view());
}
