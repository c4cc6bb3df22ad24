// A reference is followed name by name; the class that holds the next name may become unknown.
// SPDX-License-Identifier: Apache-2.0
#include "FilterPathCheck.h"

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "FilterSide.h"

namespace {

constexpr const char* kNever = ": it never matches";

}  // namespace

// One reference on its way.
class FilterPathCheck::Walk {
 public:
  Walk(const FilterPathCheck& check, const StatementReference& reference) : _check(check), _path(reference) {}

  std::vector<Finding> findings() {
    const std::string fromClass = _path.names.size() > 1 ? _check._from.classOf(nameAt(0)) : "";
    _holder = fromClass;
    std::size_t next = fromClass.empty() ? 0 : 1;
    if (next + 1 == _path.names.size()) {
      if (_path.scope) checkUnusedScope();
      if (!fromClass.empty()) checkProperty();
      return std::move(_findings);
    }
    const std::size_t root = next;
    for (; next + 1 < _path.names.size(); ++next) {
      if (!enter(next, next == root)) return std::move(_findings);
    }
    if (_path.scope && !enterScope()) return std::move(_findings);
    checkProperty();
    return std::move(_findings);
  }

 private:
  const std::string& nameAt(std::size_t index) const { return _path.names[index].text; }
  const std::string& scope() const { return _path.scope->text; }
  void add(const std::string& text, const StatementReference::Name& about) {
    _findings.push_back({text, about.offset});
  }

  // In a condition on the indication itself.
  void checkUnusedScope() {
    const QORString asked(scope());
    if (_check._family.find(asked).IsNull()) return addUnknownScope("a scope is not looked at here");
    for (const FromNames::Source& source : _check._from.sources()) {
      if (_check._family.isA(QORString(source.className), asked)) return;
    }
    add(scope() + " is not a class of FROM: a scope is not looked at here", *_path.scope);
  }

  // A schema need not be complete, but a name that is almost that of a class is probably a mistake.
  bool enterScope() {
    _holder = scope();
    if (!_check._family.find(QORString(_holder)).IsNull()) return true;
    const std::string meant = _check._family.nearestClass(_holder);
    if (!meant.empty()) addUnknownScope("did you mean " + meant + "?");
    return false;
  }

  void addUnknownScope(const std::string& consequence) {
    add(scope() + " is not a class of " + std::string(_check._nameSpace.view()) + ": " + consequence, *_path.scope);
  }

  // The class of the objects that a property holds becomes the next holder. Returns false when nothing more is known.
  bool enter(std::size_t index, bool isRoot) {
    const std::string name = nameAt(index);
    CimPropertyDeclaration declared;
    const bool isDeclared = _holder.empty() && isRoot ? findInFrom(name, declared) : find(_holder, name, declared);
    if (!isDeclared && isRoot && _holder.empty()) {
      add(name + " is neither a class of FROM nor a property of one: it never matches" + meantRoot(name),
          _path.names[index]);
      return false;
    }
    if (!isDeclared && !_holder.empty() && !isKnownTo(name)) {
      addUnknownProperty(index);
      return false;
    }
    if (isDeclared && !holdsObjects(declared)) {
      add(name + " holds no object: it never matches", _path.names[index]);
      return false;
    }
    _holder = isRoot ? _check._isa.classOf(name) : "";
    if (_holder.empty() && isDeclared) _holder = embeddedClassOf(declared);
    return true;
  }

  void checkProperty() {
    const std::size_t last = _path.names.size() - 1;
    if (!_holder.empty() && !isKnownTo(nameAt(last))) addUnknownProperty(last);
  }

  void addUnknownProperty(std::size_t index) {
    const std::string meant = _check._family.nearestProperty(QORString(_holder), nameAt(index));
    add(nameAt(index) + " is not a property of " + _holder + kNever +
            (meant.empty() ? "" : "; did you mean " + meant + "?"),
        _path.names[index]);
  }

  // A class that the schema lacks may have anything.
  bool isKnownTo(const std::string& property) const {
    const QORString holder(_holder);
    return _check._family.find(holder).IsNull() || _check._family.has(holder, QORString(property));
  }

  bool find(const std::string& className, const std::string& property, CimPropertyDeclaration& declared) const {
    return !className.empty() && _check._manager.sink().describeProperty(_check._nameSpace, QORString(className),
                                                                         QORString(property), declared);
  }

  bool findInFrom(const std::string& property, CimPropertyDeclaration& declared) const {
    for (const FromNames::Source& source : _check._from.sources()) {
      if (find(source.className, property, declared)) return true;
    }
    return false;
  }

  std::string meantRoot(const std::string& name) const {
    QORQL_Suggestion suggestion(name);
    for (const FromNames::Source& source : _check._from.sources()) {
      suggestion.consider(source.className);
      suggestion.consider(source.alias);
      const auto properties = _check._manager.allProperties(_check._nameSpace, QORString(source.className));
      for (const CimPropertyDeclaration& property : properties) suggestion.consider(property.name.view());
    }
    return suggestion.best().empty() ? "" : "; did you mean " + suggestion.best() + "?";
  }

  static std::string embeddedClassOf(const CimPropertyDeclaration& property) {
    const CimQualifier* const qualifier = property.findQualifier("EmbeddedInstance");
    if (qualifier == nullptr || qualifier->value.IsNull()) return {};
    return std::string(qualifier->value->toString().view());
  }

  const FilterPathCheck& _check;
  const StatementReference& _path;
  std::string _holder;  // the class of the object that is asked for the next name; empty: unknown
  std::vector<Finding> _findings;
};

std::vector<FilterPathCheck::Finding> FilterPathCheck::check(const StatementReference& reference) const {
  if (reference.names.size() < 2 && !reference.scope) return {};
  return Walk(*this, reference).findings();
}
