// What a query needs of one class, and the map of all its classes.
//
// A select list may name thousands of properties of one class. Up to
// kScannedNames the list is searched as it is; beyond, an index of folded names
// is kept beside it, which catches up with names that were appended through the
// shared list and is rebuilt, four times as wide, when it is full.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ClassInfo.h"

#include <utility>

#include "Cimom/QORQL/QORQL_MapBuckets.h"

namespace {

constexpr QORuint32 kScannedNames = 16;

}  // namespace

QORQL_ClassInfo::QORQL_ClassInfo(QORString className, PropertyList properties, QORboolean allProperties)
    : _className(std::move(className)), _properties(std::move(properties)), _allProperties(allProperties) {
  if (_properties.IsNull()) _properties = PropertyList::Make();
}

void QORQL_ClassInfo::addPropertyOnce(const QORString& property, QORSlabs& slabs) {
  if (!listsProperty(property)) _properties->append(property, slabs);
}

bool QORQL_ClassInfo::listsProperty(const QORString& property) {
  if (_properties->entries() > kScannedNames) {
    _updateIndex();
    return _index->contains(QORString::toUpperCase(property));
  }
  QORValSlistIterator<QORString> names(*_properties);
  while (++names) {
    if (names.key().isEqualCaseInsensitive(property)) return true;
  }
  return false;
}

void QORQL_ClassInfo::_updateIndex() {
  const QORuint32 count = _properties->entries();
  if (_index.IsNull() || count < _indexed || count > _indexBuckets) {
    _indexBuckets = count * 4;
    _index = new QORValMap<QORString, bool>(&hashKeyQORString, _indexBuckets);
    _indexed = 0;
  }
  for (; _indexed < count; ++_indexed) _index->insert(QORString::toUpperCase(_properties->at(_indexed)), true);
}

QORQL_ProjectionMap QORQL_newProjectionMap(QORSlabs& slabs) {
  return QORQL_ProjectionMap::MakeIn(slabs, &hashKeyQORString, QORQL_kMapBuckets);
}

QORSmrPtr<QORQL_ClassInfo> QORQL_newClassInfo(QORSlabs& slabs, const QORString& className, QORboolean allProperties) {
  return QORSmrPtr<QORQL_ClassInfo>::MakeIn(slabs, className, QORQL_ClassInfo::PropertyList::MakeIn(slabs),
                                            allProperties);
}

QORQL_ClassInfo* QORQL_recordOf(QORQL_ProjectionMap& map, const QORString& name, QORSlabs& slabs) {
  if (map.IsNull()) return nullptr;
  if (const QORSmrPtr<QORQL_ClassInfo>* const known = map->peek(name)) return known->Get();
  const QORSmrPtr<QORQL_ClassInfo> record = QORQL_newClassInfo(slabs, name, false);
  map->insert(name, record, slabs);
  return record.Get();
}
