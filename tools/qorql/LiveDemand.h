// Which changes of which live classes filters ask for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LIVEDEMAND_H
#define QORQL_TOOL_LIVEDEMAND_H

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryStatement.h"

// Names of classes are spelled as they are declared.
struct LiveDemand {
  std::set<std::string> changes;                         // the classes of indications
  std::map<std::string, std::set<std::string>> classes;  // the live ones, with their volatile properties that are asked
                                                         // for, in upper case

  // Whether any indication can come for it.
  bool isAny() const noexcept { return !changes.empty() && !classes.empty(); }
  void unite(const LiveDemand& other);
  friend bool operator==(const LiveDemand&, const LiveDemand&) = default;
};

// Tells what filters ask for of the live classes of one object manager, which it BORROWS.
class LiveDemandReader {
 public:
  LiveDemandReader(const EmbeddedObjectManager& manager, const QORString& nameSpace);

  // Of a valid filter: the live classes that each `SourceInstance ISA Class` of it allows, where it asks for changes.
  // Properties that change whenever one looks make no news, unless the filter names them.
  LiveDemand read(const CQLQueryStatement& filter) const;

 private:
  struct LiveClass {
    QORString name;
    std::set<std::string> changing;  // its volatile properties, in upper case
  };

  const QORString _nameSpace;
  std::vector<LiveClass> _classes;
};

// What many filters ask for together. Adding or removing one costs the same however many there are.
class LiveDemandSum {
 public:
  void add(const LiveDemand& demand);
  // REQUIRES one that was added.
  void remove(const LiveDemand& demand);
  LiveDemand all() const;

 private:
  using Counts = std::map<std::string, std::size_t>;
  struct ClassCounts {
    std::size_t filters = 0;
    Counts properties{};
  };

  static void count(Counts& counts, const std::set<std::string>& names);
  static void discount(Counts& counts, const std::set<std::string>& names);
  static std::set<std::string> namesIn(const Counts& counts);

  Counts _changes;
  std::map<std::string, ClassCounts> _classes;
};

// A name in upper case.
std::string foldedName(std::string_view name);

#endif
