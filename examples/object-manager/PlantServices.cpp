// The platform interface, operation by operation: client calls, class repository,
// configuration and log. The object model that comes with the engine supplies the rest.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "PlantManager.h"
#include "PlantObject.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

namespace {

using Instances = CIMApi::Instances;

// An object with exactly the properties that a call names; a null list names all.
QORSmrPtr<IQoriObject> restricted(const QORSmrPtr<IQoriObject>& object, const CIMApi::PropertyNames& properties) {
  return properties.IsNull() ? object : QORSmrPtr<IQoriObject>(new CQoriBaseObject(object, properties, false));
}

// Those of a result class, where one is named.
Instances restrictAll(const Instances& all, const QORString& resultClass, const CIMApi::PropertyNames& properties) {
  const Instances list = Instances::Make();
  QORValSlistIterator<QORSmrPtr<IQoriObject>> objects(*all);
  while (++objects) {
    if (resultClass.isEmpty() || objects.key()->getClassName().isEqualCaseInsensitive(resultClass)) {
      list->append(restricted(objects.key(), properties));
    }
  }
  return list;
}

class PlantRepository final : public IQoriRepository {
 public:
  QORSmrPtr<IQoriClass> getClass(const QORString& nameSpace, const QORString& className) const override {
    if (!nameSpace.isEqualCaseInsensitive(kPlantNameSpace)) return {};
    return PlantSchema::instance().find(className);
  }
};

}  // namespace

// --- client calls --------------------------------------------------------------------------

const int CIMApi::DefaultTimeout = 60;

CIMApi::CIMApi() = default;
CIMApi::~CIMApi() = default;

CIMApi::Instances CIMApi::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                             const PropertyNames& properties, int /*timeout*/, const char* /*user*/,
                                             const char* /*password*/, const char* /*host*/,
                                             const QORSmrPtr<QoriTransactionInfo>& /*transaction*/) {
  const PlantManager* const manager = PlantManager::current();
  const Instances all = manager == nullptr ? Instances() : manager->objectsOf(nameSpace, className);
  return all.IsNull() ? all : restrictAll(all, QORString::emptyString(), properties);
}

CIMApi::Instances CIMApi::associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                                      const QORString& associationClass, const QORString& resultClass,
                                      const PropertyNames& properties, int /*timeout*/, const QORString& /*role*/,
                                      const QORString& /*resultRole*/, const QORString& /*host*/) {
  const PlantManager* const manager = PlantManager::current();
  const PlantSchema& schema = PlantSchema::instance();
  if (manager == nullptr || source.IsNull() || !nameSpace.isEqualCaseInsensitive(kPlantNameSpace)) return {};
  if (!associationClass.isEmpty() && !(schema.find(associationClass) == schema.placement)) return {};
  return restrictAll(manager->associatesOf(source->toString()), resultClass, properties);
}

QORSmrPtr<IQoriObject> CIMApi::getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                           const PropertyNames& properties, int /*timeout*/, const char* /*user*/,
                                           const char* /*password*/, const char* /*host*/) {
  const PlantManager* const manager = PlantManager::current();
  if (manager == nullptr || name.IsNull()) return {};
  const Instances all = manager->objectsOf(nameSpace, name->getClassName());
  if (all.IsNull()) return {};
  QORValSlistIterator<QORSmrPtr<IQoriObject>> objects(*all);
  while (++objects) {
    if (objects.key()->getInstanceName()->toString() == name->toString()) return restricted(objects.key(), properties);
  }
  return {};
}

// --- class repository ----------------------------------------------------------------------

QoriProviderPluginManager* QoriProviderPluginManager::getQoriProviderPluginManager() {
  static QoriProviderPluginManager only;
  return &only;
}

QORSmrPtr<IQoriRepository> QoriProviderPluginManager::getRepository() const {
  return PlantManager::current() == nullptr ? QORSmrPtr<IQoriRepository>() : new PlantRepository;
}

QORSmrPtr<QORValSlist<QORString>> QoriProviderPluginManager::getNamespaceList() const {
  const QORSmrPtr<QORValSlist<QORString>> names(new QORValSlist<QORString>);
  names->append(kPlantNameSpace);
  return names;
}

// --- configuration and log -----------------------------------------------------------------

ZEMOConfigManager* ZEMOConfigManager::getInstance() {
  static ZEMOConfigManager only;
  return &only;
}

// Nothing is configured: every setting has its default.
void ZEMOConfigManager::getString(const QORString& /*section*/, const QORString& /*key*/, QORString& value) const {
  value = QORString::emptyString();
}

QORuint32 QORLog::CIMOMLOG = 1;

void QORLog::log(const QORString& who, const QORString& message, QoriTraceLog::Severity severity,
                 QoriTraceLog::Verbosity /*verbosity*/, QORuint32 /*number*/, QORuint32 /*channel*/) noexcept {
  if (severity <= QoriTraceLog::kWarning) std::cout << "log: " << who << ": " << message << '\n';
}
