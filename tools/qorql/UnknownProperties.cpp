// For each class of FROM: what is asked of it, less what its classes declare.
#include "UnknownProperties.h"

#include <ostream>
#include <set>

#include "Cimom/QORQL/QORQL_FromClause.h"
#include "DisplayText.h"
#include "Suggestion.h"

namespace {

class UnknownProperties {
 public:
  UnknownProperties(EmbeddedObjectManager& manager, const QORString& nameSpace)
      : _manager(manager), _nameSpace(nameSpace) {}

  void print(std::ostream& out, const QORString& className, const QORSmrPtr<QORQL_Symbol>& symbol) {
    const QORSmrPtr<IQoriClass> model = findClass(className);
    if (model.IsNull() || symbol.IsNull() || symbol->getClassInfo().IsNull()) return;
    const QORSmrPtr<QORValSlist<QORString>> asked = symbol->getClassInfo()->getPropertyList();
    QORValSlistIterator<QORString> names(*asked);
    while (++names) {
      if (has(*model, names.key()) || aSubclassHas(model->getClassName(), names.key())) continue;
      out << "qorql: warning: " << model->getClassName().view() << " has no property "
          << printableText(std::string(names.key().view()));
      const std::string meant = suggest(className, names.key());
      if (!meant.empty()) out << ": did you mean " << meant << "?";
      out << '\n';
    }
  }

 private:
  QORSmrPtr<IQoriClass> findClass(const QORString& name) const { return _manager.sink().findClass(_nameSpace, name); }

  static bool has(const IQoriClass& model, const QORString& property) {
    return model.getProperty(property, true) != nullptr;
  }

  bool derives(QORSmrPtr<IQoriClass> model, const QORString& ancestor) const {
    while (!model.IsNull() && !model->getSuperClassName().isEmpty()) {
      if (model->getSuperClassName().isEqualCaseInsensitive(ancestor)) return true;
      model = findClass(model->getSuperClassName());
    }
    return false;
  }

  bool aSubclassHas(const QORString& className, const QORString& property) const {
    for (const QORString& name : _manager.classNames(_nameSpace)) {
      const QORSmrPtr<IQoriClass> model = findClass(name);
      if (!model.IsNull() && has(*model, property) && derives(model, className)) return true;
    }
    return false;
  }

  std::string suggest(const QORString& className, const QORString& property) const {
    Suggestion suggestion(property.view());
    for (const CimPropertyDeclaration& known : _manager.allProperties(_nameSpace, className)) {
      suggestion.consider(known.name.view());
    }
    return suggestion.best();
  }

  EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
};

}  // namespace

void printUnknownProperties(std::ostream& out, EmbeddedObjectManager& manager, const QORString& nameSpace,
                            ParsedQuery& parsed) {
  UnknownProperties unknown(manager, nameSpace);
  std::set<QORString> seen;
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*parsed.query().getFromClause());
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    const QORString& name = specifiers.key()->getTableName();
    if (seen.insert(name).second) unknown.print(out, name, parsed.symbols().lookupIgnoringCase(name));
  }
}
