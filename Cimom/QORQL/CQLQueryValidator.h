// Schema look-ups against the object manager's class repository.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLQUERYVALIDATOR_H
#define QORQL_CQLQUERYVALIDATOR_H

#include "cmpbase.h"

// Stateless; any thread may call. Names ignore case. Without a repository every answer is false.
class CQLQueryValidator {
 public:
  // Whether the namespace has the class.
  static bool findClass(const QORString& nameSpace, const QORString& className);
  // The flag includes inherited properties.
  static bool findProperty(const QORString& nameSpace, const QORString& className, const QORString& propertyName,
                           bool includeInherited);
  // In the first of the repository's namespaces that has the class.
  static bool findProperty(const QORString& className, const QORString& propertyName, bool includeInherited);
  // True when the names are equal, without asking the repository, or when the
  // superclass chain of the class reaches the other.
  static bool isSubClass(const QORString& nameSpace, const QORString& className, const QORString& superClassName);
};

#endif
