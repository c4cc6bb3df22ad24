// Symbols and records of classes, made in one line.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_QORQL_SYMBOLSUPPORT_H
#define QORQL_TESTS_UNIT_QORQL_SYMBOLSUPPORT_H

#include <initializer_list>

#include "Cimom/QORQL/QORQL_ClassInfo.h"
#include "Cimom/QORQL/QORQL_Symbol.h"

namespace parsertest {

using Info = QORSmrPtr<QORQL_ClassInfo>;
using Symbol = QORSmrPtr<QORQL_Symbol>;

inline Info infoOf(const char* name, std::initializer_list<const char*> properties, bool all = false) {
  const Info info(new QORQL_ClassInfo(name, nullptr, all));
  for (const char* property : properties) info->addProperty(property);
  return info;
}

inline Symbol symbolOf(const char* name, Info info = nullptr, const char* alias = "") {
  return new QORQL_Symbol(QORQL_SYMBOLTYPE_TABLE_NAME, name, alias, info, nullptr);
}

}  // namespace parsertest

#endif
