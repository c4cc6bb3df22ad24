// What a query needs of one class: which properties to ask for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CLASSINFO_H
#define QORQL_CLASSINFO_H

#include "cmpbase.h"

// A class and the properties of it that a statement needs. Belongs to one thread at a time.
class QORQL_ClassInfo {
 public:
  using PropertyList = QORSmrPtr<QORValSlist<QORString>>;

  // A null list is replaced by a new empty one.
  QORQL_ClassInfo(QORString className, PropertyList properties, QORboolean allProperties);

  // Appends, without a check for duplicates.
  void addProperty(const QORString& property) { _properties->append(property); }
  // Appends unless the name is listed already, ignoring case; the list's memory is that of the slabs when it was
  // empty. Constant time on average.
  void addPropertyOnce(const QORString& property, QORSlabs& slabs);
  // Whether the name is listed, ignoring case. Constant time on average.
  bool listsProperty(const QORString& property);
  // Shared: callers see and change the same list. Never null.
  const PropertyList& getPropertyList() const noexcept { return _properties; }
  QORboolean needAllProperties() const noexcept { return _allProperties; }
  void setNeedAllProperties(QORboolean allProperties) noexcept { _allProperties = allProperties; }
  const QORString& getClassName() const noexcept { return _className; }

  // Whether the instances must come with every property although the projection
  // keeps some only: an association class that may be a column itself.
  QORboolean fetchAllProperties() const noexcept { return _fetchAll; }
  void setFetchAllProperties(QORboolean fetchAll) noexcept { _fetchAll = fetchAll; }

 private:
  void _updateIndex();

  QORString _className;
  PropertyList _properties;
  QORboolean _allProperties;
  QORboolean _fetchAll = false;
  // The folded names of the first _indexed elements of a long list; null for a short one.
  QORSmrPtr<QORValMap<QORString, bool>> _index;
  QORuint32 _indexed = 0;
  QORuint32 _indexBuckets = 0;
};

// The classes that a statement needs, by name: filled while it is parsed.
using QORQL_ClassInfoMap = QORValMap<QORString, QORSmrPtr<QORQL_ClassInfo>>;
using QORQL_ProjectionMap = QORSmrPtr<QORQL_ClassInfoMap>;

// A new, empty map.
QORQL_ProjectionMap QORQL_newProjectionMap(QORSlabs& slabs);
// A new record of a class, without properties yet.
QORSmrPtr<QORQL_ClassInfo> QORQL_newClassInfo(QORSlabs& slabs, const QORString& className, QORboolean allProperties);
// BORROWS: the map's record of that name (compared exactly), made in the slabs
// when it is absent; null when there is no map.
QORQL_ClassInfo* QORQL_recordOf(QORQL_ProjectionMap& map, const QORString& name, QORSlabs& slabs);

#endif
