// Reads filters, and counts what they ask for.
// SPDX-License-Identifier: Apache-2.0
#include "LiveDemand.h"

#include <algorithm>

#include "Cimom/Embedded/Indications.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "FromNames.h"
#include "StatementReference.h"

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

// The properties, in upper case, that a filter names of the objects which its indications hold: what follows the
// indication's own property, as in i.SourceInstance.CPUTime.
std::set<std::string> propertiesNamedBy(const CQLQueryStatement& filter) {
  const QORString text(filter.getQuery());
  const FromNames from(filter.getParsedQuery(), text.view());
  std::set<std::string> named;
  forEachReference(filter.getParsedQuery(), text.view(), [&](const StatementReference& reference) {
    const std::size_t own = reference.names.size() > 1 && !from.classOf(reference.names[0].text).empty() ? 1 : 0;
    if (reference.names.size() > own + 1) named.insert(foldedName(reference.names[own + 1].text));
  });
  return named;
}

std::set<std::string> changingProperties(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                         const QORString& className) {
  std::set<std::string> names;
  for (const CimPropertyDeclaration& property : manager.allProperties(nameSpace, className)) {
    if (property.hasFlag("Volatile")) names.insert(foldedName(property.name.view()));
  }
  return names;
}

}  // namespace

std::string foldedName(std::string_view name) { return std::string(QORString::toUpperCase(QORString(name)).view()); }

void LiveDemand::unite(const LiveDemand& other) {
  changes.insert(other.changes.begin(), other.changes.end());
  for (const auto& [name, properties] : other.classes) classes[name].insert(properties.begin(), properties.end());
}

LiveDemandReader::LiveDemandReader(const EmbeddedObjectManager& manager, const QORString& nameSpace)
    : _nameSpace(nameSpace) {
  for (const QORString& name : manager.liveClassNames(nameSpace)) {
    _classes.push_back({name, changingProperties(manager, nameSpace, name)});
  }
}

LiveDemand LiveDemandReader::read(const CQLQueryStatement& filter) const {
  LiveDemand demand;
  for (const char* change : kChanges) {
    if (asksFor(filter, change)) demand.changes.insert(change);
  }
  if (demand.changes.empty() || _classes.empty()) return demand;
  const std::vector<std::string> wanted = sourceClasses(filter);
  const std::set<std::string> named = propertiesNamedBy(filter);
  for (const LiveClass& live : _classes) {
    const bool isAllowed = std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
      return CQLQueryValidator::isSubClass(_nameSpace, live.name, QORString(name));
    });
    if (!isAllowed) continue;
    std::set<std::string>& asked = demand.classes[std::string(live.name.view())];
    std::set_intersection(live.changing.begin(), live.changing.end(), named.begin(), named.end(),
                          std::inserter(asked, asked.end()));
  }
  return demand;
}

void LiveDemandSum::add(const LiveDemand& demand) {
  count(_changes, demand.changes);
  for (const auto& [name, properties] : demand.classes) {
    ClassCounts& counts = _classes[name];
    ++counts.filters;
    count(counts.properties, properties);
  }
}

void LiveDemandSum::remove(const LiveDemand& demand) {
  discount(_changes, demand.changes);
  for (const auto& [name, properties] : demand.classes) {
    const auto known = _classes.find(name);
    discount(known->second.properties, properties);
    if (--known->second.filters == 0) _classes.erase(known);
  }
}

LiveDemand LiveDemandSum::all() const {
  LiveDemand demand;
  demand.changes = namesIn(_changes);
  for (const auto& [name, counts] : _classes) demand.classes.emplace(name, namesIn(counts.properties));
  return demand;
}

void LiveDemandSum::count(Counts& counts, const std::set<std::string>& names) {
  for (const std::string& name : names) ++counts[name];
}

void LiveDemandSum::discount(Counts& counts, const std::set<std::string>& names) {
  for (const std::string& name : names) {
    const auto known = counts.find(name);
    if (--known->second == 0) counts.erase(known);
  }
}

std::set<std::string> LiveDemandSum::namesIn(const Counts& counts) {
  std::set<std::string> names;
  for (const auto& [name, count] : counts) names.insert(names.end(), name);
  return names;
}
