// For each class of FROM: what is asked of it, less what its classes declare.
#include "UnknownProperties.h"

#include <ostream>
#include <set>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "ClassFamily.h"
#include "DisplayText.h"

namespace {

void print(std::ostream& out, const ClassFamily& family, const QORString& className,
           const QORSmrPtr<QORQL_Symbol>& symbol) {
  const QORSmrPtr<IQoriClass> model(family.find(className));
  if (model.IsNull() || symbol.IsNull() || symbol->getClassInfo().IsNull()) return;
  const QORSmrPtr<QORValSlist<QORString>> asked = symbol->getClassInfo()->getPropertyList();
  QORValSlistIterator<QORString> names(*asked);
  while (++names) {
    if (family.has(className, names.key())) continue;
    out << "qorql: warning: " << model->getClassName().view() << " has no property "
        << printableText(std::string(names.key().view()));
    const std::string meant = family.nearestProperty(className, names.key().view());
    if (!meant.empty()) out << ": did you mean " << meant << "?";
    out << '\n';
  }
}

}  // namespace

void printUnknownProperties(std::ostream& out, EmbeddedObjectManager& manager, const QORString& nameSpace,
                            ParsedQuery& parsed) {
  const ClassFamily family(manager, nameSpace);
  std::set<QORString> seen;
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*parsed.query().getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& name = specifiers.key()->getTableName();
    if (seen.insert(name).second) print(out, family, name, parsed.symbols().lookupIgnoringCase(name));
  }
}
