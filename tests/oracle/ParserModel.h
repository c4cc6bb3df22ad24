// A second parser, written from the grammar, with a plain tree. What it finds wrong has the message, code and line
// that the grammar gives it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_PARSERMODEL_H
#define QORQL_TESTS_PARSERMODEL_H

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

// The first fault of a statement: "parse CODE line LINE: MESSAGE" or "runtime CODE: MESSAGE".
struct ModelFault {
  std::string text;

  static ModelFault parse(unsigned code, const std::string& message, unsigned line);
  static ModelFault runtime(unsigned code, const std::string& message);
};

struct ModelNode;
using ModelNodes = std::vector<std::shared_ptr<ModelNode>>;

struct ModelNode {
  enum class Kind { Expression, And, Not, Comparison, Arithmetic, Term, Factor, Function, Association };

  Kind kind;
  int operation = 0;  // by the numbers of operators; a function's number; an association's join type
  int arrayMode = 0;  // ANY or EVERY of a comparison
  ModelNodes children = {};
  // Of a factor that wraps nothing.
  std::optional<std::string> className = {};
  std::optional<std::string> property = {};
  std::optional<std::string> literal = {};  // "type text"
  std::optional<std::string> chain = {};
  std::optional<std::string> scope = {};
  int index = -1;
  bool isSelectAll = false;
  bool isKnown = false;                    // a bare name of FROM
  std::optional<std::string> column = {};  // a sort key that stands for the column of this name
  // Of an association.
  std::string association = {};
  std::string source = {};
  std::string destination = {};

  bool isPlain() const { return kind == Kind::Factor && children.empty(); }
  bool isPropertyReference() const {
    return (property || isSelectAll) && className && children.empty() && !literal && operation == 0;
  }
  bool isClassReference() const {
    return className && !className->empty() && children.empty() && (property == "firstref" || property == "secondref");
  }
  bool isBare() const { return isPlain() && className == "" && !chain && !scope && index == -1; }
};

// What a statement requests of a class; names in upper case.
struct ModelRequest {
  bool needsAll = false;
  std::set<std::string> properties = {};
};

struct ModelSymbol {
  bool isAlias;
  std::string alias;
  std::string className;
  std::shared_ptr<ModelRequest> request;
};

struct ModelEntry {
  bool isSelectAll = false;
  std::string alias = {};
  std::shared_ptr<ModelNode> expression = {};
  std::shared_ptr<ModelNode> reference = {};  // the one factor, where it is a property reference
  int function = 0;
  bool isAggregate() const { return function >= 2 && function <= 6; }
};

// The names that a clause qualifies, and what it needs of them.
struct ModelQualified {
  std::string name;
  ModelRequest request;
};

struct ModelStatement {
  bool isFirst = false;
  unsigned firstCount = 0;
  std::vector<ModelEntry> entries = {};
  std::vector<std::string> from = {};  // "CLASS ALIAS"
  std::map<std::string, ModelSymbol> symbols = {};
  std::shared_ptr<ModelNode> where = {};
  std::shared_ptr<ModelNode> orderKey = {};
  bool isAscending = false;
  int format = -1;
  // For name resolution: what the select list names, and what the conditions do.
  std::vector<std::string> bareNames = {};
  std::vector<ModelQualified> selected = {};
  std::vector<ModelQualified> conditioned = {};

  bool isSelectAll() const { return entries.back().isSelectAll; }
  const ModelSymbol* find(const std::string& name) const;
};

std::string toUpper(std::string text);
// The leading sign and digits as a number, at most the greatest and at least the smallest.
int toInt(const std::string& text);
// Every factor that wraps nothing, from left to right.
std::vector<std::shared_ptr<ModelNode>> factorsOf(const std::shared_ptr<ModelNode>& node);

// Parses, and resolves nothing. Puts into `output` what scanning writes to standard output, also when it THROWS
// ModelFault.
ModelStatement parseByModel(const std::string& text, std::string& output);

#endif
