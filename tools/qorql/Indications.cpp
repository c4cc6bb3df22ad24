// Makes the indications of changes of instances.
// SPDX-License-Identifier: Apache-2.0
#include "Indications.h"

#include <unistd.h>

#include <chrono>

#include "Cimom/Providers/LinuxValues.h"
#include "cimom/CQoriValue.h"

namespace {

QORSmrPtr<IQoriValue> textOf(const QORString& text) { return new CQoriValue(text); }

std::chrono::microseconds sinceEpoch() {
  return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch());
}

QORSmrPtr<IQoriValue> timeNow() {
  constexpr QORsint64 kMicroseconds = 1000000;
  const QORsint64 now = sinceEpoch().count();
  return dateTimeValue(now / kMicroseconds, now % kMicroseconds);
}

}  // namespace

Indications::Indications(EmbeddedObjectManager& manager, const QORString& nameSpace)
    : _manager(manager),
      _nameSpace(nameSpace),
      _series("QORQL:" + std::to_string(getpid()) + "-" + std::to_string(sinceEpoch().count()) + "-") {}

const char* Indications::classOf(const InstanceChange& change) noexcept {
  if (change.before.IsNull()) return kInstCreation;
  return change.after.IsNull() ? kInstDeletion : kInstModification;
}

void Indications::add(CimInstanceDeclaration& indication, const char* property,
                      const QORSmrPtr<IQoriValue>& value) const {
  CimPropertyDeclaration declared;
  if (!_manager.sink().describeProperty(_nameSpace, indication.className, property, declared)) return;
  indication.properties.push_back({property, value});
}

QORSmrPtr<IQoriObject> Indications::make(const InstanceChange& change) {
  const QORSmrPtr<IQoriObject>& source = change.after.IsNull() ? change.before : change.after;
  CimInstanceDeclaration indication;
  indication.className = classOf(change);
  add(indication, "IndicationIdentifier", textOf(QORString(_series + std::to_string(++_count))));
  add(indication, "IndicationTime", timeNow());
  add(indication, "SourceInstanceModelPath", textOf(source->getInstanceName()->toString()));
  add(indication, "SourceInstanceHost", textOf(QORString(hostName())));
  add(indication, "SourceInstance", new CQoriValue(source));
  if (!change.before.IsNull() && !change.after.IsNull()) {
    add(indication, "PreviousInstance", new CQoriValue(change.before));
  }
  return _manager.sink().makeObject(_nameSpace, indication);
}
