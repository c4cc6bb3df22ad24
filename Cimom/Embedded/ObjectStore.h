// Namespaces with their classes, qualifiers, instances and live sources, and
// the lock that lets queries run while they change.
// Tested by tests/unit/Embedded/InstanceStoreTest.cpp, tests/unit/Embedded/LoadTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_OBJECTSTORE_H
#define QORQL_EMBEDDED_OBJECTSTORE_H

#include <atomic>
#include <memory>
#include <shared_mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/NameMap.h"
#include "Cimom/Embedded/NameSpace.h"
#include "Cimom/Embedded/RowPlan.h"

namespace embedded {

// Whose view it is: queries see what has been committed, a loader its own pending work too.
enum class View { Committed, Loader };

// Committed namespaces and classes are never removed, so that what is borrowed
// of them stays valid while the store lives; instances are borrowed under the
// lock only. Operations REQUIRE the lock: shared for look-ups, exclusive for
// changes. Refusals THROW QoriBaseException (type "CIM_Repository").
class ObjectStore {
 public:
  std::shared_mutex& mutex() const noexcept { return _mutex; }
  // The lock for those who look at stored instances: what has been left for later is read before.
  std::shared_lock<std::shared_mutex> lockInstances() const;

  // BORROW: null when there is none.
  NameSpace* findNameSpace(const QORString& name, View view) const noexcept;
  ClassEntry* findClass(const QORString& nameSpace, const QORString& className, View view) const noexcept;
  static ClassEntry* findClass(const NameSpace& space, const QORString& className, View view) noexcept;
  StoredInstance* findInstance(const QORString& nameSpace, const IQoriInstanceName& name, View view) const;
  const std::vector<std::unique_ptr<NameSpace>>& nameSpaces() const noexcept { return _nameSpaces; }

  // The name in the repository's spelling of namespace, class and keys, with
  // the given namespace when it has none. Null when it names no class or not
  // exactly the class's keys.
  QORSmrPtr<IQoriInstanceName> canonicalName(const QORString& nameSpace, const IQoriInstanceName& name,
                                             View view) const;
  // A reference value whose name is canonical, as far as its class is known.
  QORSmrPtr<IQoriValue> canonicalReference(const QORString& nameSpace, const QORSmrPtr<IQoriValue>& value,
                                           View view) const;

  // The same for what a provider hands out, which may give more keys than the
  // class in force has: the others are dropped.
  QORSmrPtr<IQoriValue> providedReference(const QORString& nameSpace, const QORSmrPtr<IQoriValue>& value) const;

  void createNameSpace(const QORString& name, View view);
  void declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration, View view);
  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration, View view);
  // Classes that a source tells when they are needed; false, and nothing is declared, where they cannot be left to it.
  bool declareClasses(const std::vector<CimClassHeading>& headings, const std::shared_ptr<CimDeclarationSource>& source,
                      View view);
  // REQUIRES a provider of the class.
  void addSource(const QORString& nameSpace, const QORString& className, std::shared_ptr<InstanceProvider> provider);
  StoredInstance& createInstance(const QORString& nameSpace, const CimInstanceDeclaration& declaration, View view);
  // What many instances that give these properties, in this order, are created by; null when the class is not one that
  // can be filled so. BORROWS from the store: it is for the transaction in which it is made.
  std::unique_ptr<RowPlan> planRows(const QORString& nameSpace, const QORString& className,
                                    const std::vector<QORString>& propertyNames, View view) const;
  // False when the row cannot be stored just so, or its path is there already.
  bool createInstance(RowPlan& plan, std::string_view row, View view);
  // Rows of such a plan, which become instances when they are needed. False when one of them cannot.
  bool createLater(std::unique_ptr<RowPlan> plan, std::string_view rows, QORuint32 count,
                   const std::shared_ptr<const void>& owner, View view);
  QORSmrPtr<IQoriObject> makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration,
                                    View view) const;
  QORSmrPtr<IQoriObject> makeClassObject(const QORString& nameSpace, const CimClassDeclaration& declaration,
                                         View view) const;
  void modifyInstance(const IQoriInstanceName& name, const std::vector<CimInstanceProperty>& properties);
  bool deleteInstance(const IQoriInstanceName& name);

  // Another one after each change of the committed classes, unlike that of any other
  // store. Needs no lock.
  QORuint64 classVersion() const noexcept { return _classVersion.load(std::memory_order_acquire); }

  // What a loader changes in between is pending until commit.
  void begin();
  void commit();
  void rollback() noexcept;

 private:
  // What a load has done so far, in order.
  struct Pending {
    std::vector<NameSpace*> nameSpaces;
    std::vector<std::pair<NameSpace*, std::string>> qualifiers;
    std::vector<std::pair<NameSpace*, ClassEntry*>> classes;
    std::vector<std::pair<NameSpace*, StoredInstance*>> instances;
  };

  NameSpace& requireNameSpace(const QORString& name, View view) const;
  static ClassEntry* requireSuperClass(const NameSpace& space, const CimClassDeclaration& declaration, View view);
  ClassEntry& addClass(NameSpace& space, std::unique_ptr<ClassEntry> entry, View view);
  bool areFirst(const std::vector<CimClassHeading>& headings, View view) const;
  ClassEntry& requireConcreteClass(const NameSpace& space, const QORString& className, View view) const;
  QORSmrPtr<IQoriInstanceName> canonicalName(const QORString& nameSpace, const IQoriInstanceName& name, View view,
                                             int depth) const;
  QORSmrPtr<IQoriValue> canonicalReference(const QORString& nameSpace, const QORSmrPtr<IQoriValue>& value, View view,
                                           int depth) const;
  std::vector<QORSmrPtr<IQoriValue>> valuesFor(const NameSpace& space, const ClassEntry& entry,
                                               const CimInstanceDeclaration& declaration, View view) const;
  void setValues(const NameSpace& space, const CQoriClass& model, const std::vector<CimInstanceProperty>& properties,
                 std::vector<QORSmrPtr<IQoriValue>>& values, View view) const;
  // Null when the path is there already.
  StoredInstance* store(NameSpace& space, ClassEntry& entry, const QORSmrPtr<IQoriObject>& object,
                        std::string_view path, QORuint64 sequence, bool isPending) const;
  static bool hasCommittedRows(const NameSpace& space) noexcept;
  // Makes instances of the rows that were left for later. REQUIRES the exclusive lock.
  void readLaterRows() const;
  void readRows(NameSpace& space, LaterRows& later) const;
  static QORuint64 nextClassVersion() noexcept;
  void noteClassChange() noexcept { _classVersion.store(nextClassVersion(), std::memory_order_release); }
  bool becomesPending(View view) const noexcept { return view == View::Loader && _pending != nullptr; }

  mutable std::shared_mutex _mutex;
  std::vector<std::unique_ptr<NameSpace>> _nameSpaces;  // in creation order
  NameMap<NameSpace*> _nameSpaceIndex;
  QORuint64 _nextSequence = 1;
  std::atomic<QORuint64> _classVersion{nextClassVersion()};
  std::unique_ptr<Pending> _pending;   // null: no load is open
  mutable bool _hasLaterRows = false;  // in any namespace
};

}  // namespace embedded

#endif
