// The description of one column of the result table.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TABLEHEADER_H
#define QORQL_TABLEHEADER_H

#include "cmpbase.h"

// The description of one column. Immutable.
class QORQL_TableHeader {
 public:
  // Three empty strings.
  QORQL_TableHeader() = default;
  QORQL_TableHeader(const QORString& name, const QORString& alias, const QORString& scope)
      : _name(name), _alias(alias), _scope(scope) {}

  // The class of the column's objects.
  QORString getName() const { return _name; }
  // The FROM alias, or the class name when there is none.
  QORString getAlias() const { return _alias; }
  QORString getScope() const { return _scope; }
  // Whether name or alias equals the argument, ignoring case.
  bool isNamed(const QORString& name) const noexcept {
    return _name.isEqualCaseInsensitive(name) || _alias.isEqualCaseInsensitive(name);
  }

 private:
  QORString _name = QORString::emptyString();
  QORString _alias = QORString::emptyString();
  QORString _scope = QORString::emptyString();
};

#endif
