// The object manager's settings: sections of keys with texts.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CONFIGURATION_H
#define QORQL_EMBEDDED_CONFIGURATION_H

#include <mutex>
#include <string>

#include "Cimom/Embedded/NameMap.h"
#include "cmpbase.h"

namespace embedded {

// Sections and keys ignore case; a later setting replaces an earlier one.
// Threads may share one.
class Configuration {
 public:
  // Takes all settings of an INI file, or none of them. THROWS QoriBaseException
  // (type "CIM_Configuration") naming file and line.
  void load(const std::string& path);
  void set(const QORString& section, const QORString& key, const QORString& value);
  // Empty when the key is not set.
  QORString get(const QORString& section, const QORString& key) const;

 private:
  using Sections = NameMap<NameMap<QORString>>;

  mutable std::mutex _mutex;
  Sections _sections;
};

}  // namespace embedded

#endif
