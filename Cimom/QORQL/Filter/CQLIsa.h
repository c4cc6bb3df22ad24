// The test of a class in a filter: `SourceInstance ISA CIM_Disk`.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLISA_H
#define QORQL_CQLISA_H

#include "Cimom/QORQL/Filter/CQLPropertyPath.h"
#include "cimom/IQoriObject.h"

// Threads may share one. BORROWS the scope.
class CQLIsa {
 public:
  // The property whose text may be a path, and the one that says whether it is.
  static constexpr char kAlertingElement[] = "AlertingManagedElement";
  static constexpr char kAlertingFormat[] = "AlertingElementFormat";

  CQLIsa(const CQLScope& scope, const QORString& propertyName, const QORString& className);

  // Whether the property holds an embedded object of the class or a subclass, or
  // the path text of an alert's managing element names such a class; Null when
  // it has no value. Allocates nothing for an embedded object.
  QoriTruth test(const IQoriObject& instance) const;
  // The class of the embedded object, or the value.
  std::string foundText(const IQoriObject& instance) const;
  // The class that the instance's property shows: of the embedded object, or the one
  // that the path names. Empty when it shows none.
  QORString foundClass(const IQoriObject& instance) const;
  const QORString& className() const noexcept { return _className; }
  const QORString& propertyName() const noexcept { return *_property.ownProperty(); }

 private:
  QORString namedClass(const QORString& path, const IQoriObject& instance) const;
  QORString classIn(const QoriScalar& found, const IQoriObject& instance) const;

  const CQLScope& _scope;
  const QORString _className;
  const bool _isAlertingElement;
  CQLPropertyPath _property;
  CQLPropertyPath _format;
};

#endif
