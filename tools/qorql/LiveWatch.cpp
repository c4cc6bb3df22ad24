// The live classes watched for a filter, and the indications of their changes.
// SPDX-License-Identifier: Apache-2.0
#include "LiveWatch.h"

#include <algorithm>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/QORQL/CQLQueryValidator.h"
#include "FilterReference.h"
#include "cimom/CQoriProviderException.h"

LiveWatch::LiveWatch(EmbeddedObjectManager& manager, const QORString& nameSpace, const CQLQueryStatement& filter)
    : _nameSpace(nameSpace), _filter(filter), _indications(manager, nameSpace) {
  const CQLQueryStatement::ClassList classes(filter.getClassList());
  QORValSlistIterator<QORSmrPtr<IQoriInstanceName>> each(*classes);
  while (++each) _sources.push_back(each.key()->getClassName());
  if (!asksForChanges()) return;
  const QORString text(filter.getQuery());
  const FromNames from(filter.getParsedQuery(), text.view());
  const IsaConditions isa(filter.getParsedQuery(), text.view(), from);
  const std::vector<std::string> wanted = isa.classesOf("SourceInstance");
  const auto isAllowed = [&](const QORString& className) {
    return std::all_of(wanted.begin(), wanted.end(), [&](const std::string& name) {
      return CQLQueryValidator::isSubClass(nameSpace, className, QORString(name));
    });
  };
  for (const QORString& className : manager.liveClassNames(nameSpace)) {
    if (!isAllowed(className)) continue;
    _watched.push_back({className, steadyProperties(manager, nameSpace, className, StatementText(text.view())), {}});
  }
}

// Those that change whenever one looks make no news, unless the filter names them.
CIMApi::PropertyNames LiveWatch::steadyProperties(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                                  const QORString& className, const StatementText& text) {
  const auto isNamed = [&](const QORString& property) {
    for (std::size_t i = 0; i < text.pieces().size(); ++i) {
      if (text.is(i, property.view())) return true;
    }
    return false;
  };
  const CIMApi::PropertyNames names(new QORValSlist<QORString>());
  bool isWhole = true;
  for (const CimPropertyDeclaration& property : manager.allProperties(nameSpace, className)) {
    const bool isSteady = !property.hasFlag("Volatile") || isNamed(property.name);
    if (isSteady) names->append(property.name);
    isWhole = isWhole && isSteady;
  }
  return isWhole ? CIMApi::PropertyNames() : names;
}

bool LiveWatch::asksFor(const char* indicationClass) const {
  return std::any_of(_sources.begin(), _sources.end(), [&](const QORString& source) {
    return CQLQueryValidator::isSubClass(_nameSpace, indicationClass, source);
  });
}

bool LiveWatch::asksForChanges() const {
  return asksFor(kInstCreation) || asksFor(kInstDeletion) || asksFor(kInstModification);
}

std::vector<QORString> LiveWatch::classNames() const {
  std::vector<QORString> names;
  for (const Watched& watched : _watched) names.push_back(watched.className);
  return names;
}

InstanceSnapshot LiveWatch::snapshotOf(const Watched& watched) const {
  CIMApi client;
  return {watched.className, client.enumerateInstances(_nameSpace, watched.className, watched.properties,
                                                       CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {})};
}

void LiveWatch::start(const Report& report) {
  const bool isAlone = _watched.size() == 1;
  std::erase_if(_watched, [&](Watched& watched) {
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
  if (!asksFor(Indications::classOf(change))) return;
  const QORSmrPtr<IQoriObject> indication(_indications.make(change));
  if (_filter.isMatch(indication, _nameSpace)) take(*indication);
}
