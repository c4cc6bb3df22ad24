// The text form of an instance's path: [[//host/]namespace:]Class.Key="v",Key2=2
// Tested by tests/unit/Mof/MofInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFOBJECTPATH_H
#define QORQL_MOF_MOFOBJECTPATH_H

#include <vector>

#include "Cimom/Mof/MofSyntax.h"

struct MofObjectPath {
  QORString nameSpace;  // empty when the path has none
  QORString className;
  std::vector<MofPropertySyntax> keys;  // values are text, numbers or booleans
};

// Reads a path; blanks around its signs do not matter. THROWS MofFault at the
// place given.
MofObjectPath readMofObjectPath(const QORString& path, const MofLocation& at);

#endif
