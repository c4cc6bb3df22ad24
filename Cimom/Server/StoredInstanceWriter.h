// The changes of stored instances, kept in a store.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_STOREDINSTANCEWRITER_H
#define QORQL_SERVER_STOREDINSTANCEWRITER_H

#include <functional>
#include <mutex>
#include <string>

#include "Cimom/Embedded/InstanceChanges.h"
#include "Cimom/Server/InstanceWriter.h"
#include "Cimom/Server/ServerStore.h"

// Has a say in what is written, and tells others of it. Called while other writers wait, unless something else is said.
class WriteObserver {
 public:
  virtual ~WriteObserver() = default;
  // What may take long, such as to ask another server for a class: nobody waits, and others may write meanwhile. REFUSE
  // as those below, which look again.
  virtual void prepareCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                             const CimInstanceDeclaration& declaration) = 0;
  virtual void prepareModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                             const std::vector<CimInstanceProperty>& properties) = 0;
  // REFUSE by throwing; nothing has happened then. The first may complete what is to be created.
  virtual void beforeCreate(EmbeddedObjectManager& manager, const QORString& nameSpace,
                            CimInstanceDeclaration& declaration) = 0;
  virtual void beforeModify(EmbeddedObjectManager& manager, const IQoriObject& before,
                            const std::vector<CimInstanceProperty>& properties) = 0;
  virtual void beforeRemove(EmbeddedObjectManager& manager, const IQoriObject& before) = 0;
  // Writes the change, by calling `write` once, together with what else belongs to it. What it throws undoes the
  // change.
  virtual void change(EmbeddedObjectManager& manager, const InstanceChange& change,
                      const std::function<void(ServerStore::Change&)>& write) = 0;
};

// The store first or the model first: both have the change or neither. An instance
// that no client can change, since it is live, is refused with 7.
class StoredInstanceWriter : public InstanceWriter {
 public:
  // BORROWS both; the observer may be null.
  StoredInstanceWriter(ServerStore& store, WriteObserver* observer) : _store(store), _observer(observer) {}

  QORSmrPtr<IQoriInstanceName> create(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                      const CimInstanceDeclaration& declaration) override;
  void modify(EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name,
              const std::vector<CimInstanceProperty>& properties) override;
  void remove(EmbeddedObjectManager& manager, const QORSmrPtr<IQoriInstanceName>& name) override;

  // Puts what clients left over what the object manager has declared. What does not fit it any more stays in the
  // store and is reported. To be called before others know the object manager.
  using Report = std::function<void(const std::string& path, const std::string& reason)>;
  void restore(EmbeddedObjectManager& manager, const Report& report);

 private:
  void write(EmbeddedObjectManager& manager, const InstanceChange& change,
             const std::function<void(ServerStore::Change&)>& write);

  ServerStore& _store;
  WriteObserver* const _observer;
  std::recursive_mutex _mutex;
};

#endif
