// The in-process object manager: class repository, instance store, providers
// and configuration behind the services that the engine calls.
// Tested by tests/unit/Embedded/ServicesTest.cpp, tests/unit/Embedded/ConcurrencyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_EMBEDDEDOBJECTMANAGER_H
#define QORQL_EMBEDDED_EMBEDDEDOBJECTMANAGER_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Embedded/InstanceProvider.h"
#include "cimom/IQoriObject.h"
#include "cimom/IQoriRepository.h"
#include "cmpbase.h"

class OuterSource;

// A process has one current object manager, which serves CIMApi,
// QoriProviderPluginManager, ZEMOConfigManager and QORLog. All operations may
// be called from any thread; queries that run meanwhile see the state before or
// after a change, never a part of it.
class EmbeddedObjectManager {
 public:
  // What has been asked of the object manager since the last reset.
  struct Statistics {
    QORuint64 enumerateCalls = 0;
    QORuint64 associatorCalls = 0;
    QORuint64 getInstanceCalls = 0;
    QORuint64 instancesReturned = 0;
  };
  // Receives each log line that passes the level.
  using LogSink = std::function<void(const QORString& who, const QORString& message, QORuint32 severity)>;

  static const char* const kDefaultNamespace;  // "root/cimv2"; exists from the start

  EmbeddedObjectManager();
  EmbeddedObjectManager(const EmbeddedObjectManager&) = delete;
  EmbeddedObjectManager& operator=(const EmbeddedObjectManager&) = delete;
  // If this is the current object manager, there is none afterwards.
  ~EmbeddedObjectManager();

  // Makes this the process's object manager, in place of any other.
  void makeCurrent();
  // BORROWS: the current one, or null.
  static EmbeddedObjectManager* current() noexcept;

  // For loaders of declarations and instances. The object manager keeps ownership.
  CimDeclarationSink& sink();
  QORSmrPtr<IQoriRepository> repository() const;
  std::vector<QORString> namespaces() const;
  // Class names of a namespace in declaration order, then those that the outer source has besides; empty when it does
  // not exist. THROWS as the outer source.
  std::vector<QORString> classNames(const QORString& nameSpace) const;
  // Without those that only the outer source has.
  std::vector<QORString> declaredClassNames(const QORString& nameSpace) const;
  // In its own spelling; empty at the root, null when there is no such class. Unlike the questions below it does not
  // read a class that has been left for later. THROWS as the outer source.
  QORString superClassName(const QORString& nameSpace, const QORString& className) const;
  // False when there is none.
  bool describeClass(const QORString& nameSpace, const QORString& className, CimClassDeclaration& out) const;
  bool isAssociation(const QORString& nameSpace, const QORString& className) const;
  // All properties of a class, inherited first, in the order in which instances show them.
  std::vector<CimPropertyDeclaration> allProperties(const QORString& nameSpace, const QORString& className) const;

  // The declarations of a namespace's qualifiers by name, the outer source's included; none when it does not exist.
  // THROWS as the outer source.
  std::vector<CimQualifierDeclaration> qualifiers(const QORString& nameSpace) const;

  // MOF text of a class, which reads back as the same declaration: alone, or
  // with what it needs in front, the declarations of the qualifiers in it and
  // its superclasses from the root on. A null string when there is no such class.
  QORString classMof(const QORString& nameSpace, const QORString& className, bool isComplete) const;
  // MOF text of an instance, a property a line. THROWS QoriBaseException (type
  // "CIM_Value") when embedded objects nest deeper than a text can hold.
  static QORString instanceMof(const IQoriObject& instance);

  // The class must be declared in the namespace and have no provider yet, else
  // THROWS QoriBaseException (type "CIM_Repository"). Live instances come after
  // stored ones, in the order of registration; one whose path is stored is left out.
  void registerProvider(const QORString& nameSpace, std::shared_ptr<InstanceProvider> provider);
  // Another place to ask for classes that are not declared here, and for instances besides those that are here; null:
  // there is none, as at the start. To be called before anything is asked of the object manager.
  void setOuterSource(std::shared_ptr<OuterSource> source);
  // The classes that have one, in the order of registration; empty when the namespace does not exist.
  std::vector<QORString> liveClassNames(const QORString& nameSpace) const;

  // The instances of a class without those of classes derived from it, stored ones first, with the properties that are
  // named; null: all. Null for an unknown namespace or class. THROWS CQoriProviderException when the class's provider
  // fails, whatever the others would do. Costs as CIMApi::enumerateInstances for one class, each time.
  QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>> ownInstances(
      const QORString& nameSpace, const QORString& className,
      const QORSmrPtr<QORValSlist<QORString>>& propertyNames) const;

  // The associations of a class (an empty name: any) that refer to the source, by the named property (empty: any), with
  // the properties that are named; null: all. Null for an unknown namespace or class, or a null source. As
  // CIMApi::associators in all else.
  QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>> references(const QORString& nameSpace,
                                                            const QORSmrPtr<IQoriInstanceName>& source,
                                                            const QORString& associationClass,
                                                            const QORSmrPtr<QORValSlist<QORString>>& propertyNames,
                                                            const QORString& role) const;

  // Changes to stored instances. THROW as CimDeclarationSink::createInstance.
  QORSmrPtr<IQoriInstanceName> createInstance(const QORString& nameSpace, const CimInstanceDeclaration& declaration);
  // Sets the given properties of an existing instance; keys cannot change.
  void modifyInstance(const QORSmrPtr<IQoriInstanceName>& name, const std::vector<CimInstanceProperty>& properties);
  // Returns whether it existed.
  bool deleteInstance(const QORSmrPtr<IQoriInstanceName>& name);

  // Configuration. An INI file; THROWS QoriBaseException (type "CIM_Configuration") naming file and line.
  void loadConfiguration(const std::string& path);
  void setConfiguration(const QORString& section, const QORString& key, const QORString& value);

  // Sends log lines of a severity up to the given one (see QoriTraceLog) to the sink from now on, in the place of the
  // sink before; an empty function ends that. OWNS the function. It is called on the thread that logs, by several at
  // once, and under no lock; what it throws is dropped.
  void setLogSink(LogSink sink, QORuint32 maximumSeverity);

  // The counts since the start, or since they were last set back; each is exact, but threads that work meanwhile may
  // be in some and not yet in others.
  Statistics statistics() const;
  void resetStatistics();

  struct State;
  // For the services of this library.
  const std::shared_ptr<State>& state() const noexcept { return _state; }

 private:
  std::shared_ptr<State> _state;
};

#endif
