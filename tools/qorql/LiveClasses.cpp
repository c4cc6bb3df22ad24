// The schema is loaded whole where it fits. Where it does not, its classes are
// declared one by one, as an object manager of their own understands them.
// SPDX-License-Identifier: Apache-2.0
#include "LiveClasses.h"

#include <vector>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Mof/MofRecorder.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "DisplayText.h"

namespace {

constexpr const char* kSource = "live classes";
// Further names are only counted.
constexpr std::size_t kMaximumNames = 5;

class FittingClasses {
 public:
  FittingClasses(CimDeclarationSink& sink, const QORString& nameSpace) : _sink(sink), _nameSpace(nameSpace) {}

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
    return text + ", which the MOF files leave no room for: " + _reason;
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
    if (exists(declaration.name)) return;
    std::string reason = clashOf(declaration);
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
    if (!declaration.superClass.isEmpty() && !exists(declaration.superClass)) return name + " has no superclass";
    for (const CimPropertyDeclaration& property : declaration.properties) {
      if (property.referenceClass.isEmpty()) continue;
      const std::string target(property.referenceClass.view());
      if (!exists(property.referenceClass)) return badReference(name, target, "left out");
      CimPropertyDeclaration inherited;
      const bool isInherited = !declaration.superClass.isEmpty() &&
                               _sink.describeProperty(_nameSpace, declaration.superClass, property.name, inherited);
      if (isInherited && !isA(property.referenceClass, inherited.referenceClass)) {
        return badReference(name, target, "not derived from " + std::string(inherited.referenceClass.view()));
      }
    }
    return {};
  }

  CimDeclarationSink& _sink;
  const QORString& _nameSpace;
  std::vector<std::string> _leftOut;
  std::string _reason;  // why the first of them is left out
};

LeftOutClasses declareWhatFits(EmbeddedObjectManager& manager, const QORString& nameSpace, const char* schema) {
  EmbeddedObjectManager apart;
  MofRecorder recorder(apart.sink());
  MofLoader(recorder, nameSpace).loadText(schema, kSource);
  FittingClasses fitting(manager.sink(), nameSpace);
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
    LinuxSchemaSink sink(manager.sink());
    MofLoader(sink, nameSpace).loadText(schema, kSource);
  } catch (const QoriBaseException&) {
    leftOut = declareWhatFits(manager, nameSpace, schema);
  }
  registerLinuxProviders(manager, nameSpace);
  return leftOut;
}
