// The classes of one namespace as operations need them.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVERCLASSES_H
#define QORQL_SERVER_SERVERCLASSES_H

#include <optional>
#include <vector>

#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"

// Those of outer servers are asked for when they are needed. One thread at a time.
class ServerClasses {
 public:
  using Class = QORSmrPtr<IQoriClass>;

  // What of a class is shown.
  struct View {
    bool isLocalOnly = true;
    bool hasQualifiers = true;
    bool hasOrigins = false;
    std::optional<std::vector<QORString>> propertyNames;  // none: all
  };

  // BORROWS the object manager. THROWS CimStatusException, status 3, when there is no such namespace.
  ServerClasses(const EmbeddedObjectManager& manager, const QORString& nameSpace);

  const QORString& nameSpace() const noexcept { return _nameSpace; }
  // Null when there is none.
  Class find(const QORString& className) const;
  // THROWS CimStatusException, status 5, when there is none.
  Class require(const QORString& className) const;
  static const CQoriClass& modelOf(const Class& handle) noexcept { return static_cast<const CQoriClass&>(*handle); }

  // Those below a class, or, of an empty name, those at the root; if deep, those below these too.
  std::vector<QORString> namesBelow(const QORString& className, bool isDeep) const;
  // Whether a class is another one or derived from it.
  bool isA(const QORString& className, const QORString& ancestor) const;
  // The class that declares the property, or overrides it last.
  QORString originOf(const Class& handle, const QORString& propertyName) const;

  // CLASS.
  void write(CimXmlWriter& writer, const Class& handle, const View& view) const;

 private:
  bool isBelow(const QORString& className, const QORString& ancestor, bool isDeep) const;
  // The class and its superclasses, itself first.
  std::vector<Class> lineOf(const Class& handle) const;

  const EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
};

// THROWS CimStatusException, status 3, when the object manager has no such namespace.
void requireNameSpace(const EmbeddedObjectManager& manager, const QORString& nameSpace);

#endif
