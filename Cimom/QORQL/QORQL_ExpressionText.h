// Expressions as text again, with the grouping that the parser gave them.
#ifndef QORQL_EXPRESSIONTEXT_H
#define QORQL_EXPRESSIONTEXT_H

#include <map>
#include <set>
#include <string>

#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "cmpbase.h"

class QORQL_FromClause;
class QORQL_Function;
class QORQL_SelectedEntry;

// Parentheses show how a chain with `-` or `/` in it is grouped. Aliases stay as
// written, class names are as the class repository has them; both are left out
// where FROM has one class only. Reads the tree and changes nothing.
class QORQL_ExpressionText {
 public:
  QORQL_ExpressionText(const QORQL_FromClause& from, const QORString& nameSpace);

  // Any node of a condition or an arithmetic expression; empty for a null pointer.
  std::string of(const QORQL_Evaluatable* node) const;
  // A column of the select list, with its alias.
  std::string ofEntry(const QORQL_SelectedEntry& entry) const;
  // How a FROM name, given in any case, is shown.
  std::string nameOf(const QORString& fromName) const;

 private:
  std::string ofComparison(const QORQL_Comparison& comparison) const;
  std::string ofFactor(const QORQL_Factor& factor) const;
  std::string ofReference(const QORQL_Factor& factor) const;
  std::string ofFunction(const QORQL_Function& function) const;

  std::map<std::string, std::string> _spelling;  // by the name in upper case
  std::set<std::string> _fromNames;              // classes and aliases in upper case, and the empty name
  bool _hasOneClass = false;
};

#endif
