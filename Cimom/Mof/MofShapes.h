// The classes of the repository as instances need them: properties with types,
// and which of them are keys.
// Tested by tests/unit/Mof/MofInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFSHAPES_H
#define QORQL_MOF_MOFSHAPES_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofType.h"

struct MofPropertyShape {
  QORString name;  // in the repository's spelling
  const MofType* type = nullptr;
  bool isArray = false;
  QORsint32 arraySize = -1;
  bool isKey = false;
  QORString referenceClass;  // of a reference
  QORString embeddedClass;   // the class that an embedded instance must have; empty: any
  QORSmrPtr<IQoriValue> defaultValue;
  QORuint32 position = 0;
};

struct MofClassShape {
  QORString nameSpace;  // both in the repository's spelling
  QORString className;
  std::vector<MofPropertyShape> properties;
  std::unordered_map<std::string, QORuint32> positions;  // by folded name

  // BORROWS: the property, ignoring case; null when there is none.
  const MofPropertyShape* find(const QORString& name) const;
  // The property's name that is spelled most alike; empty when none is.
  std::string similarName(const QORString& name) const;
};

// Looked up once for each class. Belongs to one load, after its classes have
// been declared.
class MofShapes {
 public:
  explicit MofShapes(CimDeclarationSink& sink) : _sink(sink) {}

  // BORROWS: the class; null when the namespace has none. THROWS
  // QoriBaseException when it can have no instances.
  const MofClassShape* find(const QORString& nameSpace, const QORString& className);
  // Whether a class is another one or derived from it. True as well when the
  // class is not known.
  bool isA(const QORString& nameSpace, const QORString& className, const QORString& ancestor) const;

 private:
  std::unique_ptr<MofClassShape> describe(const QORString& nameSpace, const QORString& className) const;
  MofPropertyShape describeProperty(const MofClassShape& shape, const QORString& name) const;

  CimDeclarationSink& _sink;
  std::unordered_map<std::string, std::unique_ptr<MofClassShape>> _shapes;  // by namespace and name, folded
};

#endif
