// What became of the instances of a class between two looks at them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/InstanceChanges.h"

namespace {

bool areSameValues(const QORSmrPtr<IQoriValue>& a, const QORSmrPtr<IQoriValue>& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  try {
    // A number that is none differs from itself; its text does not.
    return a->relate(QoriRelation::Equal, *b) == QoriTruth::True || a->toString() == b->toString();
  } catch (const QoriBaseException&) {
    return false;
  }
}

bool haveSameCommonValues(const IQoriObject& a, const IQoriObject& b) {
  for (QORuint32 i = 0; i < a.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> mine(a.getPropertyAt(i));
    const QORSmrPtr<IQoriProperty> theirs(b.getProperty(mine->getName(), true));
    if (!theirs.IsNull() && !areSameValues(mine->getValue(), theirs->getValue())) return false;
  }
  return true;
}

using Comparison = bool (*)(const IQoriObject& a, const IQoriObject& b);

std::vector<InstanceChange> changesWith(Comparison areSame, const InstanceSnapshot& before,
                                        const InstanceSnapshot& after) {
  std::vector<InstanceChange> changes;
  for (std::size_t i = 0; i < before.instances().size(); ++i) {
    if (after.find(before.pathOf(i)).IsNull()) changes.push_back({before.instances()[i], {}});
  }
  for (std::size_t i = 0; i < after.instances().size(); ++i) {
    const QORSmrPtr<IQoriObject>& now = after.instances()[i];
    const QORSmrPtr<IQoriObject> then(before.find(after.pathOf(i)));
    if (then.IsNull() || !areSame(*then, *now)) changes.push_back({then, now});
  }
  return changes;
}

}  // namespace

InstanceSnapshot::InstanceSnapshot(const QORString& className, const CIMApi::Instances& instances) {
  if (instances.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
  while (++each) {
    const QORSmrPtr<IQoriInstanceName> name(each.key()->getInstanceName());
    if (name.IsNull() || !each.key()->getClassName().isEqualCaseInsensitive(className)) continue;
    const std::string path(name->toString().view());
    if (!_index.emplace(path, _instances.size()).second) continue;
    _instances.push_back(each.key());
    _paths.push_back(path);
  }
}

QORSmrPtr<IQoriObject> InstanceSnapshot::find(const std::string& path) const {
  const auto found = _index.find(path);
  return found == _index.end() ? QORSmrPtr<IQoriObject>() : _instances[found->second];
}

bool haveSameValues(const IQoriObject& a, const IQoriObject& b) {
  if (a.getPropertyCount() != b.getPropertyCount()) return false;
  for (QORuint32 i = 0; i < a.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> mine(a.getPropertyAt(i));
    const QORSmrPtr<IQoriProperty> theirs(b.getPropertyAt(i));
    if (!mine->getName().isEqualCaseInsensitive(theirs->getName())) return false;
    if (!areSameValues(mine->getValue(), theirs->getValue())) return false;
  }
  return true;
}

std::vector<InstanceChange> changesBetween(const InstanceSnapshot& before, const InstanceSnapshot& after) {
  return changesWith(&haveSameValues, before, after);
}

std::vector<InstanceChange> commonChangesBetween(const InstanceSnapshot& before, const InstanceSnapshot& after) {
  return changesWith(&haveSameCommonValues, before, after);
}
