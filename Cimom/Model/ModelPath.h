// The canonical text of instance paths.
// Tested by tests/unit/Model/PathTextTest.cpp, tests/unit/Model/CQoriInstanceNameTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELPATH_H
#define QORQL_MODEL_MODELPATH_H

#include <string>
#include <string_view>

#include "cimom/IQoriType.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

namespace model {

// Appends `namespace:Class.Key1="v",Key2=2` to a text. The caller adds the keys in name order.
class PathText {
 public:
  // BORROWS the text.
  PathText(std::string& text, const QORString& nameSpace, const QORString& className);

  // Numbers and booleans stand bare, NULL for no value, all else quoted.
  void addKey(const QORString& name, const QoriScalar& value, const IQoriType& type);

 private:
  void appendQuoted(std::string_view text);

  std::string& _path;
  char _separator = '.';
};

}  // namespace model

#endif
