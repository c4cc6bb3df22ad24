// A column of a result as properties of CIM-XML: what is the same in all rows is written once.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLCOLUMN_H
#define QORQL_CIMXML_CIMXMLCOLUMN_H

#include <string>

#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Writes the property that an instance with the column would have, as CimXmlWriter does, from a cell or a value where
// it lies. Values of other types are converted to the column's. Immutable; threads may share one.
class CimXmlColumn {
 public:
  // REQUIRES a type.
  CimXmlColumn(const QORString& name, const QORSmrPtr<IQoriType>& type);

  const QORString& name() const noexcept { return _name; }
  const QORSmrPtr<IQoriType>& type() const noexcept { return _type; }
  // Whether cells of the column's own type are written without a value of their own.
  bool takesCells() const noexcept { return !_begin.empty(); }

  // Appends the property with that cell. False, with nothing appended, where it takes a value.
  bool appendCell(std::string& out, const QoriScalar& cell) const;
  // Appends the property with that value, which may be null. THROWS QoriBaseException (type "CIM_Value") when it cannot
  // be of the column's type, or nests too deeply.
  void appendValue(std::string& out, const QORSmrPtr<IQoriValue>& value) const;

 private:
  // Makes the cell one of the column's type; false where that takes a value.
  bool convert(QoriScalar& cell) const noexcept;

  QORString _name;
  QORSmrPtr<IQoriType> _type;
  CQoriType::Code _code;
  std::string _null;   // the property without a value
  std::string _begin;  // up to the text of a value; empty: its values are no scalars
};

#endif
