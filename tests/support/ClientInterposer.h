// Stands between the engine and the object manager's client interface, so that
// tests see what is asked for and may answer in its place.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_CLIENTINTERPOSER_H
#define QORQL_TESTS_CLIENTINTERPOSER_H

#include <functional>
#include <string>
#include <vector>

#include "cimom/CIMApi.h"

// A test program that links ClientInterposer.cpp defines the operations of
// CIMApi itself, which the dynamic linker prefers to the library's; these note
// the call and pass it on. One thread.
class ClientInterposer {
 public:
  // Takes the object manager's answer to an enumeration and returns what the engine gets.
  using EnumerationFilter =
      std::function<CIMApi::Instances(const QORString& className, const CIMApi::Instances& instances)>;

  // The calls since the last take, one line each:
  //   enumerate CLASS (properties)    associators SOURCE ASSOCIATION RESULT (properties)    get PATH (properties)
  // Class names in capitals; properties once each, sorted ignoring case, or "all".
  static std::vector<std::string> takeCalls();
  // An empty function takes the filter away.
  static void setEnumerationFilter(EnumerationFilter filter);
  // No lines are kept while recording is off, as it is at first.
  static void setRecording(bool isOn);
};

#endif
