// The statement level of the second parser: clauses and select entries.
// SPDX-License-Identifier: Apache-2.0
#include "ParserModel.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "ExpressionModel.h"

ModelFault ModelFault::parse(unsigned code, const std::string& message, unsigned line) {
  return {"parse " + std::to_string(code) + " line " + std::to_string(line) + ": " + message};
}

ModelFault ModelFault::runtime(unsigned code, const std::string& message) {
  return {"runtime " + std::to_string(code) + ": " + message};
}

const ModelSymbol* ModelStatement::find(const std::string& name) const {
  const auto found = symbols.find(toUpper(name));
  return found == symbols.end() ? nullptr : &found->second;
}

std::string toUpper(std::string text) {
  for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  return text;
}

int toInt(const std::string& text) {
  const long long number = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long long>(number, INT_MIN, INT_MAX));
}

namespace {

class StatementModel {
 public:
  explicit StatementModel(const std::string& text) : _tokens(text), _expressions(_tokens, _statement) {}

  ModelStatement parse() {
    parseSelectList();
    parseFrom();
    if (_tokens.take(TokenWHERE)) _statement.where = condition(&ExpressionModel::expression);
    if (_tokens.take(TokenORDER)) parseOrderBy();
    if (_tokens.take(TokenFORMAT)) parseFormat();
    if (!_tokens.is(TokenEOF)) throw _tokens.fault(2, "unexpected token '" + _tokens.shown() + "' found");
    return std::move(_statement);
  }
  std::string output() const { return _tokens.output(); }

 private:
  std::shared_ptr<ModelNode> condition(std::shared_ptr<ModelNode> (ExpressionModel::*rule)()) {
    _expressions.beginCondition();
    return (_expressions.*rule)();
  }

  void parseSelectList() {
    if (!_tokens.is(TokenSELECT)) throw _tokens.fault(7, "'SELECT' expected");
    if (_tokens.ahead(1).type == TokenFIRST) parseFirst();
    bool hasAggregates = false;
    bool hasOthers = false;
    do {
      _tokens.next();
      _statement.entries.push_back(parseEntry());
      (_statement.entries.back().isAggregate() ? hasAggregates : hasOthers) = true;
      if (hasAggregates && hasOthers) {
        throw ModelFault::parse(15, "Combining Aggregate and NonAggregate expressions is not allowed.", 0);
      }
    } while (_tokens.is(TokenCOMMA));
    _hasOnlyAggregates = hasAggregates;
    if (hasAggregates && _statement.isFirst) {
      throw _tokens.fault(15, "Strictly aggregate entries cannot be combined with the FIRST keyword.");
    }
  }

  void parseFirst() {
    _tokens.next();
    _tokens.next();
    const std::string& number = _tokens.current().text;
    const std::size_t begin = !number.empty() && (number[0] == '-' || number[0] == '+') ? 1 : 0;
    if (begin == number.size() || number.find_first_not_of("0123456789", begin) != std::string::npos) {
      throw _tokens.fault(15, "The number of entries specified after the FIRST keyword is not a valid number.");
    }
    _statement.isFirst = true;
    _statement.firstCount = static_cast<unsigned>(toInt(number));
  }

  ModelEntry parseEntry() {
    ModelEntry entry;
    entry.isSelectAll = _tokens.take(TokenASTERISK);
    if (entry.isSelectAll) return entry;
    entry.expression = _expressions.comparison();
    const auto factors = factorsOf(entry.expression);
    if (factors.size() == 1 && factors[0]->isPropertyReference()) entry.reference = factors[0];
    entry.function = lastFunction(entry.expression);
    if (!entry.reference && !_tokens.is(TokenAS)) {
      throw _tokens.fault(15, "Missing an alias for the column in SELECT clause");
    }
    if (_tokens.take(TokenAS)) entry.alias = parseAlias(15, "SELECT");
    return entry;
  }

  std::string parseAlias(unsigned code, const std::string& clause) {
    if (!_tokens.is(TokenID)) {
      throw _tokens.fault(code, "Alias expected after 'AS' keyword in '" + clause + "' clause");
    }
    const std::string alias = toUpper(_tokens.current().text);
    _tokens.next();
    return alias;
  }

  void parseFrom() {
    if (!_tokens.is(TokenFROM)) throw _tokens.fault(8, "'FROM' expected");
    do {
      _tokens.next();
      parseSpecifier();
    } while (_tokens.is(TokenCOMMA));
  }

  void parseSpecifier() {
    if (_tokens.is(TokenOPENPAREN)) {
      throw _tokens.fault(2, "Unexpected token '('. Nested queries are not supported in the current version");
    }
    if (!_tokens.is(TokenID)) {
      throw _tokens.fault(2, "Unexpected token '" + _tokens.shown() + "' found in FROM clause. Expected class name");
    }
    const std::string className = toUpper(_tokens.current().text);
    _tokens.next();
    const std::string alias = _tokens.take(TokenAS) ? parseAlias(16, "FROM") : "";
    const auto request = std::make_shared<ModelRequest>(ModelRequest{_statement.isSelectAll()});
    _statement.symbols[className] = {false, alias, className, request};
    if (!alias.empty() && alias != className) _statement.symbols[alias] = {true, alias, className, request};
    _statement.from.push_back(className + " " + alias);
  }

  void parseOrderBy() {
    if (!_tokens.is(TokenBY)) {
      throw _tokens.fault(19, "Invalid ORDER BY clause.  ORDER specified without corresponding BY keyword.");
    }
    if (_hasOnlyAggregates) {
      throw _tokens.fault(15, "Cannot combine ORDER BY clause with strictly aggregate functions.");
    }
    _tokens.next();
    _statement.orderKey = condition(&ExpressionModel::arithmetic);
    const std::string direction = toUpper(_tokens.current().text);
    if (direction != "ASC" && direction != "DESC") {
      throw _tokens.fault(
          2, "Unexpected token '" + _tokens.shown() + "' found.  Expected [ASC | DESC] following ORDER BY clause.");
    }
    _statement.isAscending = direction == "ASC";
    _tokens.next();
  }

  void parseFormat() {
    if (!_tokens.take(TokenAS)) throw _tokens.fault(2, "'AS' expected");
    const int format = _tokens.current().type - TokenXML;
    if (format < 0 || format > 2) throw _tokens.fault(2, "'QORIOBJECT', 'XML', 'HTML' or 'CSV' expected");
    _statement.format = format;
    _tokens.next();
  }

  ModelTokens _tokens;
  ModelStatement _statement;
  ExpressionModel _expressions;
  bool _hasOnlyAggregates = false;
};

}  // namespace

ModelStatement parseByModel(const std::string& text, std::string& output) {
  StatementModel model(text);
  try {
    ModelStatement statement = model.parse();
    output = model.output();
    return statement;
  } catch (const ModelFault&) {
    output = model.output();
    throw;
  }
}
