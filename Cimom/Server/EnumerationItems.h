// What a client takes of an enumeration pull by pull.
// Tested by tests/unit/Server/PullOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_ENUMERATIONITEMS_H
#define QORQL_SERVER_ENUMERATIONITEMS_H

#include "Cimom/CimXml/CimXmlWriter.h"

// One thread at a time.
class EnumerationItems {
 public:
  virtual ~EnumerationItems() = default;
  virtual bool hasNext() const = 0;
  // About what they take of the memory, from the first on.
  virtual QORuint64 heldBytes() const = 0;
  // Writes the next one. REQUIRES that there is one.
  virtual void writeNext(CimXmlWriter& writer) = 0;
};

#endif
