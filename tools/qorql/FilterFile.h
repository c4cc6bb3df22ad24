// Filters of a file, one a line, that are asked together.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERFILE_H
#define QORQL_TOOL_FILTERFILE_H

#include <string>
#include <vector>

#include "Cimom/QORQL/CQLFilterSet.h"
#include "FilterSession.h"

class FilterFile {
 public:
  // BORROWS the session, which must be open.
  explicit FilterFile(FilterSession& session) : _session(session) {}

  // Reads and validates the filters; blank lines are left out. False when one is
  // not valid, or is refused for its warnings: each has been reported on standard
  // error with its line. THROWS std::runtime_error for a file that cannot be read.
  bool read(const std::string& path);
  // The numbers of the lines whose filters match, joined by commas.
  std::string linesThatMatch(const QORSmrPtr<IQoriObject>& instance);

 private:
  bool add(const std::string& text, QORuint32 line);

  FilterSession& _session;
  CQLFilterSet _filters;  // by their lines
  std::vector<CQLFilterSet::Handle> _found;
};

#endif
