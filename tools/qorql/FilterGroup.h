// Filters that are asked together: those of a file, or one alone.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_FILTERGROUP_H
#define QORQL_TOOL_FILTERGROUP_H

#include <map>
#include <string>
#include <vector>

#include "Cimom/QORQL/CQLFilterSet.h"
#include "FilterSession.h"

class FilterGroup {
 public:
  // The number of the line that a filter begins in; 0 for one alone.
  using Line = CQLFilterSet::Handle;
  using Lines = std::vector<Line>;

  // BORROWS the session, which must be open.
  explicit FilterGroup(FilterSession& session) : _session(session) {}

  // Reads and validates the filters of a file. False when one is not valid, is refused
  // for its warnings or has the name of another, each of which has been told on standard
  // error with its line, and when there is none, which has been told, too. THROWS std::runtime_error for a file that
  // cannot be read.
  bool readFile(const std::string& path);
  // Takes one alone; false as above.
  bool readOne(const std::string& text);

  const std::map<Line, CQLFilterSet::Statement>& statements() const noexcept { return _statements; }
  // The lines of the filters that match, in ascending order. Valid until the next call.
  const Lines& matching(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace);
  // The filters' names, of those without one the lines: "2,fans".
  std::string textOf(const Lines& lines) const;
  // The same as an array: [2, "fans"].
  std::string jsonOf(const Lines& lines) const;
  // Whether one was refused since a class of FROM does not exist.
  bool lacksClass() const noexcept { return _lacksClass; }
  // What stands before a message about a filter; nothing for one alone.
  std::string placeOf(Line line) const;

 private:
  bool take(CheckedFilter filter, Line line);
  std::string nameOf(Line line) const;

  FilterSession& _session;
  std::map<Line, CQLFilterSet::Statement> _statements;
  std::map<Line, std::string> _names;  // of those that have one
  CQLFilterSet _filters;
  Lines _found;
  bool _lacksClass = false;
};

#endif
