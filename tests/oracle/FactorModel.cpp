// The factors of the second parser: literals, references, parentheses, minus and calls.
// SPDX-License-Identifier: Apache-2.0
#include <charconv>
#include <cstdlib>

#include "Cimom/QORQL/QORQL_Operator.h"
#include "ExpressionModel.h"

namespace {

using Kind = ModelNode::Kind;
using Node = std::shared_ptr<ModelNode>;

Node wrap(int operation, const Node& nested) {
  return std::make_shared<ModelNode>(ModelNode{.kind = Kind::Factor, .operation = operation, .children = {nested}});
}

std::string decimalValue(const std::string& text, bool isSigned) {
  const unsigned long long value = std::strtoull(text.c_str(), nullptr, 10);
  std::string type;
  if (isSigned) {
    type = value > 2147483647 ? "sint64" : value > 32767 ? "sint32" : value > 127 ? "sint16" : "sint32";
    return type + " " + std::to_string(static_cast<long long>(value));
  }
  type = value > 4294967295 ? "uint64" : value > 65535 ? "uint32" : value > 255 ? "uint16" : "uint8";
  return type + " " + std::to_string(value);
}

std::string realValue(const std::string& text) {
  char shortest[64];
  const double value = std::strtod(text.c_str(), nullptr);
  return "real64 " + std::string(shortest, std::to_chars(shortest, shortest + sizeof shortest, value).ptr);
}

const std::map<std::string, int> kFunctions = {{"OBJECTPATH", 1}, {"MIN", 2}, {"MAX", 3},       {"COUNT", 4},
                                               {"AVG", 5},        {"SUM", 6}, {"INSTANCEOF", 7}};

}  // namespace

// `a.b[1].c::d`: the names before the scope, then the scope and the property.
struct ExpressionModel::Path {
  std::vector<std::string> names = {};
  std::optional<std::string> scope = {};
  std::string property = {};
  int index = -1;
  bool isSelectAll = false;
};

Node ExpressionModel::factor() {
  if (_tokens.is(TokenOPENPAREN)) return wrap(QORQL_OperatorNONE, parenthesised());
  const bool isLiteral = _tokens.is(TokenSTRINGLITERAL) || _tokens.is(TokenDECIMALLITERAL) ||
                         _tokens.is(TokenBOOLEANLITERAL) || _tokens.is(TokenREALLITERAL);
  if (isLiteral || _tokens.follows(TokenISA)) return literal();
  if (_tokens.take(TokenMINUS)) return negated();
  if (!_tokens.is(TokenID)) throw _tokens.fault(2, "unexpected token '" + _tokens.shown() + "' found");
  if (_tokens.ahead(1).type == TokenOPENPAREN) return wrap(QORQL_OperatorNONE, function());
  return reference();
}

Node ExpressionModel::parenthesised() {
  _tokens.next();
  const Node nested = comparison();
  if (!_tokens.take(TokenCLOSEPAREN)) throw _tokens.fault(2, "')' expected");
  return nested;
}

Node ExpressionModel::negated() {
  return wrap(QORQL_OperatorMINUS, _tokens.is(TokenOPENPAREN) ? parenthesised() : factor());
}

Node ExpressionModel::literal() {
  const ModelToken& token = _tokens.current();
  const auto node = std::make_shared<ModelNode>(ModelNode{.kind = Kind::Factor});
  if (token.type == TokenDECIMALLITERAL)
    node->literal = decimalValue(token.text, _tokens.follows(TokenMINUS));
  else if (token.type == TokenREALLITERAL)
    node->literal = realValue(token.text);
  else
    node->literal = "string " + token.text;
  _tokens.next();
  return node;
}

Node ExpressionModel::function() {
  const std::string name = _tokens.current().text;
  const auto node = std::make_shared<ModelNode>(ModelNode{.kind = Kind::Function});
  _tokens.next();
  if (_tokens.ahead(1).type == TokenCLOSEPAREN)
    _tokens.next();
  else
    do {
      _tokens.next();
      node->children.push_back(expression());
    } while (_tokens.is(TokenCOMMA));
  if (!_tokens.is(TokenCLOSEPAREN)) throw _tokens.fault(0, "')' expected");
  const auto found = kFunctions.find(toUpper(name));
  if (found == kFunctions.end()) throw _tokens.fault(17, "Invalid function defined");
  node->operation = found->second;
  if (node->children.size() != 1) {
    throw _tokens.fault(17, "Incorrect number of arguments specified for the following method - '" + name + "'");
  }
  const std::vector<Node> factors = factorsOf(node);
  if (found->first == "OBJECTPATH" && factors.size() == 1 && factors[0]->isPropertyReference()) {
    if (factors[0]->className != "" || factors[0]->scope) {
      throw _tokens.fault(17, "Invalid argument specified to OBJECTPATH function. Only classnames allowed.");
    }
    factors[0]->className = toUpper(*factors[0]->property);
    factors[0]->property = "NONE";
  }
  _tokens.next();
  return node;
}

Node ExpressionModel::reference() {
  const Path read = path();
  const auto node = std::make_shared<ModelNode>(ModelNode{.kind = Kind::Factor});
  node->property = read.property;
  node->className = read.names.empty() ? "" : read.names[0];
  node->scope = read.scope;
  node->index = read.index;
  node->isSelectAll = read.isSelectAll;
  if (read.scope || read.names.size() > 1) {
    node->chain = "";
    for (const std::string& name : read.names) *node->chain += (node->chain->empty() ? "" : ".") + name;
  }
  node->isKnown = !_isSelectList && read.names.empty() && !read.scope && _statement.find(read.property) != nullptr;
  recordPath(read);
  return node;
}

ExpressionModel::Path ExpressionModel::path() {
  Path path;
  const bool isQuantified = _tokens.follows(TokenANY) || _tokens.follows(TokenEVERY);
  path.property = _tokens.current().text;
  _tokens.next();
  readIndex(path.index, isQuantified);
  while (_tokens.take(TokenDOT)) {
    path.names.push_back(path.property);
    path.property = _tokens.current().text;
    path.isSelectAll = path.names.size() == 1 && path.index == -1 && _tokens.take(TokenASTERISK);
    if (path.isSelectAll) return path;
    if (!_tokens.take(TokenID)) throw _tokens.fault(0, "Must be identifier after DOT");
    readIndex(path.index, isQuantified);
  }
  if (!_tokens.take(TokenSCOPE)) return path;
  path.scope = path.property;
  path.property = _tokens.current().text;
  if (!_tokens.take(TokenID)) throw _tokens.fault(0, "Must be identifier after scope operator");
  readIndex(path.index, isQuantified);
  return path;
}

void ExpressionModel::readIndex(int& index, bool isQuantified) {
  if (!_tokens.is(TokenOPENSQUAREBRACK)) return;
  if (_isSelectList) throw _tokens.fault(0, "SELECT clause cannot contain array!");
  _tokens.next();
  index = -3;
  if (_tokens.take(TokenCLOSESQUAREBRACK)) return;
  if (_tokens.is(TokenDECIMALLITERAL))
    index = toInt(_tokens.current().text);
  else if (_tokens.is(TokenASTERISK))
    index = -2;
  else
    throw _tokens.fault(0, "Invalid array index list");
  _tokens.next();
  if (!_tokens.is(TokenCLOSESQUAREBRACK)) throw _tokens.fault(0, "No closing square bracket");
  if (index >= 0 && isQuantified) {
    throw _tokens.fault(0, "ANY|EVERY cannot be used with direct reference to array element.");
  }
  _tokens.next();
}

// A path's root is what is requested: its second name, or the property.
void ExpressionModel::recordPath(const Path& path) {
  if (!path.names.empty()) {
    const std::string& root = path.names.size() > 1 ? path.names[1] : path.property;
    record(path.names[0], path.isSelectAll ? "" : root, path.isSelectAll);
  } else if (_isSelectList) {
    _statement.bareNames.push_back(path.property);
  }
}

void ExpressionModel::record(const std::string& name, const std::string& property, bool needsAll) {
  const bool isEnd = property == "firstref" || property == "secondref";
  ModelQualified named{name, {needsAll}};
  if (!property.empty() && (_isSelectList || !isEnd)) named.request.properties.insert(toUpper(property));
  (_isSelectList ? _statement.selected : _statement.conditioned).push_back(std::move(named));
}
