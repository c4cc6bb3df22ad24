// Statements over the worlds of TieWorld.h: joins, associations, outer ones too, OR and ORDER BY.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_TIESTATEMENT_H
#define QORQL_TESTS_TIESTATEMENT_H

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "TieWorld.h"

struct TieOperand {
  enum class Kind { Id, Number, Path, FirstEnd, SecondEnd, Object, Quotient, NumberLiteral, TextLiteral };

  Kind kind = Kind::Id;
  int which = -1;    // the class that it reads; -1 for a literal
  int number = 0;    // of a literal; a quotient is 6 / (N - number)
  std::string text;  // of a literal

  std::string toText() const;
};

struct TieCondition {
  enum class Operator { Equal, NotEqual, Less, GreaterEqual, LeftJoin, RightJoin, FullJoin, IsNull, IsNotNull };

  // Either an association with its two ends, the join in isOuter,
  int association = -1;
  int source = 0;
  int destination = 0;
  bool isOuter = false;
  // or, without one, a comparison.
  TieOperand left;
  Operator op = Operator::Equal;
  TieOperand right;
  bool isNegated = false;

  bool isAssociation() const { return association >= 0; }
  bool isJoin() const { return op >= Operator::LeftJoin && op <= Operator::FullJoin; }
  std::string toText() const;
};

struct TieStatement {
  std::vector<TieOperand> select;
  std::vector<int> from;
  std::vector<std::vector<TieCondition>> where;  // the operands of OR, each a chain of AND
  std::optional<TieOperand> order;
  bool isAscending = true;

  std::string toText() const;
};

TieStatement randomTieStatement(std::mt19937& random, const TieWorld& world);

#endif
