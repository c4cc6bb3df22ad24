// Replies that hold instances or their names, for all operations that answer with these.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_INSTANCESREPLY_H
#define QORQL_SERVER_INSTANCESREPLY_H

#include <memory>

#include "Cimom/Server/ElementsReply.h"
#include "Cimom/Server/InstanceOrigins.h"
#include "Cimom/Server/ServerOperations.h"
#include "cimom/CIMApi.h"

// Where the properties come from, if the call's IncludeClassOrigin asks for it; else null.
std::shared_ptr<const InstanceOrigins> originsFor(const ServerCall& call);

// Writes each instance, by `write(writer, object)`, while the reply leaves; it holds the list.
template <class Write>
std::unique_ptr<ServerReply> replyWithInstances(const CimXmlRequest& request, const CIMApi::Instances& instances,
                                                const std::shared_ptr<const InstanceOrigins>& origins, Write write) {
  struct Place {
    explicit Place(const CIMApi::Instances& list) : list(list), next(*list) {}
    const CIMApi::Instances list;
    QORValSlistIterator<QORSmrPtr<IQoriObject>> next;
  };
  const auto place = std::make_shared<Place>(instances);
  return std::make_unique<ElementsReply>(request, [place, origins, write](CimXmlWriter& writer) {
    if (!++place->next) return false;
    writer.setOrigins(origins.get());
    write(writer, *place->next.key());
    return true;
  });
}

#endif
