// Many filters that are asked about an instance at once.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLFILTERSET_H
#define QORQL_CQLFILTERSET_H

#include <memory>
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Says which of thousands of filters match an instance, as if each were asked,
// without asking each: a filter is filed under the value that one of its conditions
// demands, and only the filters whose value the instance has are asked.
//
// Threads: any number may call match() while others add and remove. A match
// takes no lock of the set's, and sees the set as it was at one moment; the class
// repository, which is asked for superclasses, may have locks of its own. add()
// and remove() wait for each other only. REQUIRES that nobody uses the set when it is destroyed.
class CQLFilterSet {
 public:
  // The number by which the caller identifies a filter.
  using Handle = QORuint64;
  using Statement = QORSmrPtr<CQLQueryStatement>;

  CQLFilterSet();
  CQLFilterSet(const CQLFilterSet&) = delete;
  CQLFilterSet& operator=(const CQLFilterSet&) = delete;
  ~CQLFilterSet();

  // Adds a filter, which the set holds from now on. False, and nothing changes,
  // when the handle is in use. THROWS CQLQueryException as
  // CQLQueryStatement::isMatch for a statement that was not validated, or was
  // refused; code 3 for a null one. Some microseconds, whatever the size of the set.
  bool add(Handle handle, const Statement& statement);
  // Removes a filter; false when there is none. A match that runs at the same time may
  // still ask it. Some microseconds.
  bool remove(Handle handle);
  // How many filters there are.
  std::size_t size() const;

  // The handles of all filters that match an instance from the namespace, in the
  // order in which they were added. `handles` is emptied first. THROWS
  // CQLQueryException as CQLQueryStatement::isMatch (code 3 for a null instance, 4 for
  // a null namespace or a repository that fails). Grows with the filters that
  // match and those that nearly do, hardly with the number of the others.
  void match(const QORSmrPtr<IQoriObject>& instance, const QORString& nameSpace, std::vector<Handle>& handles) const;

  // The implementation.
  struct State;

 private:
  std::unique_ptr<State> _state;
};

#endif
