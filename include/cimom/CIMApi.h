// The object manager's client interface.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CIMAPI_H
#define QORQL_CIMOM_CIMAPI_H

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cimom/QoriTransactionInfo.h"
#include "cmpbase.h"

// The engine makes one client for an enumeration, one for a getInstance, and one
// for all calls of an association condition; a client belongs to one thread at a
// time. The order of the instances, those of subclasses among them, is the order
// of a query's rows: the embedded object manager gives the stored ones in the
// order in which they were created, then those of each provider. Names are
// compared without regard to case. A null property list asks for all properties;
// with another one an instance has the properties that the list names and its
// class declares, each once, whether or not they have a value. The instance name
// is complete in any case. What a provider throws passes through. A list that is
// returned may be kept and handed out again by the object manager: any number of
// threads may read it, and nobody may change it.
class CIMApi {
 public:
  using Instances = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;
  using PropertyNames = QORSmrPtr<QORValSlist<QORString>>;

  // The `timeout`, in seconds, that the engine passes to associators and getInstance. To enumerateInstances it passes
  // -1, which means that there is no limit. What becomes of a call that takes longer is for the object manager to
  // decide: the embedded one, where the constant is 60, waits until the call is done.
  static const int DefaultTimeout;

  CIMApi();
  CIMApi(const CIMApi&) = delete;
  CIMApi& operator=(const CIMApi&) = delete;
  ~CIMApi();

  // Null for an unknown class or namespace, an empty list for no instances.
  // The three texts (user, password, host) may be null.
  Instances enumerateInstances(const QORString& nameSpace, const QORString& className, const PropertyNames& properties,
                               int timeout, const char* user, const char* password, const char* host,
                               const QORSmrPtr<QoriTransactionInfo>& transaction);
  // The instances that an association of the given class (an empty name: any)
  // ties to the source, restricted to the result class (empty: any). Null for
  // an unknown class or namespace, or a null source. The calls on one client
  // object see live instances as the first of them found them; the other
  // operations ask providers again.
  Instances associators(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& source,
                        const QORString& associationClass, const QORString& resultClass,
                        const PropertyNames& properties, int timeout, const QORString& role,
                        const QORString& resultRole, const QORString& host);
  // Null when there is no such instance.
  QORSmrPtr<IQoriObject> getInstance(const QORString& nameSpace, const QORSmrPtr<IQoriInstanceName>& name,
                                     const PropertyNames& properties, int timeout, const char* user,
                                     const char* password, const char* host);

 private:
  struct Live;
  Live* _live = nullptr;  // OWNS: the live instances that associators has read
};

#endif
