// For each class of FROM: the properties that are asked of it, without those that its classes declare.
// SPDX-License-Identifier: Apache-2.0
#include "UnknownProperties.h"

#include <set>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_StatementPlaces.h"
#include "ClassFamily.h"
#include "DisplayText.h"

namespace {

// Where the statement asks the class for it, by the class's name or an alias.
std::optional<std::size_t> placeOf(const QORQL_Query& query, const QORString& className, const QORString& property) {
  QORuint32 place = QORQL_findProperty(query, className, property);
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*query.getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (place == QORQL_Fault::kNowhere && ++specifiers) {
    const QORQL_FromSpecifier& specifier = *specifiers.key();
    const bool isAlias = specifier.getTableName() == className && !specifier.getAlias().isEmpty();
    if (isAlias) place = QORQL_findProperty(query, specifier.getAlias(), property);
  }
  return place == QORQL_Fault::kNowhere ? std::nullopt : std::optional<std::size_t>(place);
}

void find(const ClassFamily& family, const QORString& className, ParsedQuery& parsed, std::vector<Warning>& warnings) {
  const QORSmrPtr<QORQL_Symbol> symbol(parsed.symbols().lookupIgnoringCase(className));
  const QORSmrPtr<IQoriClass> model(family.find(className));
  if (model.IsNull() || symbol.IsNull() || symbol->getClassInfo().IsNull()) return;
  const QORSmrPtr<QORValSlist<QORString>> asked = symbol->getClassInfo()->getPropertyList();
  QORValSlistIterator<QORString> names(*asked);
  while (++names) {
    if (family.has(className, names.key())) continue;
    const std::string meant = family.nearestProperty(className, names.key().view());
    warnings.push_back({std::string(model->getClassName().view()) + " has no property " +
                            printableText(names.key().view()) + (meant.empty() ? "" : ": did you mean " + meant + "?"),
                        placeOf(parsed.query(), className, names.key())});
  }
}

}  // namespace

std::vector<Warning> findUnknownProperties(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                           ParsedQuery& parsed) {
  std::vector<Warning> warnings;
  const ClassFamily family(manager, nameSpace);
  std::set<QORString> seen;
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*parsed.query().getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& name = specifiers.key()->getTableName();
    if (seen.insert(name).second) find(family, name, parsed, warnings);
  }
  return warnings;
}
