// The schema is loaded whole where it fits. Where it does not, its classes are
// declared one by one, as an object manager of their own understands them.
// SPDX-License-Identifier: Apache-2.0
#include "LiveClasses.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Mof/MofRecorder.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "DisplayText.h"

namespace {

constexpr const char* kSource = "live classes";
// Further names are only counted.
constexpr std::size_t kMaximumNames = 5;

bool isSameProperty(const CimPropertyDeclaration& a, const CimPropertyDeclaration& b) {
  return a.name.isEqualCaseInsensitive(b.name) && a.type->getName().isEqualCaseInsensitive(b.type->getName()) &&
         a.type->isArray() == b.type->isArray() && a.referenceClass.isEqualCaseInsensitive(b.referenceClass) &&
         a.hasFlag("Key") == b.hasFlag("Key");
}

// Superclass and properties are the same, in any order; what is said about them need not be.
bool isSameStructure(const CimClassDeclaration& a, const CimClassDeclaration& b) {
  const auto hasSame = [&b](const CimPropertyDeclaration& property) {
    return std::any_of(b.properties.begin(), b.properties.end(),
                       [&](const CimPropertyDeclaration& other) { return isSameProperty(property, other); });
  };
  return a.superClass.isEqualCaseInsensitive(b.superClass) && a.properties.size() == b.properties.size() &&
         std::all_of(a.properties.begin(), a.properties.end(), hasSame);
}

// Whether the namespace has a class of its own under the name of a live one. The CIM classes may be other, fuller ones.
bool isTaken(const EmbeddedObjectManager& manager, const QORString& nameSpace, const CimClassDeclaration& declaration) {
  constexpr std::string_view kPrefix = "Linux_";
  CimClassDeclaration existing;
  return declaration.name.view().starts_with(kPrefix) && manager.describeClass(nameSpace, declaration.name, existing) &&
         !isSameStructure(existing, declaration);
}

// Refuses to load the live classes as a whole where a name of theirs is taken.
class UntakenSink final : public LinuxSchemaSink {
 public:
  explicit UntakenSink(EmbeddedObjectManager& manager) : LinuxSchemaSink(manager.sink()), _manager(manager) {}

  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) override {
    if (isTaken(_manager, nameSpace, declaration)) {
      throw QoriBaseException("tool", "qorql", "", declaration.name + " is taken", 0);
    }
    LinuxSchemaSink::declareClass(nameSpace, declaration);
  }

 private:
  const EmbeddedObjectManager& _manager;
};

class FittingClasses {
 public:
  FittingClasses(EmbeddedObjectManager& manager, const QORString& nameSpace)
      : _manager(manager), _sink(manager.sink()), _nameSpace(nameSpace) {}

  void declareAll(const MofRecord& record) {
    LinuxSchemaSink sink(_sink);
    sink.begin();
    try {
      sink.createNamespace(_nameSpace);
      for (const auto& qualifier : record.qualifiers) sink.declareQualifier(_nameSpace, qualifier.declaration);
      for (const auto& entry : record.classes) declare(sink, entry.declaration);
    } catch (...) {
      sink.rollback();
      throw;
    }
    sink.commit();
  }

  LeftOutClasses leftOut() const { return {_leftOut, complaint()}; }

 private:
  std::string complaint() const {
    if (_leftOut.empty()) return {};
    std::string text = "Without ";
    for (std::size_t i = 0; i < _leftOut.size() && i < kMaximumNames; ++i) text += (i == 0 ? "" : ", ") + _leftOut[i];
    if (_leftOut.size() > kMaximumNames) text += " and " + std::to_string(_leftOut.size() - kMaximumNames) + " more";
    return text + ", which cannot be combined with the MOF files: " + _reason;
  }

  bool isLeftOut(const QORString& name) const {
    return std::find(_leftOut.begin(), _leftOut.end(), name.view()) != _leftOut.end();
  }

  bool exists(const QORString& name) const { return !_sink.findClass(_nameSpace, name).IsNull(); }

  bool isA(const QORString& name, const QORString& ancestor) const {
    QORSmrPtr<IQoriClass> model = _sink.findClass(_nameSpace, name);
    while (!model.IsNull() && !model->getClassName().isEqualCaseInsensitive(ancestor)) {
      model = _sink.findClass(_nameSpace, model->getSuperClassName());
    }
    return !model.IsNull();
  }

  void declare(LinuxSchemaSink& sink, const CimClassDeclaration& declaration) {
    const bool isTakenName = isTaken(_manager, _nameSpace, declaration);
    if (!isTakenName && exists(declaration.name)) return;
    std::string reason = isTakenName ? "they declare a class " + std::string(declaration.name.view()) + " of their own"
                                     : clashOf(declaration);
    try {
      if (reason.empty()) sink.declareClass(_nameSpace, declaration);
    } catch (const QoriBaseException& refusal) {
      reason = refusal.getMessage().view();
    }
    if (reason.empty()) return;
    if (_leftOut.empty()) _reason = printableText(reason.substr(0, reason.find('\n')));
    _leftOut.emplace_back(declaration.name.view());
  }

  static std::string badReference(const std::string& name, const std::string& target, const std::string& fault) {
    return name + " refers to " + target + ", which is " + fault;
  }

  // What the repository does not look at: the classes to which references lead.
  std::string clashOf(const CimClassDeclaration& declaration) const {
    const std::string name(declaration.name.view());
    const QORString& superClass = declaration.superClass;
    if (!superClass.isEmpty() && (isLeftOut(superClass) || !exists(superClass))) return name + " has no superclass";
    for (const CimPropertyDeclaration& property : declaration.properties) {
      if (property.referenceClass.isEmpty()) continue;
      const std::string target(property.referenceClass.view());
      if (isLeftOut(property.referenceClass) || !exists(property.referenceClass))
        return badReference(name, target, "left out");
      CimPropertyDeclaration inherited;
      const bool isInherited = !declaration.superClass.isEmpty() &&
                               _sink.describeProperty(_nameSpace, declaration.superClass, property.name, inherited);
      if (isInherited && !isA(property.referenceClass, inherited.referenceClass)) {
        return badReference(name, target, "not derived from " + std::string(inherited.referenceClass.view()));
      }
    }
    return {};
  }

  const EmbeddedObjectManager& _manager;
  CimDeclarationSink& _sink;
  const QORString& _nameSpace;
  std::vector<std::string> _leftOut;
  std::string _reason;  // why the first of them is left out
};

LeftOutClasses declareWhatFits(EmbeddedObjectManager& manager, const QORString& nameSpace, const char* schema) {
  EmbeddedObjectManager apart;
  MofRecorder recorder(apart.sink());
  MofLoader(recorder, nameSpace).loadText(schema, kSource);
  FittingClasses fitting(manager, nameSpace);
  fitting.declareAll(recorder.record());
  return fitting.leftOut();
}

}  // namespace

LeftOutClasses addLiveClasses(EmbeddedObjectManager& manager, const QORString& nameSpace,
                              LiveDescriptions descriptions) {
  const bool isDescribed = descriptions == LiveDescriptions::Declared;
  const char* const schema = isDescribed ? linuxSchemaMof() : linuxSchemaMofWithoutDescriptions();
  LeftOutClasses leftOut;
  try {
    UntakenSink sink(manager);
    MofLoader(sink, nameSpace).loadText(schema, kSource);
  } catch (const QoriBaseException&) {
    leftOut = declareWhatFits(manager, nameSpace, schema);
  }
  registerLinuxProviders(manager, nameSpace, leftOut.names);
  return leftOut;
}
