// The test of a class in a filter: `SourceInstance ISA CIM_Disk`.
#ifndef QORQL_CQLISA_H
#define QORQL_CQLISA_H

#include "Cimom/QORQL/CQLPropertyPath.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "cimom/IQoriObject.h"

class CQLQueryStatement;

// What stands on both sides: a property, or text in its place, and a class.
struct CQLIsaNames {
  // False when a side is computed, or is none of those.
  static bool read(const QORQL_Comparison& comparison, CQLIsaNames& names);
  QORString propertyName;
  QORString className;
};

// Threads may share one. BORROWS the statement.
class CQLIsa {
 public:
  CQLIsa(const CQLQueryStatement& statement, const CQLIsaNames& names);

  // Whether the property holds an embedded object of the class or a subclass, or
  // the path text of an alert's managing element names such a class. Allocates
  // nothing for an embedded object.
  bool holds(const IQoriObject& instance) const;
  // The class of the embedded object, or the value.
  std::string foundText(const IQoriObject& instance) const;
  const QORString& className() const noexcept { return _className; }

 private:
  bool namesClass(const QORString& path, const IQoriObject& instance) const;

  const CQLQueryStatement& _statement;
  const QORString _className;
  const bool _isAlertingElement;
  CQLPropertyPath _property;
  CQLPropertyPath _format;
};

#endif
