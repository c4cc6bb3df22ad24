// The test of a class: of an embedded object, or in the path text of an alert.
#include "Cimom/QORQL/Filter/CQLIsa.h"

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Filter/CQLConditionText.h"
#include "Cimom/QORQL/Filter/CQLOperand.h"

namespace {

// The value of AlertingElementFormat that announces a path.
bool announcesPath(const QoriScalar& format) {
  QoriScalar path;
  path.kind = QoriScalarKind::Unsigned;
  path.u = 2;
  return format.isNumber() && qori::compareNumbers(format, path) == 0;
}

bool isText(const QORSmrPtr<IQoriValue>& value) {
  return !value.IsNull() && !value->isArray() && value->getType()->getName() == "string";
}

// A reference without path, scope and index.
bool isPlain(const QORQL_Factor& factor) {
  return !factor.getPropertyName().IsNull() && factor.getChain().IsNull() && factor.getPropertyScope().IsNull() &&
         factor.getArrayIndexList() == QORQL_Factor::kNoArray;
}

}  // namespace

QORString CQLIsa::propertyOf(const CQLQueryStatement& statement, const QORQL_Comparison& comparison) {
  const QORSmrPtr<QORQL_Evaluatable>& left = comparison.getLHSArithmeticExpression();
  const QORQL_Factor* const factor = CQLLoneFactor(left);
  if (factor != nullptr && factor->getLiteral().IsNull()) {
    const bool isOwn = isPlain(*factor) &&
                       (factor->getClassName()->isEmpty() || !statement.fromClassOf(*factor->getClassName()).isEmpty());
    return isOwn ? *factor->getPropertyName() : QORString();
  }
  if (!CQLIsConstant(left)) return {};
  const QORSmrPtr<IQoriValue> text(statement.doMatchArithmetic(left, QORSmrPtr<IQoriObject>()));
  return isText(text) ? text->toString() : QORString();
}

CQLIsa::CQLIsa(const CQLQueryStatement& statement, const QORString& propertyName, const QORString& className)
    : _statement(statement),
      _className(className),
      _isAlertingElement(propertyName.isEqualCaseInsensitive(kAlertingElement)),
      _property(statement, propertyName),
      _format(statement, QORString(kAlertingFormat)) {}

QoriTruth CQLIsa::test(const IQoriObject& instance) const {
  QORSmrPtr<IQoriObject> owner;
  QORSmrPtr<IQoriValue> holder;
  const QoriScalar found = _property.view(instance, owner, holder);
  if (found.isNull()) return QoriTruth::Null;
  const QORString shown(classIn(found, instance));
  return qori::truth(!shown.isEmpty() && CQLQueryValidator::isSubClass(_statement.nameSpaceInUse(), shown, _className));
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
