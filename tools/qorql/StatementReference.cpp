// A reference of a statement with its names as they are written, and what ISA says of them.
// SPDX-License-Identifier: Apache-2.0
#include "StatementReference.h"

#include <utility>

#include "Cimom/QORQL/Filter/CQLReferences.h"
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

std::string spelledAlike(std::string_view name) { return std::string(QORString::toUpperCase(QORString(name)).view()); }

std::string bracketsOf(const QORQL_Factor& factor) {
  switch (factor.getArrayIndexList()) {
    case QORQL_Factor::kNoArray:
      return "";
    case QORQL_Factor::kWholeArray:
      return "[*]";
    case QORQL_Factor::kEmptyBrackets:
      return "[]";
    default:
      return "[" + std::to_string(factor.getArrayIndexList()) + "]";
  }
}

}  // namespace

StatementReference::StatementReference(std::string_view text, const QORQL_Factor& factor)
    : hasIndex(factor.getArrayIndexList() != QORQL_Factor::kNoArray), isElement(factor.getArrayIndexList() >= 0) {
  for (const QORuint32 place : QORQL_placesOfNames(text, factor)) {
    names.push_back({std::string(nameAt(text, place)), place});
  }
  written = text.substr(factor.getOffset(), names.back().offset + names.back().text.size() - factor.getOffset());
  written += bracketsOf(factor);
  if (factor.getPropertyScope().IsNull() || names.size() < 2) return;
  scope = std::move(names[names.size() - 2]);
  names.erase(names.end() - 2);
}

std::string StatementReference::qualifier() const {
  std::string joined;
  for (std::size_t i = 0; i + 1 < names.size(); ++i) joined += (i == 0 ? "" : ".") + names[i].text;
  return joined;
}

bool isReference(const QORQL_Factor& factor) {
  return factor.getEvaluatable().IsNull() && factor.getLiteral().IsNull() && !factor.isSelectAll();
}

namespace {

class ReferenceVisitor : public QORQL_ExpressionVisitor {
 public:
  ReferenceVisitor(std::string_view text, const std::function<void(const StatementReference&)>& callback)
      : _text(text), _callback(callback) {}
  void visitFactor(const QORQL_Factor& factor) override {
    if (isReference(factor)) _callback(StatementReference(_text, factor));
  }

 private:
  const std::string_view _text;
  const std::function<void(const StatementReference&)>& _callback;
};

}  // namespace

void forEachReference(const QORQL_Query& query, std::string_view text,
                      const std::function<void(const StatementReference&)>& callback) {
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(new ReferenceVisitor(text, callback));
  const auto& list = dynamic_cast<const QORQL_SelectList&>(*query.getSelectList());
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (!entries.key()->isSelectAll()) entries.key()->getExpression()->accept(visitor);
  }
  const auto* const where = dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  if (where != nullptr) where->getExpression()->accept(visitor);
  const auto* const orderBy = dynamic_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get());
  if (orderBy != nullptr) orderBy->getExpression()->accept(visitor);
}

std::optional<StatementReference::Name> isaProperty(std::string_view text, const QORQL_Comparison& isa,
                                                    const FromNames& from) {
  const QORQL_Factor* const factor = QORQL_loneFactor(isa.getLHSArithmeticExpression());
  if (factor == nullptr || !factor->getEvaluatable().IsNull()) return std::nullopt;
  if (!factor->getLiteral().IsNull()) {
    return StatementReference::Name{std::string(factor->getLiteral()->toString().view()), factor->getOffset()};
  }
  StatementReference reference(text, *factor);
  const bool isOwn = reference.names.size() == 1 ||
                     (reference.names.size() == 2 && !from.classOf(reference.names.front().text).empty());
  if (!isOwn || reference.scope || reference.hasIndex) return std::nullopt;
  return std::move(reference.names.back());
}

std::optional<StatementReference::Name> isaClass(const QORQL_Comparison& isa) {
  const QORQL_Factor* const factor = QORQL_loneFactor(isa.getRHSArithmeticExpression());
  if (factor == nullptr || factor->getLiteral().IsNull()) return std::nullopt;
  return StatementReference::Name{std::string(factor->getLiteral()->toString().view()), factor->getOffset()};
}

IsaConditions::IsaConditions(const QORQL_Query& query, std::string_view text, const FromNames& from) {
  const auto* const where = dynamic_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  if (where == nullptr) return;
  for (const QORQL_Comparison* const test : CQLIsaTestsOf(where->getExpression())) {
    const std::optional<StatementReference::Name> property = isaProperty(text, *test, from);
    const std::optional<StatementReference::Name> className = isaClass(*test);
    if (property && className) _classes.emplace(spelledAlike(property->text), className->text);
  }
}

std::string IsaConditions::classOf(std::string_view property) const {
  const auto found = _classes.lower_bound(spelledAlike(property));
  return found == _classes.end() || found->first != spelledAlike(property) ? "" : found->second;
}

std::vector<std::string> IsaConditions::classesOf(std::string_view property) const {
  std::vector<std::string> classes;
  const auto [begin, end] = _classes.equal_range(spelledAlike(property));
  for (auto known = begin; known != end; ++known) classes.push_back(known->second);
  return classes;
}
