// The filter of an indication subscription as the object manager holds it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQUERYSTATEMENT_H
#define QORQL_CIMOM_IQUERYSTATEMENT_H

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

enum QUERY_VALIDATE { QUERY_VALIDATE_SUCCESS = 0, QUERY_UNSUPPORTED_LANGUAGE = 1, QUERY_INVALID_QUERY = 2 };

// Calling order: validate() once, on one thread; then the other operations as
// often as needed, from any number of threads.
class IQueryStatement {
 public:
  using PropertyNames = QORSmrPtr<QORValSlist<QORString>>;

  // As the statement was made with.
  virtual QORString getQueryLanguage() const = 0;
  virtual QORString getQuery() const = 0;
  // Never throws; what is wrong is logged. A second call returns the first status.
  virtual QUERY_VALIDATE validate() = 0;
  // The properties of a class that the statement, its select list or its WHERE
  // clause use, without duplicates; null stands for all of them.
  virtual PropertyNames getPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const = 0;
  virtual PropertyNames getSelectPropertyList(const QORSmrPtr<IQoriInstanceName>& className) const = 0;
  virtual PropertyNames getWherePropertyList(const QORSmrPtr<IQoriInstanceName>& className) const = 0;
  // The classes of the FROM clause as class paths.
  virtual QORSmrPtr<QORValSlist<QORSmrPtr<IQoriInstanceName>>> getClassList() const = 0;
  // Whether an instance that comes from the namespace satisfies the statement.
  virtual bool isMatch(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace) const = 0;
  virtual ~IQueryStatement() = default;
};

#endif
