// Declarations of qualifiers, classes and instances, as a MOF reader or a
// provider hands them to the object manager.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CIMDECLARATIONS_H
#define QORQL_EMBEDDED_CIMDECLARATIONS_H

#include <vector>

#include "cimom/IQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// A qualifier on a class, property, method or parameter.
struct CimQualifier {
  QORString name;
  QORSmrPtr<IQoriValue> value;  // null: no value given (a boolean qualifier then means TRUE)
  bool toSubclass = true;
  bool overridable = true;
  bool translatable = false;
};

// `Qualifier Name : type = default, Scope(...), Flavor(...);`
struct CimQualifierDeclaration {
  QORString name;
  QORSmrPtr<IQoriType> type;
  QORSmrPtr<IQoriValue> defaultValue;  // null: none
  QORsint32 arraySize = -1;            // -1: unbounded or no array
  std::vector<QORString> scopes;       // lower case: "class", "property", "any", ...
  bool toSubclass = true;
  bool overridable = true;
  bool translatable = false;
};

// A property or a reference of a class.
struct CimPropertyDeclaration {
  QORString name;
  QORSmrPtr<IQoriType> type;
  QORString referenceClass;            // of a reference property; else empty
  QORsint32 arraySize = -1;            // -1: unbounded or no array
  bool isDefaultNull = false;          // the default is NULL, also where an inherited one is not
  QORSmrPtr<IQoriValue> defaultValue;  // null: none, an inherited one stays
  std::vector<CimQualifier> qualifiers;

  // The qualifier, ignoring case; null when absent.
  const CimQualifier* findQualifier(const char* qualifier) const;
  // A boolean qualifier that is present and not FALSE.
  bool hasFlag(const char* qualifier) const;
};

// Parameters have the shape of properties.
struct CimMethodDeclaration {
  QORString name;
  QORSmrPtr<IQoriType> returnType;
  std::vector<CimPropertyDeclaration> parameters;
  std::vector<CimQualifier> qualifiers;
};

// A class with what it adds to its superclass.
struct CimClassDeclaration {
  QORString name;
  QORString superClass;  // empty at the root
  std::vector<CimQualifier> qualifiers;
  std::vector<CimPropertyDeclaration> properties;  // own ones, in order
  std::vector<CimMethodDeclaration> methods;       // own ones, in order
};

// A property of an instance, by name.
struct CimInstanceProperty {
  QORString name;
  QORSmrPtr<IQoriValue> value;  // null: NULL
};

// An instance as it is to be stored or made.
struct CimInstanceDeclaration {
  QORString className;
  std::vector<CimInstanceProperty> properties;  // those given; the others take the class's defaults
};

#endif
