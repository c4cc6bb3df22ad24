// Instances come from ServerObjects, classes from ClassAssociations.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/AssociationOperations.h"

#include "Cimom/Server/ClassAssociations.h"
#include "Cimom/Server/InstancesReply.h"
#include "Cimom/Server/ServerObjects.h"
#include "Cimom/Server/ServerParameters.h"

namespace {

using Reply = std::unique_ptr<ServerReply>;
using Class = ServerClasses::Class;

constexpr const char* kSource = "ObjectName";

bool isOfClass(const CimXmlRequest& request) {
  const CimXmlParameter* const source = request.find(kSource);
  return source != nullptr && source->kind == CimXmlParameter::Kind::ClassName;
}

Reply replyWithNames(const ServerCall& call, const CIMApi::Instances& found) {
  return replyWithInstances(call.request, found, {},
                            [host = call.host](CimXmlWriter& writer, const IQoriObject& object) {
                              writer.writeObjectPath(*object.getInstanceName(), host);
                            });
}

Reply replyWithObjects(const ServerCall& call, const CIMApi::Instances& found) {
  call.request.flag("IncludeQualifiers", false);
  return replyWithInstances(call.request, found, originsFor(call),
                            [host = call.host](CimXmlWriter& writer, const IQoriObject& object) {
                              writer.writeObjectWithPath(object, host);
                            });
}

Reply replyWithClassNames(const ServerCall& call, std::vector<Class> classes) {
  return replyWithEach(call.request, std::move(classes),
                       [host = call.host, space = call.request.nameSpace](CimXmlWriter& writer, const Class& each) {
                         writer.writeClassObjectPath(host, space, each->getClassName());
                       });
}

Reply replyWithClasses(const ServerCall& call, const ServerClasses& space, std::vector<Class> classes) {
  ServerClasses::View view;
  view.isLocalOnly = false;
  view.hasQualifiers = call.request.flag("IncludeQualifiers", false);
  view.hasOrigins = call.request.flag("IncludeClassOrigin", false);
  view.propertyNames = call.request.texts("PropertyList");
  return replyWithEach(call.request, std::move(classes),
                       [host = call.host, space, view](CimXmlWriter& writer, const Class& each) {
                         writer.beginObjectWithPath();
                         writer.writeClassPath(host, space.nameSpace(), each->getClassName());
                         space.write(writer, each, view);
                         writer.endObjectWithPath();
                       });
}

Reply associators(const ServerCall& call) {
  serverparameters::allowOnly(call, {kSource, "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeQualifiers",
                                     "IncludeClassOrigin", "PropertyList"});
  if (!isOfClass(call.request)) {
    return replyWithObjects(call, ServerObjects(call).associators(ServerObjects::Want::Instances, kSource));
  }
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithClasses(call, space, ClassAssociations(call.request, space).associators());
}

Reply associatorNames(const ServerCall& call) {
  serverparameters::allowOnly(call, {kSource, "AssocClass", "ResultClass", "Role", "ResultRole"});
  if (!isOfClass(call.request)) {
    return replyWithNames(call, ServerObjects(call).associators(ServerObjects::Want::Names, kSource));
  }
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithClassNames(call, ClassAssociations(call.request, space).associators());
}

Reply references(const ServerCall& call) {
  serverparameters::allowOnly(
      call, {kSource, "ResultClass", "Role", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"});
  if (!isOfClass(call.request)) {
    return replyWithObjects(call, ServerObjects(call).references(ServerObjects::Want::Instances, kSource));
  }
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithClasses(call, space, ClassAssociations(call.request, space).references());
}

Reply referenceNames(const ServerCall& call) {
  serverparameters::allowOnly(call, {kSource, "ResultClass", "Role"});
  if (!isOfClass(call.request)) {
    return replyWithNames(call, ServerObjects(call).references(ServerObjects::Want::Names, kSource));
  }
  const ServerClasses space(*call.manager, call.request.nameSpace);
  return replyWithClassNames(call, ClassAssociations(call.request, space).references());
}

}  // namespace

void addAssociationOperations(ServerOperations& operations) {
  operations.add("Associators", &associators);
  operations.add("AssociatorNames", &associatorNames);
  operations.add("References", &references);
  operations.add("ReferenceNames", &referenceNames);
}
