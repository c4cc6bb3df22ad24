// The test of a class: of an embedded object, or in the path text of an alert.
#include "Cimom/QORQL/CQLIsa.h"

#include "Cimom/QORQL/CQLConditionText.h"
#include "Cimom/QORQL/CQLOperand.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/CQLQueryValidator.h"

namespace {

constexpr char kAlertingElement[] = "AlertingManagedElement";
constexpr char kAlertingFormat[] = "AlertingElementFormat";

// The value of AlertingElementFormat that announces a path.
bool announcesPath(const QoriScalar& format) {
  QoriScalar path;
  path.kind = QoriScalarKind::Unsigned;
  path.u = 2;
  return format.isNumber() && qori::compareNumbers(format, path) == 0;
}

}  // namespace

bool CQLIsaNames::read(const QORQL_Comparison& comparison, CQLIsaNames& names) {
  const QORQL_Factor* const left = CQLLoneFactor(comparison.getLHSArithmeticExpression());
  const QORQL_Factor* const right = CQLLoneFactor(comparison.getRHSArithmeticExpression());
  if (left == nullptr || right == nullptr || right->getLiteral().IsNull()) return false;
  const QORSmrPtr<IQoriValue>& text = left->getLiteral();
  if (text.IsNull()) {
    if (left->getPropertyName().IsNull()) return false;
    names.propertyName = *left->getPropertyName();
  } else {
    if (text->getType()->getName() != "string") return false;
    names.propertyName = text->toString();
  }
  names.className = right->getLiteral()->toString();
  return !names.propertyName.isEmpty();
}

CQLIsa::CQLIsa(const CQLQueryStatement& statement, const CQLIsaNames& names)
    : _statement(statement),
      _className(names.className),
      _isAlertingElement(names.propertyName.isEqualCaseInsensitive(kAlertingElement)),
      _property(statement, names.propertyName),
      _format(statement, QORString(kAlertingFormat)) {}

bool CQLIsa::holds(const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  const QoriScalar found = _property.view(instance, owner, holder);
  if (found.kind == QoriScalarKind::Complex && !found.value->isArray()) {
    const QORSmrPtr<IQoriObject> object(found.value->getObject());
    return !object.IsNull() && !object->getClassName().isEmpty() &&
           CQLQueryValidator::isSubClass(_statement.nameSpaceInUse(), object->getClassName(), _className);
  }
  return found.kind == QoriScalarKind::Text && _isAlertingElement && namesClass(*found.text, instance);
}

// The class stands between the first colon and the next dot: //host/namespace:Class.Key="..."
bool CQLIsa::namesClass(const QORString& path, const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  if (!announcesPath(_format.view(instance, owner, holder)) || !path.beginsWith("//")) return false;
  const std::string_view text = path.view();
  const std::size_t colon = text.find(':');
  const std::size_t dot = colon == std::string_view::npos ? colon : text.find('.', colon + 1);
  if (dot == std::string_view::npos || dot == colon + 1) return false;
  const QORString named(text.substr(colon + 1, dot - colon - 1));
  return CQLQueryValidator::isSubClass(_statement.nameSpaceInUse(), named, _className);
}

std::string CQLIsa::foundText(const IQoriObject& instance) const {
  const QORSmrPtr<IQoriValue> value(_property.value(instance));
  const QORSmrPtr<IQoriObject> object(value.IsNull() ? QORSmrPtr<IQoriObject>() : value->getObject());
  return object.IsNull() ? CQLTextOfValue(value) : std::string(object->getClassName().view());
}
