// What is suspicious about a valid filter.
// SPDX-License-Identifier: Apache-2.0
#include "FilterWarnings.h"

#include <algorithm>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Explain/QORQL_NodeSurprises.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Values.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "DisplayText.h"
#include "FilterPathCheck.h"
#include "StatementReference.h"

namespace {

using SideKind = FilterSide::Kind;

// Nobody reads more of them, and each costs a look at the schema and at the text before it.
constexpr std::size_t kMaximumFilterWarnings = 20;
constexpr std::size_t kLongestWarning = 400;

// A text that a boolean property is compared with may say TRUE or FALSE.
bool mayCompare(const FilterSide& left, const FilterSide& right) {
  if (left.kind == SideKind::Unknown || right.kind == SideKind::Unknown) return true;
  if (left.kind != SideKind::Other && left.kind == right.kind) return true;
  if (left.kind == SideKind::Other || right.kind == SideKind::Other) return left.type == right.type;
  const auto saysOrHoldsTruth = [](const FilterSide& side) {
    return side.kind == SideKind::Boolean || side.saysTruth || (side.kind == SideKind::Text && !side.property.empty());
  };
  return saysOrHoldsTruth(left) && saysOrHoldsTruth(right);
}

bool isWholeArray(const FilterSide& side) { return side.isArray && !side.isAsked; }

// Arrays compare as wholes where their types do; a boolean is no text there.
bool areUnlikeArrays(const FilterSide& left, const FilterSide& right) {
  return isWholeArray(left) && isWholeArray(right) && left.kind != right.kind;
}

std::string typeOf(const FilterSide& side) {
  if (side.isArray) return "an array of " + side.type;
  return (side.type == "object" ? "an " : "a ") + side.type;
}

bool isEquality(QORQL_Operator op) { return op == QORQL_OperatorEQUAL || op == QORQL_OperatorNOTEQUAL; }

}  // namespace

// Collects the warnings of conditions, with the places that they are told at.
class FilterWarnings::Visitor : public QORQL_ExpressionVisitor {
 public:
  struct Found {
    std::size_t place;  // the byte of the text where the look at it led to the warning
    Warning warning;
  };

  // At most so many warnings are made.
  Visitor(const FilterWarnings& filter, const QORQL_Query& query, std::size_t room)
      : _manager(filter._manager),
        _nameSpace(filter._nameSpace),
        _text(filter._text),
        _from(query, _text.text()),
        _isa(query, _text.text(), _from),
        _paths(_manager, _nameSpace, _from, _isa),
        _sides(_manager, _nameSpace, _text.text(), _from, _isa),
        _room(room) {}

  void visitFactor(const QORQL_Factor& factor) override {
    if (!isReference(factor) || isFull()) return;
    _found = factor.getOffset();
    for (const FilterPathCheck::Finding& finding : _paths.check(StatementReference(_text.text(), factor))) {
      warn(finding.text, finding.offset);
    }
  }

  void visitComparison(const QORQL_Comparison& comparison) override {
    const bool isIsa = comparison.getOperator() == QORQL_OperatorISA;
    if ((!isIsa && !QORQL_isRelational(comparison.getOperator())) || isFull()) return;
    _found = comparison.getOffset();
    isIsa ? checkIsa(comparison) : checkComparison(comparison);
  }

  bool isCut() const noexcept { return _isCut; }
  std::vector<Found> take() {
    std::stable_sort(_warnings.begin(), _warnings.end(),
                     [](const Found& a, const Found& b) { return a.place < b.place; });
    return std::move(_warnings);
  }

 private:
  // Whether there is no room for another warning; that some are missing is reported then.
  bool isFull() {
    _isCut = _isCut || _warnings.size() >= _room;
    return _isCut;
  }
  void warn(const std::string& warning, std::size_t offset) { _warnings.push_back({_found, {warning, offset}}); }
  bool isPropertyOfFrom(const std::string& property) const;
  void checkIsa(const QORQL_Comparison& isa);
  void checkClass(const StatementReference::Name& name);
  void checkComparison(const QORQL_Comparison& comparison);
  // Whether there was something to warn of.
  bool warnOfAsking(const FilterSide& side);
  bool warnOfArray(const FilterSide& side, const FilterSide& other);
  void warnOfTypes(const FilterSide& left, const FilterSide& right);
  bool warnOfSigns(const FilterSide& side, const FilterSide& other);
  bool warnOfReal32(const FilterSide& side, const FilterSide& other);

  EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
  const StatementText& _text;
  const FromNames _from;
  const IsaConditions _isa;
  const FilterPathCheck _paths;
  const FilterSideReader _sides;
  const std::size_t _room;
  std::size_t _found = 0;
  bool _isCut = false;
  std::vector<Found> _warnings;
};

std::vector<Warning> FilterWarnings::of(const CQLQueryStatement& statement) const {
  std::vector<Warning> warnings;
  const std::string never(statement.neverMatchesBecause().view());
  if (!never.empty()) warnings.push_back({never, statement.neverMatchesOffset()});
  const QORQL_Query& query = statement.getParsedQuery();
  for (const QORQL_Surprise& surprise : QORQL_findFilterSurprises(query, _nameSpace, _text.text())) {
    warnings.push_back({cutText(surprise.text, kLongestWarning, "..."), surprise.offset});
  }
  Visitor* const conditions = new Visitor(*this, query, kMaximumFilterWarnings - warnings.size());
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(conditions);
  const auto* const where = dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  const auto* const orderBy = dynamic_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get());
  if (where != nullptr) where->getExpression()->accept(visitor);
  if (orderBy != nullptr) orderBy->getExpression()->accept(visitor);
  for (Visitor::Found& found : conditions->take()) warnings.push_back(std::move(found.warning));
  if (conditions->isCut()) warnings.push_back({"the rest of the filter is not looked at", {}});
  return warnings;
}

bool FilterWarnings::Visitor::isPropertyOfFrom(const std::string& property) const {
  const auto hasProperty = [&](const FromNames::Source& source) {
    return CQLQueryValidator::findProperty(_nameSpace, QORString(source.className), QORString(property), true);
  };
  return std::any_of(_from.sources().begin(), _from.sources().end(), hasProperty);
}

// ISA looks for the property in the instance itself. For one reached through a path or with a
// scope, the statement has reported already that it never matches, and a name is checked like any
// other; a text that is put together says as a whole which property it names.
void FilterWarnings::Visitor::checkIsa(const QORQL_Comparison& isa) {
  const std::optional<StatementReference::Name> property = isaProperty(_text.text(), isa, _from);
  const QORQL_Factor* const left = QORQL_loneFactor(isa.getLHSArithmeticExpression());
  const bool isText = left != nullptr && !left->getLiteral().IsNull();
  if (property && isText && !isPropertyOfFrom(property->text)) {
    warn("ISA asks a property of the indication itself, and " + property->text + " is none: it never matches",
         property->offset);
  }
  const std::optional<StatementReference::Name> className = isaClass(isa);
  if (className) checkClass(*className);
}

// A schema need not be complete; but a name that is nearly a class is hardly meant.
void FilterWarnings::Visitor::checkClass(const StatementReference::Name& name) {
  if (CQLQueryValidator::findClass(_nameSpace, QORString(name.text))) return;
  const std::string meant = ClassFamily(_manager, _nameSpace).nearestClass(name.text);
  if (meant.empty()) return;
  warn(name.text + " is not a class of " + std::string(_nameSpace.view()) + ": did you mean " + meant + "?",
       name.offset);
}

void FilterWarnings::Visitor::checkComparison(const QORQL_Comparison& comparison) {
  FilterSide left = _sides.read(*comparison.getLHSArithmeticExpression());
  FilterSide right = _sides.read(*comparison.getRHSArithmeticExpression());
  left.isAsked = comparison.asksLeft();
  right.isAsked = comparison.isArrayComp() && !left.isAsked;
  if (left.kind == SideKind::Unknown || right.kind == SideKind::Unknown) {
    warnOfAsking(left);
    warnOfAsking(right);
    return;
  }
  if (warnOfAsking(left) || warnOfAsking(right) || warnOfArray(left, right) || warnOfArray(right, left)) return;
  if (isWholeArray(left) && isWholeArray(right) && !isEquality(comparison.getOperator())) {
    warn("arrays have no order: it never matches", left.offset);
  } else if (!mayCompare(left, right) || areUnlikeArrays(left, right)) {
    warnOfTypes(left, right);
  } else if (!warnOfSigns(left, right) && !warnOfSigns(right, left) && !warnOfReal32(left, right)) {
    warnOfReal32(right, left);
  }
}

// A uint64 beside a signed number is taken as one.
bool FilterWarnings::Visitor::warnOfSigns(const FilterSide& side, const FilterSide& other) {
  const QoriScalar number = side.number;
  const bool isHuge = number.kind == QoriScalarKind::Unsigned && number.u > static_cast<QORuint64>(INT64_MAX);
  if ((side.type != "uint64" && !isHuge) || !other.isSigned) return false;
  const std::string name = side.property.empty() ? std::to_string(number.u) : side.property;
  warn(name + " is a uint64 and compares with a signed number as a sint64: from 9223372036854775808 on it is negative",
       side.offset);
  return true;
}

bool FilterWarnings::Visitor::warnOfReal32(const FilterSide& side, const FilterSide& other) {
  if (side.type != "real32" || !other.number.isNumber()) return false;
  const std::string nearest = QORQL_nearestReal32(other.number);
  if (nearest.empty()) return false;
  warn(side.property + " is a real32, which is never exactly that number (the nearest is " + nearest +
           "): ask for a range",
       side.offset);
  return true;
}

bool FilterWarnings::Visitor::warnOfAsking(const FilterSide& side) {
  if (!side.isAsked || side.isArray || side.kind == SideKind::Unknown) return false;
  const std::string name = side.property.empty() ? "a " + side.type : side.property;
  warn(name + " is not an array, which ANY and EVERY need: it never matches", side.offset);
  return true;
}

bool FilterWarnings::Visitor::warnOfArray(const FilterSide& side, const FilterSide& other) {
  if (!isWholeArray(side) || isWholeArray(other)) return false;
  const std::string whole = side.written.ends_with(']') ? side.written : side.written + "[*]";
  warn(side.property + " is an array" +
           (other.isAsked ? ", and an element does not compare with one: it never matches"
                          : ": it never matches; to ask its elements write ANY " + whole),
       side.offset);
  return true;
}

void FilterWarnings::Visitor::warnOfTypes(const FilterSide& left, const FilterSide& right) {
  const FilterSide& first = left.property.empty() && !right.property.empty() ? right : left;
  const FilterSide& second = &first == &left ? right : left;
  const bool isText = second.property.empty() && second.kind == SideKind::Text;
  const std::string exception = first.kind == SideKind::Boolean && isText ? " but TRUE and FALSE" : "";
  const std::string subject =
      first.property.empty() ? typeOf(first) + " does" : first.property + " is " + typeOf(first) + " and does";
  const std::string object = second.property.empty() ? typeOf(second) : second.property + ", " + typeOf(second);
  warn(subject + " not compare with " + object + exception + ": it never matches", first.offset);
}
