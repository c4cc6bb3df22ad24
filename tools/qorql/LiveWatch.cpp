// What filters ask for, and looking again and again for it.
// SPDX-License-Identifier: Apache-2.0
#include "LiveWatch.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <string_view>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxValues.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "FromNames.h"
#include "StatementReference.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr const char* kChanges[] = {kInstCreation, kInstDeletion, kInstModification};

// Whether FROM names the class or one above it.
bool asksFor(const CQLQueryStatement& filter, const char* indicationClass) {
  const CQLQueryStatement::ClassList classes(filter.getClassList());
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> each(*classes);
  while (++each) {
    if (CQLQueryValidator::isSubClass(filter.getNameSpace(), indicationClass, each.key()->getClassName())) return true;
  }
  return false;
}

// The classes of which SourceInstance must be, each of them.
std::vector<std::string> sourceClasses(const CQLQueryStatement& filter) {
  const QORString text(filter.getQuery());
  const FromNames from(filter.getParsedQuery(), text.view());
  return IsaConditions(filter.getParsedQuery(), text.view(), from).classesOf("SourceInstance");
}

std::string folded(std::string_view name) { return std::string(QORString::toUpperCase(QORString(name)).view()); }

// The properties, in upper case, that a filter names of the objects which its indications hold: what follows the
// indication's own property, as in i.SourceInstance.CPUTime.
std::set<std::string> propertiesNamedBy(const CQLQueryStatement& filter) {
  const QORString text(filter.getQuery());
  const FromNames from(filter.getParsedQuery(), text.view());
  std::set<std::string> named;
  forEachReference(filter.getParsedQuery(), text.view(), [&](const StatementReference& reference) {
    const std::size_t own = reference.names.size() > 1 && !from.classOf(reference.names[0].text).empty() ? 1 : 0;
    if (reference.names.size() > own + 1) named.insert(folded(reference.names[own + 1].text));
  });
  return named;
}

// The properties of a class that are looked at for a filter; null: all. Those that change
// whenever one looks make no news, unless the filter names them.
CIMApi::PropertyNames steadyProperties(const EmbeddedObjectManager& manager, const QORString& className,
                                       const CQLQueryStatement& filter) {
  const std::set<std::string> named = propertiesNamedBy(filter);
  const CIMApi::PropertyNames names(new QORValSlist<QORString>());
  bool isWhole = true;
  for (const CimPropertyDeclaration& property : manager.allProperties(filter.getNameSpace(), className)) {
    const bool isSteady = !property.hasFlag("Volatile") || named.contains(folded(property.name.view()));
    if (isSteady) names->append(property.name);
    isWhole = isWhole && isSteady;
  }
  return isWhole ? CIMApi::PropertyNames() : names;
}

// Adds the names that a list lacks; null is all of them.
void unite(CIMApi::PropertyNames& names, const CIMApi::PropertyNames& others) {
  if (names.IsNull() || others.IsNull()) {
    names = CIMApi::PropertyNames();
    return;
  }
  QORValSlistIterator<QORString> other(*others);
  while (++other) {
    if (!names->contains(other.key())) names->append(other.key());
  }
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

LiveWatch::LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace)
    : _manager(manager), _nameSpace(nameSpace), _indications(manager, nameSpace, thisMachine()) {
  for (const QORString& className : manager.liveClassNames(nameSpace))
    _watched.push_back({className, false, false, {}, {}});
}

std::string LiveWatch::add(const CQLQueryStatement& filter) {
  bool asksForChanges = false;
  for (const char* change : kChanges) {
    if (!asksFor(filter, change)) continue;
    asksForChanges = true;
    if (std::find(_changes.begin(), _changes.end(), change) == _changes.end()) _changes.push_back(change);
  }
  if (!asksForChanges) return "the filter asks for no indication of a change: nothing will be printed";
  const std::vector<std::string> wanted = sourceClasses(filter);
  bool hasClass = false;
  for (Watched& watched : _watched) {
    const bool isAllowed = std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
      return CQLQueryValidator::isSubClass(_nameSpace, watched.className, QORString(name));
    });
    if (!isAllowed) continue;
    const CIMApi::PropertyNames properties(steadyProperties(_manager, watched.className, filter));
    if (!watched.isAskedFor) watched.properties = properties;
    unite(watched.properties, properties);
    watched.isAskedFor = hasClass = true;
  }
  return hasClass ? "" : "no live class is of the class that the filter asks for: nothing will be printed";
}

void LiveWatch::continueFrom(const LiveWatch& before) {
  for (Watched& watched : _watched) {
    const auto known = std::find_if(before._watched.begin(), before._watched.end(), [&](const Watched& other) {
      return other.className.isEqualCaseInsensitive(watched.className) && areSame(other.properties, watched.properties);
    });
    if (!watched.isAskedFor || known == before._watched.end()) continue;
    watched.last = known->last;
    watched.hasLast = true;
  }
}

InstanceSnapshot LiveWatch::snapshotOf(const Watched& watched) const {
  CIMApi client;
  return {watched.className, client.enumerateInstances(_nameSpace, watched.className, watched.properties,
                                                       CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {})};
}

void LiveWatch::start(const Report& report) {
  std::erase_if(_watched, [](const Watched& watched) { return !watched.isAskedFor; });
  const bool isAlone = _watched.size() == 1;
  std::erase_if(_watched, [&](Watched& watched) {
    if (watched.hasLast) return false;
    try {
      watched.last = snapshotOf(watched);
    } catch (const CQoriProviderException& failure) {
      if (isAlone || failure.getCode() != InstanceProvider::kNoSource) throw;
      report(watched.className, failure);
      return true;
    }
    return false;
  });
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
    for (const InstanceChange& change : changesBetween(watched.last, now)) hand(change, take);
    watched.last = std::move(now);
  }
}

void LiveWatch::hand(const InstanceChange& change, const Take& take) {
  const std::string_view indicationClass = Indications::classOf(change);
  const bool isAskedFor = std::find(_changes.begin(), _changes.end(), indicationClass) != _changes.end();
  if (isAskedFor) take(_indications.make(change));
}
