// Expressions as text again, with the grouping that the parser gave them.
// SPDX-License-Identifier: Apache-2.0
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

// Writes a tree: chains, comparisons, negations and calls. How names are written is the business of what derives from
// it. Reads the tree and changes nothing.
class QORQL_ExpressionPrinter {
 public:
  virtual ~QORQL_ExpressionPrinter() = default;

  // Any node of a condition or an arithmetic expression; empty for a null pointer.
  std::string of(const QORQL_Evaluatable* node) const;

 protected:
  struct Style {
    bool showsGrouping;   // parentheses where a chain with `-` or `/` in it groups to the right
    bool showsArguments;  // MAX(Size); otherwise MAX(...)
  };

  explicit QORQL_ExpressionPrinter(Style style) noexcept : _style(style) {}

  // A factor that is no literal and wraps nothing.
  virtual std::string ofReference(const QORQL_Factor& factor) const = 0;
  // What stands behind ISA.
  virtual std::string ofClassName(const QORQL_Evaluatable* side) const = 0;

 private:
  template <class Node>
  std::string ofChain(const Node& first) const;
  std::string ofComparison(const QORQL_Comparison& comparison) const;
  std::string ofFactor(const QORQL_Factor& factor) const;
  std::string ofFunction(const QORQL_Function& function) const;

  Style _style;
};

// A query's trees. Parentheses show how a chain with `-` or `/` in it is grouped. Aliases stay as written, class names
// are as the class repository has them; both are left out where FROM has one class only.
class QORQL_ExpressionText : public QORQL_ExpressionPrinter {
 public:
  QORQL_ExpressionText(const QORQL_FromClause& from, const QORString& nameSpace);

  // A column of the select list, with its alias.
  std::string ofEntry(const QORQL_SelectedEntry& entry) const;
  // How a FROM name, given in any case, is shown.
  std::string nameOf(const QORString& fromName) const;

 private:
  std::string ofReference(const QORQL_Factor& factor) const override;
  std::string ofClassName(const QORQL_Evaluatable* side) const override;

  std::map<std::string, std::string> _spelling;  // by the name in upper case
  std::set<std::string> _fromNames;              // classes and aliases in upper case, and the empty name
  bool _hasOneClass = false;
};

#endif
