// One entry of a sort: a key and what it stands for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_ORDERBYHELPER_H
#define QORQL_ORDERBYHELPER_H

#include "Cimom/QORQL/QORQL_DataRow.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Compares by the keys' own order. THROWS QORNullPointerException when a key is null.
class QORQL_OrderByHelper {
 public:
  // A row with its key; the key is not null when it is compared.
  QORQL_OrderByHelper(const QORSmrPtr<IQoriValue>& key, const QORSmrPtr<QORQL_DataRow>& row) : _key(key), _row(row) {}
  // For rows that do not exist yet: the row's number.
  QORQL_OrderByHelper(const QORSmrPtr<IQoriValue>& key, QORuint32 number) : _key(key), _number(number) {}

  // What the constructors were given: the row is null for a row number, the number 0 for a row.
  const QORSmrPtr<IQoriValue>& GetKey() const noexcept { return _key; }
  const QORSmrPtr<QORQL_DataRow>& GetRow() const noexcept { return _row; }
  QORuint32 getNumber() const noexcept { return _number; }

  // By the keys.
  friend bool operator<(const QORQL_OrderByHelper& a, const QORQL_OrderByHelper& b) { return a._key < b._key; }
  friend bool operator>(const QORQL_OrderByHelper& a, const QORQL_OrderByHelper& b) { return a._key > b._key; }
  friend bool operator<=(const QORQL_OrderByHelper& a, const QORQL_OrderByHelper& b) { return a._key <= b._key; }
  friend bool operator>=(const QORQL_OrderByHelper& a, const QORQL_OrderByHelper& b) { return a._key >= b._key; }

 private:
  QORSmrPtr<IQoriValue> _key;
  QORSmrPtr<QORQL_DataRow> _row;
  QORuint32 _number = 0;
};

#endif
