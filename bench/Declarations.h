// Short ways to write the classes and values of the worlds.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_DECLARATIONS_H
#define QORQL_BENCH_DECLARATIONS_H

#include <string>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace bench {

using Value = QORSmrPtr<IQoriValue>;

inline CimPropertyDeclaration property(const char* name, const QORSmrPtr<IQoriType>& type) {
  CimPropertyDeclaration declaration;
  declaration.name = name;
  declaration.type = type;
  return declaration;
}

inline CimPropertyDeclaration key(const char* name) {
  CimPropertyDeclaration declaration = property(name, CQoriType::string);
  CimQualifier qualifier;
  qualifier.name = "Key";
  qualifier.value = new CQoriValue(true, CQoriType::boolean);
  declaration.qualifiers.push_back(qualifier);
  return declaration;
}

inline Value textValue(const std::string& text) { return {new CQoriValue(QORString(text))}; }

inline Value arrayValue(const std::vector<std::uint16_t>& elements) {
  const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List);
  for (const std::uint16_t element : elements) list->append(Value(new CQoriValue(element, CQoriType::uint16)));
  return {new CQoriValue(list, CQoriType::uint16)};
}

}  // namespace bench

#endif
