// What is suspicious about a valid filter.
#ifndef QORQL_TOOL_FILTERWARNINGS_H
#define QORQL_TOOL_FILTERWARNINGS_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "FilterOperand.h"
#include "StatementText.h"

// A filter may be valid and yet never match: names after a dot, classes behind
// ISA and the types of what it compares are not checked by its validation.
// BORROWS all it is given.
class FilterWarnings {
 public:
  FilterWarnings(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _text(text) {}

  // REQUIRES a validated statement.
  std::vector<std::string> of(const CQLQueryStatement& statement);

 private:
  void checkClass(std::size_t piece, std::string_view name);
  void checkNames(std::size_t piece);
  void checkIsa(std::size_t piece);
  void checkComparison(std::size_t sign);
  // Whether there was something to warn of.
  bool warnOfAsking(const FilterOperand& side);
  bool warnOfArray(const FilterOperand& side, const FilterOperand& other);
  void warnOfTypes(const FilterOperand& left, const FilterOperand& right);
  bool warnOfSigns(const FilterOperand& side, const FilterOperand& other);
  bool warnOfReal32(const FilterOperand& side, const FilterOperand& other);
  bool isPropertyOfFrom(std::string_view property) const;
  bool hasProperty(const std::string& className, std::string_view property) const;
  void warn(const std::string& warning, std::size_t piece);

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const StatementText& _text;
  std::vector<std::string> _warnings;
};

#endif
