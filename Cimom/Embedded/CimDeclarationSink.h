// Where a MOF reader puts what it read: the object manager's side of loading.
// Tested by tests/unit/Embedded/LoadTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CIMDECLARATIONSINK_H
#define QORQL_EMBEDDED_CIMDECLARATIONSINK_H

#include <memory>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSource.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/IQoriClass.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

class CimInstanceMaker;

// One loader at a time. Between begin() and commit() everything that is declared is
// visible to this interface alone; rollback() forgets it. Refusals THROW
// QoriBaseException (type "CIM_Repository") whose message names the class,
// property or path at fault; the loader adds file and line.
class CimDeclarationSink {
 public:
  virtual ~CimDeclarationSink() = default;

  // Opens a transaction. THROWS as below while another one is open.
  virtual void begin() = 0;
  // Ends it: all that was declared since begin() comes into force at once. THROWS when none is open.
  virtual void commit() = 0;
  // Ends it and forgets all that was declared since begin(); does nothing when none is open.
  virtual void rollback() noexcept = 0;

  // Idempotent.
  virtual void createNamespace(const QORString& nameSpace) = 0;
  virtual void declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) = 0;
  // Refused: a class that exists with another declaration, a missing or terminal
  // superclass, inheritance of more than 500 levels; and with a
  // CimDeclarationRefusal that lists them all: a property declared twice or
  // redeclared with another type, an override of nothing, a default of another
  // type, a key that is an array or an embedded object or is added to inherited
  // keys, a change of a qualifier whose flavor forbids it, a reference outside
  // an association. An equal declaration again is accepted.
  virtual void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) = 0;
  // All classes of a load of before, which are in force by their headings; the rest of each is read when somebody needs
  // it. False, and nothing is declared, when this sink has no such way, no transaction is open, or one of the
  // namespaces has classes already. Refused: a namespace that does not exist, headings that contradict each other.
  virtual bool declareClasses(const std::vector<CimClassHeading>& headings,
                              const std::shared_ptr<CimDeclarationSource>& source);
  // Another sink, like this one, into which nothing has been declared; null when there is none.
  virtual std::unique_ptr<CimDeclarationSink> makeEmpty() const;
  // Refused: an unknown or abstract class, an unknown property, a property
  // given twice, a value of another type, a class without keys, a key without
  // value, a path that exists. References are stored in the repository's spelling.
  virtual QORSmrPtr<IQoriInstanceName> createInstance(const QORString& nameSpace,
                                                      const CimInstanceDeclaration& declaration) = 0;
  // What stores many instances that give the listed properties, in this order, faster than createInstance() does.
  // Null when this sink or this class has no such way; references and embedded objects have none.
  virtual std::unique_ptr<CimInstanceMaker> instanceMaker(const QORString& nameSpace, const QORString& className,
                                                          const std::vector<QORString>& propertyNames);
  // An object that is not stored (an embedded instance or an indication); needs no keys.
  virtual QORSmrPtr<IQoriObject> makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration) = 0;
  // A class as the value of an embedded object: its properties hold their
  // defaults, it has no path and is not declared. Refused as by declareClass().
  virtual QORSmrPtr<IQoriObject> makeClassObject(const QORString& nameSpace,
                                                 const CimClassDeclaration& declaration) = 0;

  // Null when the class does not exist.
  virtual QORSmrPtr<IQoriClass> findClass(const QORString& nameSpace, const QORString& className) const = 0;
  // The property's declaration, inherited ones included, with qualifiers in
  // force; false when the class or the property does not exist.
  virtual bool describeProperty(const QORString& nameSpace, const QORString& className, const QORString& propertyName,
                                CimPropertyDeclaration& out) const = 0;
  // The qualifier's declaration; false when there is none.
  virtual bool describeQualifier(const QORString& nameSpace, const QORString& name,
                                 CimQualifierDeclaration& out) const = 0;
};

#endif
