// Where the names of a statement stand in its text, and so what an error is about.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_StatementPlaces.h"

#include <functional>
#include <new>

#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using PlaceIn = std::function<QORuint32(QORQL_Evaluatable&)>;

QORuint32 find(const QORQL_SelectList& list, const PlaceIn& placeIn) {
  const QORQL_SelectList::EntryList entryList = list.getSelectedEntries();
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*entryList);
  while (++entries) {
    const QORSmrPtr<QORQL_Evaluatable>& expression = entries.key()->getExpression();
    const QORuint32 place = expression.IsNull() ? QORQL_Fault::kNowhere : placeIn(*expression);
    if (place != QORQL_Fault::kNowhere) return place;
  }
  return QORQL_Fault::kNowhere;
}

// In the order in which the clauses run.
QORuint32 find(const QORQL_Query& query, const PlaceIn& placeIn) {
  const auto* const where = static_cast<const QORQL_WhereClause*>(query.getWhereClause().Get());
  const auto* const orderBy = static_cast<const QORQL_OrderByClause*>(query.getOrderByClause().Get());
  QORuint32 place = where == nullptr ? QORQL_Fault::kNowhere : placeIn(*where->getExpression());
  if (place == QORQL_Fault::kNowhere && orderBy != nullptr) place = placeIn(*orderBy->getExpression());
  return place != QORQL_Fault::kNowhere ? place
                                        : find(static_cast<const QORQL_SelectList&>(*query.getSelectList()), placeIn);
}

// OBJECTPATH has made its argument a class: a name that stands alone all the same.
bool isBareName(const QORQL_Factor& factor, const QORString& name) {
  if (factor.getClassName().IsNull()) return false;
  if (factor.getClassName()->isEmpty()) return QORQL_isName(factor.getPropertyName(), name);
  return factor.getPropertyOffset() == factor.getOffset() && QORQL_isName(factor.getClassName(), name);
}

// Where a path, which the row tells by its first name, leads on from: its property.
QORuint32 placeInPath(const QORQL_Query& query, QORuint32 offset) {
  const auto placeOf = [&](const QORQL_Factor& factor) {
    const bool isThis = factor.getOffset() == offset && QORQL_hasPath(factor);
    return isThis ? QORQL_placeOfOwnProperty(query.getQueryString().view(), factor) : QORQL_Fault::kNowhere;
  };
  const QORuint32 place = find(query, [&](QORQL_Evaluatable& node) { return QORQL_findPlace(node, placeOf); });
  return place == QORQL_Fault::kNowhere ? offset : place;
}

QORuint32 placeOf(const QORQL_Query& query, const QORQL_Fault& fault) {
  if (fault.kind == QORQL_Fault::kPathUnread) return placeInPath(query, fault.offset);
  if (fault.kind == QORQL_Fault::kPropertyMissing) return QORQL_findProperty(query, fault.className, fault.name);
  if (fault.kind != QORQL_Fault::kClassUnknown && fault.kind != QORQL_Fault::kFromNameUnknown)
    return QORQL_Fault::kNowhere;
  const QORuint32 inFrom = QORQL_findClass(static_cast<const QORQL_FromClause&>(*query.getFromClause()), fault.name);
  const auto placeIn = [&](QORQL_Evaluatable& node) { return QORQL_findFromName(node, fault.name); };
  return inFrom != QORQL_Fault::kNowhere ? inFrom : find(query, placeIn);
}

}  // namespace

QORuint32 QORQL_findBareName(const QORQL_SelectList& list, const QORString& name) {
  const auto placeOf = [&](const QORQL_Factor& factor) {
    return isBareName(factor, name) ? factor.getPropertyOffset() : QORQL_Fault::kNowhere;
  };
  return find(list, [&](QORQL_Evaluatable& node) { return QORQL_findPlace(node, placeOf); });
}

QORuint32 QORQL_findQualifier(const QORQL_SelectList& list, const QORString& name) {
  const auto placeOf = [&](const QORQL_Factor& factor) {
    return QORQL_isName(factor.getClassName(), name) ? factor.getOffset() : QORQL_Fault::kNowhere;
  };
  return find(list, [&](QORQL_Evaluatable& node) { return QORQL_findPlace(node, placeOf); });
}

QORuint32 QORQL_findClass(const QORQL_FromClause& from, const QORString& className) {
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    if (specifiers.key()->getTableName().isEqualCaseInsensitive(className)) return specifiers.key()->getOffset();
  }
  return QORQL_Fault::kNowhere;
}

QORuint32 QORQL_findProperty(const QORQL_Query& query, const QORString& className, const QORString& propertyName) {
  const std::string_view text = query.getQueryString().view();
  return find(query, [&](QORQL_Evaluatable& node) { return QORQL_findProperty(node, className, propertyName, text); });
}

void QORQL_placeFault(const QORQL_Query& query, QORQL_Exception& error) noexcept {
  if (error.getFault().hasPlace() && error.getFault().kind != QORQL_Fault::kPathUnread) return;
  try {
    error.setFaultOffset(placeOf(query, error.getFault()));
  } catch (const std::bad_alloc&) {
    return;  // the error matters more than its place
  }
}
