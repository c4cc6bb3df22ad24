// What stands on one side of a filter's comparison. Sums and products have the
// kind that their operands share, which are combined from the right as they are grouped.
// SPDX-License-Identifier: Apache-2.0
#include "FilterSide.h"

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Explain/QORQL_DeclaredTypes.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"

namespace {

using SideKind = FilterSide::Kind;

SideKind kindOf(const QORString& type) {
  if (CQLQueryStatement::isNumericalData(type, type)) return SideKind::Number;
  if (type == "string") return SideKind::Text;
  return type == "boolean" ? SideKind::Boolean : SideKind::Other;
}

bool isTruth(std::string_view word) {
  return QORString::equalIgnoringCase(word, "TRUE") || QORString::equalIgnoringCase(word, "FALSE");
}

FilterSide ofLiteral(const IQoriValue& literal) {
  FilterSide side;
  const QoriScalar scalar = literal.scalar();
  if (!scalar.isNumber()) {
    side.kind = SideKind::Text;
    side.type = "text";
    side.saysTruth = isTruth(literal.toString().view());
    return side;
  }
  side.kind = SideKind::Number;
  side.type = "number";
  side.number = scalar;
  side.isReal = scalar.kind == QoriScalarKind::Real;
  side.isSigned = scalar.kind == QoriScalarKind::Signed;
  side.isUint64 = literal.getType()->getName() == "uint64";
  return side;
}

// Behind a minus; a literal there is typed as a signed number already.
FilterSide negated(FilterSide side) {
  const bool isLiteral = side.number.isNumber();
  if (side.kind != SideKind::Number || side.isArray || (side.isUint64 && !isLiteral)) return {};
  FilterSide result;
  result.kind = SideKind::Number;
  result.type = "number";
  result.isReal = side.isReal;
  result.isSigned = !side.isReal;
  result.number = side.number;
  if (result.number.kind == QoriScalarKind::Real) result.number.r = -result.number.r;
  if (isLiteral && !side.isReal) {
    const QORuint64 magnitude =
        side.number.kind == QoriScalarKind::Signed ? static_cast<QORuint64>(side.number.s) : side.number.u;
    result.number.kind = QoriScalarKind::Signed;
    result.number.s = static_cast<QORsint64>(0 - magnitude);
  }
  return result;
}

// What a sum, difference, product or quotient is; unknown where it is null.
FilterSide combined(QORQL_Operator op, const FilterSide& left, const FilterSide& right) {
  FilterSide result;
  if (left.isArray || right.isArray || left.kind != right.kind) return result;
  if (left.kind == SideKind::Text && op == QORQL_OperatorPLUS) {
    result.kind = SideKind::Text;
    result.type = "text";
    result.saysTruth = true;  // for all that is known
  } else if (left.kind == SideKind::Number) {
    result.kind = SideKind::Number;
    result.type = "number";
    result.isReal = left.isReal || right.isReal;
    const bool areUnsigned = !left.isSigned && !right.isSigned && op != QORQL_OperatorMINUS;
    result.isUint64 = !result.isReal && (areUnsigned || left.isUint64);
    result.isSigned = !result.isReal && !result.isUint64;
  }
  return result;
}

}  // namespace

bool holdsObjects(const CimPropertyDeclaration& property) {
  return property.hasFlag("EmbeddedObject") || property.findQualifier("EmbeddedInstance") != nullptr;
}

FilterSide FilterSideReader::read(const QORQL_Evaluatable& given) const {
  const QORQL_Evaluatable* const node = QORQL_peel(&given);
  FilterSide side;
  if (const auto* factor = dynamic_cast<const QORQL_Factor*>(node)) {
    side = ofFactor(*factor);
  } else if (const auto* arithmetic = dynamic_cast<const QORQL_Arithmetic*>(node)) {
    side = ofChain(*arithmetic);
  } else if (const auto* term = dynamic_cast<const QORQL_Term*>(node)) {
    side = ofChain(*term);
  }
  side.offset = QORQL_startOf(*node);
  return side;
}

FilterSide FilterSideReader::ofFactor(const QORQL_Factor& factor) const {
  if (!factor.getEvaluatable().IsNull()) return negated(read(*factor.getEvaluatable()));
  if (!factor.getLiteral().IsNull()) return ofLiteral(*factor.getLiteral());
  return isReference(factor) ? ofReference(factor) : FilterSide();
}

template <class Node>
FilterSide FilterSideReader::ofChain(const Node& first) const {
  std::vector<const Node*> links;
  for (const Node& link : QORQL_linksOf(first)) links.push_back(&link);
  if (QORQL_continues(*links.back())) return {};
  FilterSide side = read(*QORQL_operandOf(*links.back()));
  for (links.pop_back(); !links.empty(); links.pop_back()) {
    side = combined(links.back()->getOperator(), read(*QORQL_operandOf(*links.back())), side);
  }
  return side;
}

// A property of an object whose class is not named stays unknown.
FilterSide FilterSideReader::ofReference(const QORQL_Factor& factor) const {
  const StatementReference reference(_text, factor);
  FilterSide side;
  side.property = reference.property();
  side.written = reference.written;
  std::vector<std::string> classes;
  const std::string qualifier = reference.qualifier();
  if (qualifier.empty()) {
    for (const FromNames::Source& source : _from.sources()) classes.push_back(source.className);
  } else {
    const std::string fromClass = reference.scope ? reference.scope->text : _from.classOf(qualifier);
    classes.push_back(fromClass.empty() ? _isa.classOf(qualifier) : fromClass);
  }
  for (const std::string& className : classes) {
    CimPropertyDeclaration property;
    if (!_manager.sink().describeProperty(_nameSpace, QORString(className), QORString(side.property), property)) {
      continue;
    }
    const QORString type(holdsObjects(property) ? QORString("object") : property.type->getName());
    side.kind = kindOf(type);
    side.type = type.view();
    side.isArray = property.type->isArray() && !reference.isElement;
    side.isSigned = type.beginsWith("sint");
    side.isReal = type.beginsWith("real");
    side.isUint64 = type == "uint64";
    break;
  }
  return side;
}
