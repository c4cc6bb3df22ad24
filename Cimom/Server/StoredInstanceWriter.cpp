// Changes the model and the store together.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/StoredInstanceWriter.h"

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/InstanceDocument.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

using Name = QORSmrPtr<IQoriInstanceName>;
using Object = QORSmrPtr<IQoriObject>;

Object requireInstance(const EmbeddedObjectManager& manager, const Name& name) {
  Object found = findInstance(manager, name);
  if (found.IsNull()) {
    throw CimStatusException(cimstatus::kNotFound,
                             "instance " + std::string(name->toString().view()) + " does not exist");
  }
  return found;
}

ServerStore::Instance entryOf(const IQoriObject& object) {
  const Name name(object.getInstanceName());
  return {std::string(nameSpaceOf(*name).view()), std::string(name->toString().view()), instanceDocument(object),
          false};
}

[[noreturn]] void refuseLive(const Name& name) {
  throw CimStatusException(cimstatus::kNotSupported,
                           "instance " + std::string(name->toString().view()) + " is live and cannot be changed here");
}

// The values that the given properties had.
std::vector<CimInstanceProperty> valuesOf(const IQoriObject& object,
                                          const std::vector<CimInstanceProperty>& properties) {
  std::vector<CimInstanceProperty> values;
  for (const CimInstanceProperty& property : properties) {
    const QORSmrPtr<IQoriProperty> found(object.getProperty(property.name, true));
    if (!found.IsNull()) values.push_back({property.name, found->getValue()});
  }
  return values;
}

CimInstanceDeclaration declarationOf(const IQoriObject& object) {
  CimInstanceDeclaration declaration;
  declaration.className = object.getClassName();
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property(object.getPropertyAt(i));
    declaration.properties.push_back({property->getName(), property->getValue()});
  }
  return declaration;
}

void restoreOne(EmbeddedObjectManager& manager, const ServerStore::Instance& kept) {
  const QORString nameSpace(kept.nameSpace);
  const CimInstanceDeclaration declaration = readInstanceDocument(manager, nameSpace, kept.document);
  const Name name(manager.sink().makeObject(nameSpace, declaration)->getInstanceName());
  if (name.IsNull()) throw CimStatusException(cimstatus::kNotFound, "its class has no keys any more");
  if (kept.isGone) {
    manager.deleteInstance(name);
    return;
  }
  try {
    manager.modifyInstance(name, declaration.properties);
  } catch (const QoriBaseException& refusal) {
    if (refusal.getCode() != cimstatus::kNotFound) throw;
    manager.createInstance(nameSpace, declaration);
  }
}

}  // namespace

void StoredInstanceWriter::write(EmbeddedObjectManager& manager, const InstanceChange& change,
                                 const std::function<void(ServerStore::Change&)>& write) {
  if (_observer != nullptr) return _observer->change(manager, change, write);
  ServerStore::Change kept(_store);
  write(kept);
  kept.commit();
}

QORSmrPtr<IQoriInstanceName> StoredInstanceWriter::create(EmbeddedObjectManager& manager, const QORString& nameSpace,
                                                          const CimInstanceDeclaration& declaration) {
  if (_observer != nullptr) _observer->prepareCreate(manager, nameSpace, declaration);
  const std::lock_guard lock(_mutex);
  CimInstanceDeclaration whole = declaration;
  if (_observer != nullptr) _observer->beforeCreate(manager, nameSpace, whole);
  const Name name(manager.createInstance(nameSpace, whole));
  try {
    const Object after(requireInstance(manager, name));
    const ServerStore::Instance entry = entryOf(*after);
    write(manager, {{}, after}, [&](ServerStore::Change& kept) { kept.create(entry); });
  } catch (...) {
    manager.deleteInstance(name);
    throw;
  }
  return name;
}

void StoredInstanceWriter::modify(EmbeddedObjectManager& manager, const Name& name,
                                  const std::vector<CimInstanceProperty>& properties) {
  if (_observer != nullptr) _observer->prepareModify(manager, *requireInstance(manager, name), properties);
  const std::lock_guard lock(_mutex);
  const Object before(requireInstance(manager, name));
  if (_observer != nullptr) _observer->beforeModify(manager, *before, properties);
  try {
    manager.modifyInstance(before->getInstanceName(), properties);
  } catch (const QoriBaseException& refusal) {
    if (refusal.getCode() == cimstatus::kNotFound) refuseLive(name);
    throw;
  }
  try {
    const Object after(requireInstance(manager, before->getInstanceName()));
    const ServerStore::Instance entry = entryOf(*after);
    write(manager, {before, after}, [&](ServerStore::Change& kept) { kept.modify(entry); });
  } catch (...) {
    manager.modifyInstance(before->getInstanceName(), valuesOf(*before, properties));
    throw;
  }
}

void StoredInstanceWriter::remove(EmbeddedObjectManager& manager, const Name& name) {
  const std::lock_guard lock(_mutex);
  const Object before(requireInstance(manager, name));
  if (_observer != nullptr) _observer->beforeRemove(manager, *before);
  const ServerStore::Instance entry = entryOf(*before);
  if (!manager.deleteInstance(before->getInstanceName())) refuseLive(name);
  try {
    write(manager, {before, {}}, [&](ServerStore::Change& kept) { kept.remove(entry); });
  } catch (...) {
    manager.createInstance(QORString(entry.nameSpace), declarationOf(*before));
    throw;
  }
}

void StoredInstanceWriter::restore(EmbeddedObjectManager& manager, const Report& report) {
  const std::lock_guard lock(_mutex);
  for (const ServerStore::Instance& kept : _store.instances()) {
    try {
      restoreOne(manager, kept);
    } catch (const QoriBaseException& refusal) {
      report(kept.path, std::string(refusal.getMessage().view()));
    }
  }
}
