// An object manager that knows indications, and filters checked against it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERSESSION_H
#define QORQL_TOOL_FILTERSESSION_H

#include <memory>
#include <string>
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "FilterFile.h"
#include "FilterOptions.h"
#include "Session.h"

// A filter that has been validated.
struct CheckedFilter {
  std::unique_ptr<CQLQueryStatement> statement;
  std::string reason;                 // why it is refused; empty for a valid one
  std::vector<std::string> warnings;  // of a valid one that is hardly meant so
  std::string text;
  QORQL_Hint hint;          // of one that is refused
  bool lacksClass = false;  // it is refused since a class of FROM does not exist
};

// Made once, then opened. BORROWS the options.
class FilterSession {
 public:
  explicit FilterSession(const FilterOptions& options);

  // Opens the session and adds the classes of indications that it lacks. Live
  // classes that do not fit are reported as by Session::open. THROWS
  // QoriBaseException as that.
  void open(Session::LeftOut leftOut = Session::LeftOut::TellWhenNamed);

  // Validates a filter; places in the reason count from the given one.
  CheckedFilter check(const std::string& text, QORuint32 firstLine = 1, QORuint32 firstColumn = 1);
  CheckedFilter check(const FileFilter& filter);
  // Prints the warnings of a valid filter on standard error, after what `place` says. With --strict they are errors:
  // false when there is one.
  bool passes(const CheckedFilter& filter, const std::string& place = "") const;
  // What may have been meant by a filter that is refused, on standard error; nothing when quiet.
  void tellHint(const CheckedFilter& filter, const std::string& place = "") const;

  bool isStrict() const noexcept { return _options.isStrict; }
  EmbeddedObjectManager& manager() { return _session.manager(); }
  Session& session() { return _session; }
  QORString nameSpace() const { return QORString(_options.session.nameSpace); }

 private:
  const FilterOptions& _options;
  Session _session;
};

#endif
