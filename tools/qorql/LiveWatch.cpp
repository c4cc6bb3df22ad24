// Looking again and again for what filters ask for.
// SPDX-License-Identifier: Apache-2.0
#include "LiveWatch.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxValues.h"
#include "cimom/CQoriProviderException.h"

namespace {

// The properties of a class that are looked at; null: all.
CIMApi::PropertyNames watchedProperties(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                        const QORString& className, const std::set<std::string>& asked) {
  const CIMApi::PropertyNames names(new QORValSlist<QORString>());
  bool isWhole = true;
  for (const CimPropertyDeclaration& property : manager.allProperties(nameSpace, className)) {
    const bool isWatched = !property.hasFlag("Volatile") || asked.contains(foldedName(property.name.view()));
    if (isWatched) names->append(property.name);
    isWhole = isWhole && isWatched;
  }
  return isWhole ? CIMApi::PropertyNames() : names;
}

// Of two lists without repetitions; null is all.
bool areSame(const CIMApi::PropertyNames& a, const CIMApi::PropertyNames& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  QORValSlistIterator<QORString> each(*b);
  while (++each) {
    if (!a->contains(each.key())) return false;
  }
  return a->entries() == b->entries();
}

std::chrono::microseconds sinceEpoch() {
  return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch());
}

QORSmrPtr<IQoriValue> timeNow() {
  constexpr QORsint64 kMicroseconds = 1000000;
  const QORsint64 now = sinceEpoch().count();
  return dateTimeValue(now / kMicroseconds, now % kMicroseconds);
}

}  // namespace

IndicationOrigin thisMachine() {
  const std::string moment = std::to_string(getpid()) + "-" + std::to_string(sinceEpoch().count());
  return {hostName(), timeNow, "QORQL:" + moment + "-"};
}

LiveWatch::LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace, const LiveDemand& demand)
    : _manager(manager),
      _nameSpace(nameSpace),
      _changes(demand.changes),
      _indications(manager, nameSpace, thisMachine()) {
  for (const QORString& className : manager.liveClassNames(nameSpace)) {
    const auto asked = demand.classes.find(std::string(className.view()));
    if (asked == demand.classes.end()) continue;
    _watched.push_back({className, watchedProperties(manager, nameSpace, className, asked->second), {}});
  }
}

const LiveWatch::Watched* LiveWatch::find(const QORString& className) const {
  const auto known = std::find_if(_watched.begin(), _watched.end(), [&](const Watched& watched) {
    return watched.className.isEqualCaseInsensitive(className);
  });
  return known == _watched.end() ? nullptr : &*known;
}

InstanceSnapshot LiveWatch::snapshotOf(const Watched& watched) const {
  CIMApi client;
  return {watched.className, client.enumerateInstances(_nameSpace, watched.className, watched.properties,
                                                       CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {})};
}

void LiveWatch::start(const Report& report) { beginAll(nullptr, {}, report); }

void LiveWatch::continueFrom(const LiveWatch& before, const Take& take, const Report& report) {
  beginAll(&before, take, report);
}

void LiveWatch::beginAll(const LiveWatch* before, const Take& take, const Report& report) {
  std::vector<std::pair<QORString, CQoriProviderException>> absences;
  std::erase_if(_watched, [&](Watched& watched) {
    try {
      begin(watched, before == nullptr ? nullptr : before->find(watched.className), take, report);
    } catch (const CQoriProviderException& failure) {
      if (failure.getCode() != InstanceProvider::kNoSource) throw;
      absences.emplace_back(watched.className, failure);
      return true;
    }
    return false;
  });
  // Whoever watches nothing waits for what cannot come.
  if (_watched.empty() && !absences.empty()) throw CQoriProviderException(absences.front().second);
  for (const auto& [className, absence] : absences) report(className, absence);
}

// Where both look at the same the last look is taken over, which spares one.
void LiveWatch::begin(Watched& watched, const Watched* before, const Take& take, const Report& report) {
  if (before != nullptr && areSame(before->properties, watched.properties)) {
    watched.last = before->last;
    return;
  }
  watched.last = snapshotOf(watched);
  if (before != nullptr) hand(watched, commonChangesBetween(before->last, watched.last), take, report);
}

void LiveWatch::look(const Take& take, const Report& report) {
  for (Watched& watched : _watched) {
    InstanceSnapshot now;
    try {
      now = snapshotOf(watched);
    } catch (const QoriBaseException& failure) {
      report(watched.className, failure);
      continue;
    }
    hand(watched, changesBetween(watched.last, now), take, report);
    watched.last = std::move(now);
  }
}

// All are made before the first is handed over: what fails is done again as a whole or not at all.
void LiveWatch::hand(const Watched& watched, const std::vector<InstanceChange>& changes, const Take& take,
                     const Report& report) {
  std::vector<QORSmrPtr<IQoriObject>> indications;
  for (const InstanceChange& change : changes) {
    if (!_changes.contains(Indications::classOf(change))) continue;
    try {
      indications.push_back(_indications.make(change));
    } catch (const QoriBaseException& failure) {
      report(watched.className, failure);
    }
  }
  if (!indications.empty()) take(indications);
}
