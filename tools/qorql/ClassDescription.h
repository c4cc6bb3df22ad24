// What a class says of itself and of its properties, inherited ones among them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_CLASSDESCRIPTION_H
#define QORQL_TOOL_CLASSDESCRIPTION_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "ValueTexts.h"

struct PropertyDescription {
  std::string name;
  std::string type;  // "uint16[]", "CIM_Process REF"
  bool isKey = false;
  std::string origin;    // the class that introduces it
  std::string sentence;  // the first one of its Description; may be empty
  ValueTexts values;
};

struct ClassDescription {
  std::string name;
  std::vector<std::string> superclasses;  // from the nearest to the root
  std::string sentence;                   // as above
  std::vector<PropertyDescription> properties;
};

// REQUIRES that there is such a class.
ClassDescription descriptionOf(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                               const QORString& className);

// Up to the first full stop that a new sentence follows, with single blanks between words.
std::string firstSentence(std::string_view text);

#endif
