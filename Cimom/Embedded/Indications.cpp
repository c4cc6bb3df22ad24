// Makes the indications of changes of instances.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/Indications.h"

#include <utility>

#include "cimom/CQoriValue.h"

namespace {

QORSmrPtr<IQoriValue> textOf(const QORString& text) { return new CQoriValue(text); }

}  // namespace

Indications::Indications(EmbeddedObjectManager& manager, const QORString& nameSpace, IndicationOrigin origin)
    : _manager(manager), _nameSpace(nameSpace), _origin(std::move(origin)) {}

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
  add(indication, "IndicationIdentifier", textOf(QORString(_origin.series + std::to_string(++_count))));
  add(indication, "IndicationTime", _origin.now());
  add(indication, "SourceInstanceModelPath", textOf(source->getInstanceName()->toString()));
  add(indication, "SourceInstanceHost", textOf(QORString(_origin.host)));
  add(indication, "SourceInstance", new CQoriValue(source));
  if (!change.before.IsNull() && !change.after.IsNull()) {
    add(indication, "PreviousInstance", new CQoriValue(change.before));
  }
  return _manager.sink().makeObject(_nameSpace, indication);
}
