// Parameters are looked at in one order everywhere: the namespace, what is named, then how it is to be shown.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerObjects.h"

#include <string>
#include <unordered_map>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Model/ModelRestriction.h"
#include "Cimom/Server/DeclaredKeys.h"
#include "Cimom/Server/ServerClasses.h"
#include "cimom/CQoriInstanceName.h"

namespace {

using InstanceList = QORValSlist<QORSmrPtr<IQoriObject>>;

std::string quoted(const QORString& text) { return '"' + std::string(text.view()) + '"'; }

CIMApi::PropertyNames noNames() { return CIMApi::PropertyNames(new QORValSlist<QORString>); }

CIMApi::Instances orNone(const CIMApi::Instances& found) {
  return found.IsNull() ? CIMApi::Instances(new InstanceList) : found;
}

// The name of the outer server that a host means; empty when it is none.
std::string outerServer(const ServerCall& call, const QORString& host) {
  const std::shared_ptr<OuterSource>& outer = call.manager->state()->outer;
  if (outer == nullptr || host.isEmpty()) return {};
  std::string alike;
  for (const std::string& name : outer->serverNames()) {
    if (host.view() == name) return name;
    if (alike.empty() && QORString::equalIgnoringCase(host.view(), name)) alike = name;
  }
  return alike;
}

// Cuts instances down to the properties that their own classes declare.
class LocalProperties {
 public:
  LocalProperties(const EmbeddedObjectManager& manager, const QORString& nameSpace)
      : _manager(manager), _nameSpace(nameSpace) {}

  QORSmrPtr<IQoriObject> apply(const QORSmrPtr<IQoriObject>& object) {
    const auto* const layout = dynamic_cast<const ModelLayout*>(object->getLayout());
    if (layout == nullptr) return object;
    const auto [known, isNew] = _byLayout.try_emplace(layout);
    if (isNew) known->second = layout->restrictTo(*declaredBy(object->getClassName()));
    return ModelRestriction::apply(known->second, object);
  }

 private:
  CIMApi::PropertyNames declaredBy(const QORString& className) const {
    CIMApi::PropertyNames names = noNames();
    CimClassDeclaration declaration;
    _manager.describeClass(_nameSpace, className, declaration);
    for (const CimPropertyDeclaration& property : declaration.properties) names->append(property.name);
    return names;
  }

  const EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
  std::unordered_map<const ModelLayout*, QORSmrPtr<ModelRestriction>> _byLayout;
};

}  // namespace

void ServerObjects::requireNameSpace() const { ::requireNameSpace(*_call.manager, _call.request.nameSpace); }

QORString ServerObjects::requireClass(const QORString& className) const {
  const QORSmrPtr<IQoriClass> found = _call.manager->repository()->getClass(_call.request.nameSpace, className);
  if (!found.IsNull()) return found->getClassName();
  throw CimStatusException(cimstatus::kInvalidClass, "there is no class " + quoted(className));
}

QORString ServerObjects::optionalClass(const char* parameter) const {
  const QORString className = _call.request.className(parameter).value_or(QORString::emptyString());
  return className.isEmpty() ? className : requireClass(className);
}

CIMApi::PropertyNames ServerObjects::propertyList() const {
  const std::optional<std::vector<QORString>> listed = _call.request.texts("PropertyList");
  if (!listed) return {};
  CIMApi::PropertyNames names = noNames();
  for (const QORString& name : *listed) names->append(name);
  return names;
}

CIMApi::PropertyNames ServerObjects::namesFor(Want want) const {
  return want == Want::Names ? noNames() : propertyList();
}

// Without DeepInheritance, what the classes below add is left out.
CIMApi::PropertyNames ServerObjects::namesFor(Want want, const QORString& className) const {
  const CIMApi::PropertyNames listed = namesFor(want);
  if (want == Want::Names || _call.request.flag("DeepInheritance", true)) return listed;
  CIMApi::PropertyNames names = noNames();
  for (const CimPropertyDeclaration& property : _call.manager->allProperties(_call.request.nameSpace, className)) {
    bool isListed = listed.IsNull();
    if (!isListed) {
      listed->forEach([&](const QORString& name) { isListed |= name.isEqualCaseInsensitive(property.name); });
    }
    if (isListed) names->append(property.name);
  }
  return names;
}

CIMApi::Instances ServerObjects::instances(Want want, bool isLocalOnly) const {
  requireNameSpace();
  const std::optional<QORString> given = _call.request.className("ClassName");
  if (!given) throw CimStatusException(cimstatus::kInvalidParameter, "ClassName is needed");
  _call.note.subject = given->view();
  const QORString className = requireClass(*given);
  const CIMApi::Instances found = orNone(CIMApi().enumerateInstances(
      _call.request.nameSpace, className, namesFor(want, className), -1, nullptr, nullptr, nullptr, {}));
  if (want == Want::Names || !_call.request.flag("LocalOnly", isLocalOnly)) return found;
  CIMApi::Instances local(new InstanceList);
  LocalProperties properties(*_call.manager, _call.request.nameSpace);
  found->forEach([&](const QORSmrPtr<IQoriObject>& object) { local->append(properties.apply(object)); });
  return local;
}

QORSmrPtr<IQoriInstanceName> ServerObjects::requireName(const char* parameter) const {
  requireNameSpace();
  const QORSmrPtr<IQoriInstanceName> name = _call.request.instanceName(parameter);
  if (name.IsNull()) throw CimStatusException(cimstatus::kInvalidParameter, std::string(parameter) + " is needed");
  _call.note.subject = name->toString().view();
  return requireName(name);
}

QORSmrPtr<IQoriInstanceName> ServerObjects::requireName(const QORSmrPtr<IQoriInstanceName>& given) const {
  const IQoriNameSpacePath& path = *given->getNameSpacePath();
  if (!path.getNameSpace().isEmpty() && !path.getNameSpace().isEqualCaseInsensitive(_call.request.nameSpace)) {
    throw CimStatusException(cimstatus::kInvalidParameter, "the path " + std::string(given->toString().view()) +
                                                               " is in another namespace than the call, which is in " +
                                                               std::string(_call.request.nameSpace.view()));
  }
  requireClass(given->getClassName());
  const QORSmrPtr<IQoriInstanceName> name = withDeclaredKeys(*_call.manager, _call.request.nameSpace, given);
  const std::string server = outerServer(_call, path.getHost());
  if (server.empty()) return name;
  const QORSmrPtr<IQoriNameSpacePath> there(
      new CQoriNameSpacePath(QORString::emptyString(), QORString("//" + server + '/') + _call.request.nameSpace));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(given->getClassName(), name->getKeys(), there));
}

QORSmrPtr<IQoriInstanceName> ServerObjects::requireSource(const char* parameter) const {
  const QORSmrPtr<IQoriInstanceName> name = requireName(parameter);
  const QORSmrPtr<IQoriObject> source =
      CIMApi().getInstance(_call.request.nameSpace, name, noNames(), CIMApi::DefaultTimeout, nullptr, nullptr, nullptr);
  if (!source.IsNull()) return source->getInstanceName();
  throw CimStatusException(cimstatus::kNotFound, "there is no instance " + std::string(name->toString().view()));
}

CIMApi::Instances ServerObjects::associators(Want want, const char* sourceParameter) const {
  const CimXmlRequest& request = _call.request;
  const QORSmrPtr<IQoriInstanceName> source = requireSource(sourceParameter);
  return orNone(CIMApi().associators(
      request.nameSpace, source, optionalClass("AssocClass"), optionalClass("ResultClass"), namesFor(want),
      CIMApi::DefaultTimeout, request.text("Role").value_or(QORString::emptyString()),
      request.text("ResultRole").value_or(QORString::emptyString()), QORString::emptyString()));
}

CIMApi::Instances ServerObjects::references(Want want, const char* sourceParameter) const {
  const CimXmlRequest& request = _call.request;
  const QORSmrPtr<IQoriInstanceName> source = requireSource(sourceParameter);
  return orNone(_call.manager->references(request.nameSpace, source, optionalClass("ResultClass"), namesFor(want),
                                          request.text("Role").value_or(QORString::emptyString())));
}
