// The instances of a class and of those derived from it, by their names.
// Tested by tests/unit/Remote/RemoteIndexTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTEINDEX_H
#define QORQL_REMOTE_REMOTEINDEX_H

#include <string>
#include <unordered_map>
#include <vector>

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"

// One thread at a time.
class RemoteIndex {
 public:
  void add(const QORSmrPtr<IQoriObject>& object);

  struct Found {
    QORSmrPtr<IQoriObject> object;  // null: none, or several
    bool isUncertain = false;       // several, of different classes: the server knows which one is meant
  };
  // A name may tell a superclass of the instance's class.
  Found find(const IQoriInstanceName& name) const;

 private:
  std::unordered_map<std::string, QORSmrPtr<IQoriObject>> _byPath;
  std::unordered_map<std::string, std::vector<QORSmrPtr<IQoriObject>>> _byKeys;  // by the path without its class
};

#endif
