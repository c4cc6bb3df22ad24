// For each class of FROM: the properties that are asked of it, without those that its classes declare.
#include "UnknownProperties.h"

#include <set>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "ClassFamily.h"
#include "DisplayText.h"

namespace {

void find(const ClassFamily& family, const QORString& className, const QORSmrPtr<QORQL_Symbol>& symbol,
          std::vector<std::string>& sentences) {
  const QORSmrPtr<IQoriClass> model(family.find(className));
  if (model.IsNull() || symbol.IsNull() || symbol->getClassInfo().IsNull()) return;
  const QORSmrPtr<QORValSlist<QORString>> asked = symbol->getClassInfo()->getPropertyList();
  QORValSlistIterator<QORString> names(*asked);
  while (++names) {
    if (family.has(className, names.key())) continue;
    const std::string meant = family.nearestProperty(className, names.key().view());
    sentences.push_back(std::string(model->getClassName().view()) + " has no property " +
                        printableText(names.key().view()) + (meant.empty() ? "" : ": did you mean " + meant + "?"));
  }
}

}  // namespace

std::vector<std::string> findUnknownProperties(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                               ParsedQuery& parsed) {
  std::vector<std::string> sentences;
  const ClassFamily family(manager, nameSpace);
  std::set<QORString> seen;
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*parsed.query().getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& name = specifiers.key()->getTableName();
    if (seen.insert(name).second) find(family, name, parsed.symbols().lookupIgnoringCase(name), sentences);
  }
  return sentences;
}
