// Objects of known classes from what a server sends.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEOBJECTS_H
#define QORQL_REMOTE_REMOTEOBJECTS_H

#include <functional>
#include <map>
#include <string>
#include <utility>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Remote/RemoteClasses.h"
#include "Cimom/Remote/RemoteServer.h"

// Of one answer of one server. One thread at a time. BORROWS everything.
class RemoteObjects {
 public:
  // Instances whose class nobody knows are taken for instances of `className`, or refused where it is empty.
  RemoteObjects(const RemoteServer& server, RemoteClasses& classes, CimDeclarationSink& sink,
                const QORString& nameSpace, const QORString& className);
  RemoteObjects(const RemoteObjects&) = delete;
  RemoteObjects& operator=(const RemoteObjects&) = delete;

  // With the keys that the instance's name tells, the server's name, and references in the repository's
  // spelling. Changes the instance. THROWS CQoriProviderException.
  QORSmrPtr<IQoriObject> make(CimXmlInstance& instance);
  // A class that is the value of a property. THROWS QoriBaseException.
  QORSmrPtr<IQoriObject> makeClassObject(CimClassDeclaration declaration);
  // Hands over what a server sends. BORROWS this.
  RemoteServer::Taker taker(std::function<void(CimXmlInstance& instance)> take) {
    return {std::move(take), [this](const CimClassDeclaration& declaration) { return makeClassObject(declaration); }};
  }

 private:
  // A class as the objects of this server have it.
  struct Known {
    QORSmrPtr<IQoriClass> handle;
    const CQoriClass* model = nullptr;
    QORSmrPtr<ModelShape> shape;
    bool hasServerProperty = false;
  };

  const Known& known(const QORString& className);
  Known describe(const QORString& className);
  void completeKeys(CimXmlInstance& instance);
  void nameServer(CimXmlInstance& instance) const;
  void spellReferences(CimXmlInstance& instance);
  QORSmrPtr<IQoriValue> spelled(const QORSmrPtr<IQoriValue>& reference);
  QORSmrPtr<IQoriInstanceName> spelled(const IQoriInstanceName& name);
  QORSmrPtr<IQoriInstanceName> spelledAs(const IQoriInstanceName& name, const CQoriClass& model);

  const RemoteServer& _server;
  RemoteClasses& _classes;
  CimDeclarationSink& _sink;
  const QORString _nameSpace;
  const QORString _className;
  const QORString _path;  // of the namespace, as the paths of objects show it
  const QORSmrPtr<IQoriNameSpacePath> _nameSpacePath;
  const QORSmrPtr<IQoriValue> _serverName;
  std::map<std::string, Known, std::less<>> _known;  // by class as the server spells it
  const Known* _last = nullptr;
  QORString _lastName;
};

#endif
