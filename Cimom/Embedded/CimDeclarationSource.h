// Classes of which the names are known, and the rest is read when somebody needs it.
// Tested by tests/unit/Embedded/ClassEntryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CIMDECLARATIONSOURCE_H
#define QORQL_EMBEDDED_CIMDECLARATIONSOURCE_H

#include "Cimom/Embedded/CimDeclarations.h"

// What is known of a class from the start.
struct CimClassHeading {
  static constexpr QORsint32 kNoSuperClass = -1;  // of a root

  QORString nameSpace;
  QORString name;
  QORsint32 superClass = kNoSuperClass;  // the number of an earlier heading, in the same namespace
};

// Declarations that a sink has accepted before, in the order of their headings. Several threads may ask at once, under
// locks of the object manager: what answers asks nothing of that.
class CimDeclarationSource {
 public:
  virtual ~CimDeclarationSource() = default;

  // The class with that number. THROWS std::exception when it cannot be read.
  virtual CimClassDeclaration read(QORuint32 number) = 0;
  // The same from elsewhere, asked for when read() has thrown or what it gave is no such class. THROWS
  // QoriBaseException when there is no other way.
  virtual CimClassDeclaration readElsewhere(QORuint32 number) = 0;
};

#endif
