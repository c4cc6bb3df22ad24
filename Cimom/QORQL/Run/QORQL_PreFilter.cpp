// Whether providers filter at the source: a setting that is read once in the
// process, and a qualifier of the provider's class.
// SPDX-License-Identifier: Apache-2.0
#include <atomic>

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_Helper.h"
#include "cimom/QoriProviderPluginManager.h"
#include "cimom/ZEMOConfigManager.h"

namespace {

// Set once and never reset. Threads that arrive at the same time each read the
// configuration and store the same answer.
std::atomic<bool> isSettingRead{false};
std::atomic<bool> isEnabled{true};

bool isPreFilterEnabled() {
  if (!isSettingRead.load(std::memory_order_acquire)) {
    QORString value;
    ZEMOConfigManager::getInstance()->getString("ZEMO", "DisablePreFilter", value);
    isEnabled.store(!value.isEqualCaseInsensitive("true"), std::memory_order_relaxed);
    isSettingRead.store(true, std::memory_order_release);
  }
  return isEnabled.load(std::memory_order_relaxed);
}

bool isFilteredAtSource(const QORSmrPtr<IQoriObject>& object) {
  const QORSmrPtr<IQoriRepository> repository(
      QoriProviderPluginManager::getQoriProviderPluginManager()->getRepository());
  if (repository.IsNull()) return false;
  const QORSmrPtr<IQoriClass> declaration(
      repository->getClass(IQoriObject::getLocalNameSpace(object), object->getClassName()));
  return !declaration.IsNull() &&
         declaration->getQualifier(QORQL_ExecutionMessages::kProviderFiltered, true) != nullptr;
}

}  // namespace

void updatePreFilter(QORSmrPtr<QORQL_DataTable>& table, const QORSmrPtr<IQoriObject>& object) {
  if (!isPreFilterEnabled()) return;
  if (table->preFilterSet() && !table->allCellsPreFiltered()) return;
  table->setCellPreFiltered(isFilteredAtSource(object));
}
