// What a provider of live instances implements.
// Tested by tests/unit/Embedded/ProviderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_INSTANCEPROVIDER_H
#define QORQL_EMBEDDED_INSTANCEPROVIDER_H

#include <functional>
#include <vector>

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriValue.h"
#include "cimom/QoriTransactionInfo.h"
#include "cmpbase.h"

// Answers for the instances of one class: values by the positions of the
// properties that the request names.
class InstanceProvider {
 public:
  // The properties that a request needs: their names in the class's spelling,
  // keys always included. A provider may compute these alone.
  struct Request {
    QORString nameSpace;
    QORString className;
    std::vector<QORString> propertyNames;
    QORSmrPtr<QoriTransactionInfo> transaction;  // null: the call does not come from a query
    QORSmrPtr<IQoriInstanceName> only;           // not null: this one is wanted; others may come too
    // Whether the property is asked for (ignoring case).
    bool needs(const char* propertyName) const;
  };
  // Takes one instance: a value for each of Request::propertyNames, in that
  // order; a null pointer for a value that is not available.
  using Emit = std::function<void(std::vector<QORSmrPtr<IQoriValue>>&& values)>;

  static constexpr QORuint32 kUnreadable = 1;  // the CIM status "failed"
  static constexpr QORuint32 kNoSource = 7;    // the CIM status "not supported"

  virtual ~InstanceProvider() = default;

  // The class served. Its declaration must be in the repository when the
  // provider is registered.
  virtual QORString getClassName() const = 0;

  // Emits every instance that exists now. An instance that cannot be read is
  // left out, a property that cannot be read is null; neither fails the call.
  // A source that cannot be read at all THROWS CQoriProviderException with the
  // code kUnreadable, or kNoSource where this machine has none: then a call for
  // a superclass with other instances leaves this class out and warns. May be called from several threads at once.
  virtual void enumerate(const Request& request, const Emit& emit) = 0;
};

#endif
