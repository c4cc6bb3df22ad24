// The classes of servers, fetched when somebody needs them and kept.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTECLASSES_H
#define QORQL_REMOTE_REMOTECLASSES_H

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Remote/RemoteServers.h"
#include "Cimom/Remote/RemoteUnion.h"

// Any thread may ask; those that ask at the same time wait for each other.
class RemoteClasses {
 public:
  struct Fetched {
    std::vector<CimClassDeclaration> declarations;  // one for each server that has the class
    bool isComplete = true;                         // no server was left out
  };
  // THROWS CQoriProviderException.
  using Fetch = std::function<Fetched(const QORString& nameSpace, const QORString& className)>;

  // `hasServerNames`: classes gain the property __SERVER.
  RemoteClasses(Fetch fetch, bool hasServerNames) : _fetch(std::move(fetch)), _hasServerNames(hasServerNames) {}
  RemoteClasses(const RemoteClasses&) = delete;
  RemoteClasses& operator=(const RemoteClasses&) = delete;

  // Declares a class and its superclasses unless they are there; returns whether
  // it is there afterwards. THROWS CQoriProviderException; what servers answered is kept all the same.
  bool provide(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className);
  // The class, or null; provides it first.
  QORSmrPtr<IQoriClass> find(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className);
  // Servers are asked again for classes that none of them had.
  void forgetMissing();
  // Forgets the classes of which servers were left out when they were fetched. Returns whether there were any: what
  // was declared of them stays, so they are of use in a new sink only.
  bool forgetIncomplete();

 private:
  bool provideLocked(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className);
  const std::optional<RemoteUnion>& declarationOf(const QORString& nameSpace, const QORString& className);
  void addServerProperty(CimDeclarationSink& sink, const QORString& nameSpace, CimClassDeclaration& declaration) const;

  const Fetch _fetch;
  const bool _hasServerNames;
  std::recursive_mutex _mutex;                                 // guards what follows
  std::map<std::string, std::optional<RemoteUnion>> _fetched;  // by namespace and class in upper case
  std::set<std::string> _incomplete;                           // of those that were fetched
  std::set<std::string> _underWay;                             // whose superclasses are being provided
};

#endif
