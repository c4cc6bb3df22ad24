// Instances of several classes, read so that a class that fails leaves the others.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_INSTANCEREADER_H
#define QORQL_TOOL_INSTANCEREADER_H

#include <functional>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/CIMApi.h"

// BORROWS the object manager, which must be the current one, and the namespace.
class InstanceReader {
 public:
  using Take = std::function<void(const IQoriObject& instance)>;

  // Classes whose instances are missing, as "Linux_Service: what went wrong".
  struct Gaps {
    std::vector<std::string> failed;
    std::vector<std::string> absent;  // this machine has no source for them
  };

  InstanceReader(EmbeddedObjectManager& manager, const QORString& nameSpace)
      : _manager(manager), _nameSpace(nameSpace) {}

  // Hands over the instances of a class and of those derived from it, with the
  // properties that are named (null: all). Those of a class that fails are missing, which is noted.
  void read(const QORString& className, const CIMApi::PropertyNames& properties, const Take& take);

  const Gaps& gaps() const noexcept { return _gaps; }

 private:
  void readEach(const QORString& root, const CIMApi::PropertyNames& properties, const Take& take);
  void note(const QORString& className, const QoriBaseException& failure);

  EmbeddedObjectManager& _manager;
  const QORString& _nameSpace;
  Gaps _gaps;
};

// Tells on standard error what is missing: a class that failed is an error, one without a source a warning. Returns the
// exit status.
int reportGaps(const InstanceReader::Gaps& gaps, bool isQuiet);

#endif
