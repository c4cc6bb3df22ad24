// As the standard declares them.
// Tested by tests/unit/Server/InteropModelTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/InteropQualifiers.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "Cimom/Server/InteropModel.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

struct StandardFlag {
  const char* name;
  std::vector<QORString> scopes;
  bool toSubclass;
  bool overridable;
};

const std::vector<StandardFlag>& standardFlags() {
  static const std::vector<StandardFlag> flags = {
      {"Abstract", {"class", "association", "indication"}, false, true},
      {"Association", {"association"}, true, false},
      {"Key", {"property", "reference"}, true, false},
  };
  return flags;
}

}  // namespace

CimQualifier interopFlag(const char* name) {
  const auto flag = std::find_if(standardFlags().begin(), standardFlags().end(),
                                 [&](const StandardFlag& each) { return std::string_view(each.name) == name; });
  CimQualifier qualifier;
  qualifier.name = name;
  qualifier.toSubclass = flag->toSubclass;
  qualifier.overridable = flag->overridable;
  return qualifier;
}

void declareInteropQualifiers(EmbeddedObjectManager& manager) {
  const std::vector<CimQualifierDeclaration> known = manager.qualifiers(kInteropNameSpace);
  for (const StandardFlag& flag : standardFlags()) {
    const auto isIt = [&](const CimQualifierDeclaration& each) { return each.name.isEqualCaseInsensitive(flag.name); };
    if (std::any_of(known.begin(), known.end(), isIt)) continue;
    CimQualifierDeclaration declaration;
    declaration.name = flag.name;
    declaration.type = CQoriType::boolean;
    declaration.defaultValue = new CQoriValue(false, CQoriType::boolean);
    declaration.scopes = flag.scopes;
    declaration.toSubclass = flag.toSubclass;
    declaration.overridable = flag.overridable;
    manager.sink().declareQualifier(kInteropNameSpace, declaration);
  }
}
