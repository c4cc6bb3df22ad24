// The object manager's client interface.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CIMAPI_H
#define QORQL_CIMOM_CIMAPI_H

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cimom/QoriTransactionInfo.h"
#include "cmpbase.h"

// Created for each call; one object belongs to one thread at a time. Instances
// come in the order in which they were created, subclass instances included,
// names ignore case. A null property list asks for all properties, otherwise
// exactly those named are present (NULL when unset; case, duplicates and names
// that the class lacks ignored); the instance name is always complete. A
// provider's failure is an exception and passes through. The returned list may
// be shared, by threads too, which may all read it: do not change it.
class CIMApi {
 public:
  using Instances = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;
  using PropertyNames = QORSmrPtr<QORValSlist<QORString>>;

  // What the engine passes to associators and getInstance as `timeout`, in seconds; -1, which it passes to
  // enumerateInstances, is no limit. Whether a call that takes longer fails is the object manager's matter; the
  // embedded one, where it is 60, waits.
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
