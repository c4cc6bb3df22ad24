// The instances that a call names, asked of the object manager: the same for plain operations and for enumerations.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SERVEROBJECTS_H
#define QORQL_SERVER_SERVEROBJECTS_H

#include "Cimom/Server/ServerOperations.h"
#include "Cimom/Server/StatusCodes.h"
#include "cimom/CIMApi.h"
#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// Reads the parameters of one call, whose subject it notes, and asks. Nothing is null, all instances have their names,
// and a list may be shared with other callers: nobody changes it. What the call names and nobody has THROWS
// CimStatusException: a namespace 3, a parameter that is left out 4, a class 5, an instance 6; what providers throw
// passes through. BORROWS the call; one thread at a time.
class ServerObjects {
 public:
  explicit ServerObjects(const ServerCall& call) : _call(call) {}

  enum class Want {
    Instances,  // with the properties that the call asks for
    Names       // with no properties but what their names tell
  };

  // Of ClassName and the classes below it, as DeepInheritance, LocalOnly (left out: as given) and PropertyList say.
  CIMApi::Instances instances(Want want, bool isLocalOnly = false) const;
  // Of the instance that the parameter names: AssocClass, ResultClass, Role, ResultRole and PropertyList say which.
  CIMApi::Instances associators(Want want, const char* sourceParameter) const;
  // The associations that refer to it: ResultClass, Role and PropertyList.
  CIMApi::Instances references(Want want, const char* sourceParameter) const;

  // The names of PropertyList; null when it is left out.
  CIMApi::PropertyNames propertyList() const;
  // The instance's name; it need not exist. Where the name tells an outer server as its host, the path of its namespace
  // begins with that server. One of another namespace than the call's is refused.
  QORSmrPtr<IQoriInstanceName> requireName(const char* parameter) const;
  QORSmrPtr<IQoriInstanceName> requireName(const QORSmrPtr<IQoriInstanceName>& given) const;
  // The name of the instance, which must exist.
  QORSmrPtr<IQoriInstanceName> requireSource(const char* parameter) const;
  void requireNameSpace() const;
  // Returns the class in the repository's spelling.
  QORString requireClass(const QORString& className) const;

 private:
  CIMApi::PropertyNames namesFor(Want want) const;
  CIMApi::PropertyNames namesFor(Want want, const QORString& className) const;
  QORString optionalClass(const char* parameter) const;

  const ServerCall& _call;
};

#endif
