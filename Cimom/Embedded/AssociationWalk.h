// From an instance to the associations that refer to it, or through them to the instances at their other ends.
// Tested by tests/unit/Embedded/AssociationTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_ASSOCIATIONWALK_H
#define QORQL_EMBEDDED_ASSOCIATIONWALK_H

#include <string>
#include <unordered_set>
#include <vector>

#include "Cimom/Embedded/LiveSnapshot.h"
#include "Cimom/Embedded/ObjectStore.h"
#include "Cimom/Embedded/OuterCalls.h"
#include "Cimom/Embedded/Restrictor.h"
#include "Cimom/Embedded/StopScope.h"
#include "cimom/CIMApi.h"

namespace embedded {

// What to walk; empty names stand for any.
struct AssociationRequest {
  QORString nameSpace;
  QORSmrPtr<IQoriInstanceName> source;
  QORString associationClass;
  QORString resultClass;
  CIMApi::PropertyNames names;  // null: all properties
  QORString role;               // the reference property that holds the source
  QORString resultRole;         // the reference property that holds the result
  // The associations themselves are wanted; `resultClass` is the same as `associationClass` then.
  bool wantsAssociations = false;
};

// One walk; its cost follows the number of associations of the source, not the
// number of instances. The stored part is one consistent state.
class AssociationWalk {
 public:
  AssociationWalk(const EmbeddedObjectManager::State& state, LiveSnapshot& live, OuterSnapshot& outer,
                  const AssociationRequest& request)
      : _state(state),
        _store(*state.store),
        _live(live),
        _outer(outer),
        _request(request),
        _restrictor(request.names) {}

  // Null for an unknown namespace or class. THROWS CQoriProviderException.
  CIMApi::Instances run();

 private:
  // An instance that has been met, in order; its object is known when it is stored, or was told with its name.
  struct End {
    QORSmrPtr<IQoriInstanceName> name;
    QORString path;
    const ClassEntry* entry = nullptr;  // BORROWS; null: not stored
    QORSmrPtr<IQoriObject> object;
  };

  bool resolveClasses();
  bool resolveClass(const QORString& name, const ClassEntry*& entry) const;
  void walkStored();
  void walkLive();
  void walkOuter();
  void meetEnds(const CQoriClass& association, const IQoriObject& object, const QORSmrPtr<IQoriObject>& whole = {});
  void meetOtherEnds(const CQoriClass& association, const IQoriObject& object, QORuint32 sourcePosition);
  void meet(const QORSmrPtr<IQoriInstanceName>& name, const QORSmrPtr<IQoriObject>& object = {});
  bool isResult(const ClassEntry& entry) const;
  void resolveStored();
  CIMApi::Instances collect();
  QORSmrPtr<IQoriObject> findLive(const End& end);
  QORSmrPtr<IQoriObject> findOuter(const End& end);
  QORSmrPtr<IQoriObject> askOuter(const End& end);
  bool isAskedAlone(const End& end) const;
  bool isResult(const QORString& nameSpace, const IQoriObject& object) const;

  const EmbeddedObjectManager::State& _state;
  const ObjectStore& _store;
  LiveSnapshot& _live;
  OuterSnapshot& _outer;
  const AssociationRequest& _request;
  Restrictor _restrictor;
  const NameSpace* _space = nullptr;              // BORROWS
  const ClassEntry* _associationEntry = nullptr;  // BORROWS; null: any
  const ClassEntry* _resultEntry = nullptr;       // BORROWS; null: any
  QORString _sourcePath;
  std::vector<LiveSource> _liveAssociations;
  std::vector<End> _ends;
  std::size_t _resolved = 0;    // ends before this one have been looked up in the store
  std::size_t _firstOuter = 0;  // this end and those after it are of associations of the outer source
  std::unordered_set<std::string> _met;
  StopCount _steps;
};

}  // namespace embedded

#endif
