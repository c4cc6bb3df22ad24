// The expressions of the second parser, and the tokens that it reads.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_EXPRESSIONMODEL_H
#define QORQL_TESTS_EXPRESSIONMODEL_H

#include "Cimom/QORQL/QORQL_Token.h"
#include "ParserModel.h"
#include "ScannerModel.h"

// The tokens of a text. The line of a fault is that of the furthest token that has been looked at.
class ModelTokens {
 public:
  explicit ModelTokens(const std::string& text) : _scan(scanByModel(text)), _tokens(_scan.tokens) {}

  const ModelToken& current() const { return at(_place); }
  const ModelToken& previous() const { return at(_place - 1); }  // REQUIRES that there is one
  const ModelToken& ahead(std::size_t count) {
    _read = std::max(_read, _place + count);
    return at(_place + count);
  }
  bool is(int type) const { return current().type == type; }
  bool follows(int type) const { return _place > 0 && previous().type == type; }
  void next() { _read = std::max(_read, ++_place); }
  // Goes on when the token is of the type.
  bool take(int type) {
    if (!is(type)) return false;
    next();
    return true;
  }
  // The token's text in a message; the end's is nothing.
  std::string shown() const { return is(TokenEOF) ? "" : current().text; }
  // What the scanner has written to standard output so far.
  std::string output() const { return _scan.output.substr(0, at(_read).output); }
  ModelFault fault(unsigned code, const std::string& message) const {
    return ModelFault::parse(code, message, at(_read).line);
  }

 private:
  const ModelToken& at(std::size_t place) const { return _tokens[std::min(place, _tokens.size() - 1)]; }

  const ModelScan _scan;
  const std::vector<ModelToken>& _tokens;
  std::size_t _place = 0;
  std::size_t _read = 0;
};

// Each rule begins at its first token and leaves the token behind it current. THROWS ModelFault.
class ExpressionModel {
 public:
  // BORROWS both.
  ExpressionModel(ModelTokens& tokens, ModelStatement& statement) : _tokens(tokens), _statement(statement) {}

  // What follows belongs to WHERE or ORDER BY.
  void beginCondition() { _isSelectList = false; }

  std::shared_ptr<ModelNode> expression();
  std::shared_ptr<ModelNode> comparison();
  std::shared_ptr<ModelNode> arithmetic();

 private:
  using Node = std::shared_ptr<ModelNode>;
  struct Tie;  // the two names of an association comparison
  struct Path;

  Node andTerm();
  Node associationOrFactor();
  Node notFactor();
  Node term();
  Node factor();
  Node parenthesised();
  Node negated();
  Node literal();
  Node function();
  Node reference();
  int comparisonOperator();
  int nullTest();
  void checkIsa();
  Path path();
  void readIndex(int& index, bool isQuantified);
  void record(const std::string& name, const std::string& property, bool needsAll);
  void recordPath(const Path& path);
  std::optional<Tie> tieOf(const ModelNode& notFactor) const;

  ModelTokens& _tokens;
  ModelStatement& _statement;
  bool _isSelectList = true;
};

// The function that a walk in post-order meets last; 0 when there is none.
int lastFunction(const std::shared_ptr<ModelNode>& node);

#endif
