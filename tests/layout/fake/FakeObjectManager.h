// An object manager made for tests: a few classes and instances in memory, and a
// record of everything that the engine asked of it. It supplies what an object
// manager has to supply, and nothing besides.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAKEOBJECTMANAGER_H
#define QORQL_TESTS_FAKEOBJECTMANAGER_H

#include <map>
#include <string>
#include <vector>

#include "cimom/IQoriClass.h"
#include "cimom/IQoriObject.h"
#include "cimom/IQoriRepository.h"
#include "cmpbase.h"
#include "tests/layout/fake/FakeObjects.h"

// A class with a key `Name` and further properties; no superclass and no qualifiers
// but those named.
struct FakeClass {
  std::string name;
  std::vector<std::string> properties;
  std::vector<std::string> qualifiers;
  std::string superClass{};
};

// One client call as the engine made it.
struct FakeCall {
  std::string operation;
  std::string nameSpace;
  std::string className;    // of associators: the result class; of getInstance: the name's class
  std::string association;  // of associators
  std::string source;       // of associators and getInstance: the path
  bool wantsAll = false;    // a null property list
  std::vector<std::string> properties;
  int timeout = 0;
  std::string queryText;  // from the transaction; empty without one
  std::string queryLanguage;
};

struct FakeLogLine {
  std::string who;
  std::string message;
  QORuint32 severity;
  QORuint32 verbosity;
  QORuint32 number;
  QORuint32 channel;
};

// One per process. The tests set it up, the engine reaches it through the
// platform's services, and the tests read the record.
class FakeObjectManager {
 public:
  using Instances = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;

  static FakeObjectManager& instance();

  void reset();
  void addClass(const FakeClass& declaration);
  void addInstance(const std::string& className, const FakeProperties& properties);
  void addAssociate(const std::string& sourcePath, const std::string& associatePath);

  // Null for an unknown class.
  QORSmrPtr<IQoriClass> findClass(const std::string& name) const;
  Instances instancesOf(const std::string& className) const;
  Instances associatesOf(const std::string& sourcePath) const;
  QORSmrPtr<IQoriObject> findInstance(const std::string& path) const;

  std::vector<FakeCall> calls;
  std::vector<FakeLogLine> log;
  std::vector<std::string> configurationReads;  // "section.key"
  std::vector<std::string> encodedTexts;
  bool failEnumeration = false;
  std::string failEnumerationMessage;  // not empty: enumerate throws a provider exception with this message

 private:
  std::map<std::string, FakeClass> _classes;  // by upper-case name
  std::vector<QORSmrPtr<IQoriObject>> _instances;
  std::vector<std::pair<std::string, std::string>> _associates;
};

#endif
