// The bookkeeping of outer joins, shared by evaluation row by row and by lazy rows.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_OUTERJOIN_H
#define QORQL_OUTERJOIN_H

#include <algorithm>
#include <utility>
#include <vector>

#include "Cimom/QORQL/QORQL_JoinType.h"
#include "Cimom/QORQL/QORQL_MapBuckets.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// The text that distinguishes instances; empty for an object without a name.
inline QORString QORQL_instanceKey(const IQoriObject& object) {
  const QORSmrPtr<IQoriInstanceName> name(object.getInstanceName());
  return name.IsNull() ? QORString::emptyString() : name->toString();
}

// One evaluation's record of which objects of either side were in a row that
// satisfied the comparison, and which were not. Object is how a side's object
// is recorded (a pointer to it, or its index).
template <class Object>
class QORQL_OuterJoin {
 public:
  explicit QORQL_OuterJoin(QORQL_JoinType joinType) : _joinType(joinType) {}

  bool isOuter() const noexcept { return _joinType != QORQL_JOIN_TYPE_INNER; }

  // A left object first seen in a row that failed is never recorded as matched.
  void recordLeft(const QORString& key, const Object& object, bool isMatch) {
    if (!isMatch) {
      _unmatchedLeft.add(key, object);
    } else if (!_unmatchedLeft.contains(key)) {
      _matchedLeft.add(key, object);
    }
  }
  void recordRight(const QORString& key, const Object& object, bool isMatch) {
    (isMatch ? _matchedRight : _unmatchedRight).add(key, object);
  }

  // Calls for every object that needs a null-extended row: left ones, then
  // right ones, each side in the iteration order of the map by key.
  template <class Callback>
  void forEachLeft(Callback callback) const {
    if (_joinType == QORQL_JOIN_TYPE_LEFT_OUTER || _joinType == QORQL_JOIN_TYPE_FULL_OUTER) {
      _unmatchedLeft.forEachNotIn(_matchedLeft, callback);
    }
  }
  template <class Callback>
  void forEachRight(Callback callback) const {
    if (_joinType == QORQL_JOIN_TYPE_RIGHT_OUTER || _joinType == QORQL_JOIN_TYPE_FULL_OUTER) {
      _unmatchedRight.forEachNotIn(_matchedRight, callback);
    }
  }

 private:
  class Record {
   public:
    Record() : _objects(hashKeyQORString, QORQL_kMapBuckets) {}
    void add(const QORString& key, const Object& object) {
      if (!_objects.contains(key)) _objects.insert(key, object);
    }
    bool contains(const QORString& key) const { return _objects.contains(key); }
    template <class Callback>
    void forEachNotIn(const Record& other, Callback callback) const {
      QORValMapIterator<QORString, Object> iterator(_objects);
      while (++iterator) {
        if (!other.contains(iterator.key())) callback(iterator.value());
      }
    }

   private:
    QORValMap<QORString, Object> _objects;
  };

  QORQL_JoinType _joinType;
  Record _matchedLeft;
  Record _unmatchedLeft;
  Record _matchedRight;
  Record _unmatchedRight;
};

#endif
