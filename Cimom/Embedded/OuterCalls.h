// Questions to the outer source, and its answers beside the object manager's own.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_OUTERCALLS_H
#define QORQL_EMBEDDED_OUTERCALLS_H

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/EmbeddedState.h"
#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Embedded/Restrictor.h"

namespace embedded {

// "root/cimv2" of "//host/root/cimv2", as objects of others tell their namespace; any other text as it is.
QORString localNameSpace(const QORString& nameSpace);

// Declares a class that the outer source has, unless it is there or there is no outer source. THROWS as that.
void provideClass(const EmbeddedObjectManager::State& state, const QORString& nameSpace, const QORString& className);

// Adds the names that are not there yet.
void addOuterNames(std::vector<QORString>& names, const std::vector<QORString>& outer);

// The outer source's instances of a class after the given ones, which stay as they are. THROWS as the source.
enum class OuterPart { WithDerived, OfTheClassItself };
CIMApi::Instances withOuterInstances(const EmbeddedObjectManager::State& state, const CIMApi::Instances& own,
                                     const OuterSource::Request& request, OuterPart part = OuterPart::WithDerived);

// Null when there is none. THROW as the source. The first has all properties of its class, as the source gives it.
QORSmrPtr<IQoriObject> outerObject(const EmbeddedObjectManager::State& state, const OuterSource::Request& request,
                                   const IQoriInstanceName& name);
QORSmrPtr<IQoriObject> outerInstance(const EmbeddedObjectManager::State& state, const OuterSource::Request& request,
                                     const IQoriInstanceName& name);

// The classes of the source's objects, looked up once for each layout. BORROWS the state.
class OuterModels {
 public:
  explicit OuterModels(const EmbeddedObjectManager::State& state) : _state(state) {}
  const CQoriClass& of(const IQoriObject& object);

 private:
  const EmbeddedObjectManager::State& _state;
  std::unordered_map<const IQoriLayout*, QORSmrPtr<IQoriClass>> _byLayout;
};

// What one client object has asked for its association calls: each class once,
// however many instances it walks from. Belongs to one thread at a time.
class OuterSnapshot {
 public:
  using Objects = OuterSource::Objects;

  // BORROW: valid while the snapshot lives. THROW as the source.
  // The associations of a class (an empty name: of any, with all their properties) that refer to the source, whose path
  // is given; null when there are none, and without an outer source.
  const Objects* referringTo(const EmbeddedObjectManager::State& state, const QORString& nameSpace,
                             const QORString& associationClass, const IQoriInstanceName& source, std::string_view path);
  // The instance of the class, or of one derived from it, with that path and the named properties; null when
  // there is none.
  QORSmrPtr<IQoriObject> find(const EmbeddedObjectManager::State& state, const OuterSource::Request& request,
                              std::string_view path);

 private:
  template <class V>
  using PathMap = std::unordered_map<std::string, V, PathHash, std::equal_to<>>;

  // The associations of a class by the paths that they refer to.
  struct Index {
    CIMApi::PropertyNames names;
    PathMap<Objects> byPath;
    bool isComplete = true;
    std::set<std::string> asked;  // the sources that were asked for, where it is not
  };

  static Index indexOf(const EmbeddedObjectManager::State& state, const QORString& nameSpace,
                       const QORString& associationClass);

  std::map<std::string, Index> _associations;                         // by class
  std::map<std::string, PathMap<QORSmrPtr<IQoriObject>>> _instances;  // by namespace, class and properties
};

}  // namespace embedded

#endif
