// Each operation reads its parameters, finds what is asked for, and replies with it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ClassOperations.h"

#include <algorithm>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Server/ElementsReply.h"
#include "Cimom/Server/ServerClasses.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/ServerParameters.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

using Reply = std::unique_ptr<ServerReply>;
using Class = ServerClasses::Class;

ServerClasses::View viewOf(const CimXmlRequest& request) {
  ServerClasses::View view;
  view.isLocalOnly = request.flag("LocalOnly", true);
  view.hasQualifiers = request.flag("IncludeQualifiers", true);
  view.hasOrigins = request.flag("IncludeClassOrigin", false);
  view.propertyNames = request.texts("PropertyList");
  return view;
}

Reply replyWithClasses(const CimXmlRequest& request, const ServerClasses& space, std::vector<Class> classes) {
  return replyWithEach(
      request, std::move(classes),
      [space, view = viewOf(request)](CimXmlWriter& writer, const Class& each) { space.write(writer, each, view); });
}

Reply getClass(const ServerCall& call) {
  serverparameters::allowOnly(call,
                              {"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithClasses(call.request, space, {space.require(serverparameters::className(call.request, "ClassName"))});
}

// The names of the classes that a call asks for; an unknown class is refused.
std::vector<QORString> namesBelow(const CimXmlRequest& request, const ServerClasses& space) {
  const QORString above = request.className("ClassName").value_or(QORString::emptyString());
  if (!above.isEmpty()) space.require(above);
  return space.namesBelow(above, request.flag("DeepInheritance", false));
}

Reply enumerateClasses(const ServerCall& call) {
  serverparameters::allowOnly(call,
                              {"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"});
  const ServerClasses space(*call.manager, call.request.nameSpace);
  std::vector<Class> classes;
  for (const QORString& name : namesBelow(call.request, space)) {
    if (Class found = space.find(name); !found.IsNull()) classes.push_back(found);
  }
  return replyWithClasses(call.request, space, std::move(classes));
}

Reply enumerateClassNames(const ServerCall& call) {
  serverparameters::allowOnly(call, {"ClassName", "DeepInheritance"});
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithEach(call.request, namesBelow(call.request, space),
                       [](CimXmlWriter& writer, const QORString& name) { writer.writeClassName(name); });
}

Reply replyWithQualifiers(const CimXmlRequest& request, std::vector<CimQualifierDeclaration> qualifiers) {
  return replyWithEach(request, std::move(qualifiers), [](CimXmlWriter& writer, const CimQualifierDeclaration& each) {
    writer.writeQualifierDeclaration(each);
  });
}

Reply getQualifier(const ServerCall& call) {
  serverparameters::allowOnly(call, {"QualifierName"});
  requireNameSpace(*call.manager, call.request.nameSpace);
  const QORString name = serverparameters::text(call.request, "QualifierName");
  std::vector<CimQualifierDeclaration> found = call.manager->qualifiers(call.request.nameSpace);
  std::erase_if(found, [&](const CimQualifierDeclaration& each) { return !each.name.isEqualCaseInsensitive(name); });
  if (found.empty()) {
    throw CimStatusException(static_cast<QORuint32>(embedded::CimStatus::NotFound),
                             "there is no qualifier " + std::string(name.view()));
  }
  return replyWithQualifiers(call.request, std::move(found));
}

Reply enumerateQualifiers(const ServerCall& call) {
  serverparameters::allowOnly(call, {});
  requireNameSpace(*call.manager, call.request.nameSpace);
  return replyWithQualifiers(call.request, call.manager->qualifiers(call.request.nameSpace));
}

Reply refuseMethod(const ServerCall& call) {
  const ServerClasses space(*call.manager, call.request.nameSpace);
  const CimXmlParameter* const object = call.request.find("ObjectName");
  const Class found = space.require(object->path->getClassName());
  const CQoriClass::Methods& methods = ServerClasses::modelOf(found).methods();
  const bool isDeclared = std::any_of(methods.begin(), methods.end(), [&](const auto& method) {
    return QORString::equalIgnoringCase(method->name.view(), call.request.operation);
  });
  const std::string what = std::string(found->getClassName().view()) + "." + call.request.operation;
  if (object->kind == CimXmlParameter::Kind::InstanceName) ServerObjects(call).requireSource("ObjectName");
  if (!isDeclared) throw CimStatusException(cimstatus::kMethodNotFound, "there is no method " + what);
  throw CimStatusException(cimstatus::kMethodNotAvailable, "the method " + what + " cannot be called here");
}

}  // namespace

void addClassOperations(ServerOperations& operations) {
  operations.add("GetClass", &getClass);
  operations.add("EnumerateClasses", &enumerateClasses);
  operations.add("EnumerateClassNames", &enumerateClassNames);
  operations.add("GetQualifier", &getQualifier);
  operations.add("EnumerateQualifiers", &enumerateQualifiers);
  operations.setMethods(&refuseMethod);
}
