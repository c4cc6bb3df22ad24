// The instances of the fake object manager: the operations that every object
// manager has to supply, and none of those that have a form in the headers.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAKEOBJECTS_H
#define QORQL_TESTS_FAKEOBJECTS_H

#include <string>
#include <utility>
#include <vector>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// A property from its text: "" is NULL, digits are a uint64, digits behind a
// minus a sint32, with a dot in them a real64, TRUE and FALSE a boolean,
// 25 characters with a dot behind the 14th a datetime, {a,b} an array of what its
// elements say (of strings where they differ), -> before a path a reference, and
// anything else a string.
using FakeProperties = std::vector<std::pair<std::string, std::string>>;

// An instance of a namespace; the first property is the key. References name
// instances by their paths alone.
QORSmrPtr<IQoriObject> makeFakeObject(const std::string& nameSpace, const std::string& className,
                                      const FakeProperties& properties);

// An instance in an instance: its property holds the object itself.
struct FakeEmbedded {
  std::string property;
  QORSmrPtr<IQoriObject> object;
};
QORSmrPtr<IQoriObject> makeFakeObject(const std::string& nameSpace, const std::string& className,
                                      const FakeProperties& properties, const std::vector<FakeEmbedded>& embedded);

#endif
