// Expressions by recursive descent, down to comparisons and arithmetic.
// SPDX-License-Identifier: Apache-2.0
#include "ExpressionModel.h"

#include "Cimom/QORQL/QORQL_Operator.h"

namespace {

using Kind = ModelNode::Kind;
using Node = std::shared_ptr<ModelNode>;

Node make(Kind kind, int operation, ModelNodes children) {
  return std::make_shared<ModelNode>(ModelNode{.kind = kind, .operation = operation, .children = std::move(children)});
}

void addFactors(const Node& node, std::vector<Node>& factors) {
  if (node->isPlain()) factors.push_back(node);
  for (const Node& child : node->children) addFactors(child, factors);
}

void addFunctions(const Node& node, std::vector<int>& functions) {
  for (const Node& child : node->children) addFunctions(child, functions);
  if (node->kind == Kind::Function) functions.push_back(node->operation);
}

std::vector<int> functionsOf(const Node& node) {
  std::vector<int> functions;
  addFunctions(node, functions);
  return functions;
}

// What array checks look at: an operand's first factor.
bool isWholeArray(const Node& arithmetic) {
  const int index = arithmetic->children[0]->children[0]->index;
  return index == -2 || index == -3;
}

void checkArrays(const ModelNode& comparison) {
  const bool isLeftWhole = isWholeArray(comparison.children[0]);
  const bool isRightWhole = comparison.children.size() > 1 && isWholeArray(comparison.children[1]);
  const bool isQuantifiedLeft = comparison.arrayMode == 1 || comparison.arrayMode == 3;
  if (comparison.arrayMode != 0 && (isQuantifiedLeft ? isRightWhole : isLeftWhole)) {
    throw ModelFault::runtime(
        6, "One side of array-comp MUST be non-complete array when ANY|EVERY is used on the other side.");
  }
  if (comparison.arrayMode == 0 && comparison.children.size() > 1 && isLeftWhole != isRightWhole) {
    throw ModelFault::runtime(6,
                              "A comparison between an array property and non-array property is illegal if neither "
                              "ANY or EVERY is used.");
  }
}

// The one factor that an operand consists of, with nothing around it.
const ModelNode* loneFactor(const ModelNode& arithmetic) {
  const ModelNode& term = *arithmetic.children[0];
  return arithmetic.operation == 0 && term.operation == 0 ? term.children[0].get() : nullptr;
}

// The class that an operand refers to by `X.firstref`, `X.secondref` or OBJECTPATH(X).
std::optional<std::string> classReference(const Node& operand) {
  const std::vector<Node> factors = factorsOf(operand);
  if (factors.size() != 1 || !factors[0]->className) return std::nullopt;
  bool isReference = factors[0]->isClassReference();
  for (const int function : functionsOf(operand)) isReference = isReference || function == 1;
  return isReference ? factors[0]->className : std::nullopt;
}

std::optional<std::string> bareName(const Node& operand, bool mustBeKnown) {
  const ModelNode* const factor = loneFactor(*operand);
  if (factor == nullptr || !factor->isBare() || (mustBeKnown && !factor->isKnown)) return std::nullopt;
  return factor->property;
}

int joinTypeOf(int operation) { return operation == QORQL_OperatorEQUAL ? 0 : operation - QORQL_OperatorLEFTJOIN + 1; }

bool mayTie(int operation) {
  return operation == QORQL_OperatorEQUAL ||
         (operation >= QORQL_OperatorLEFTJOIN && operation <= QORQL_OperatorFULLOUTERJOIN);
}

}  // namespace

std::vector<Node> factorsOf(const Node& node) {
  std::vector<Node> factors;
  addFactors(node, factors);
  return factors;
}

int lastFunction(const Node& node) {
  const std::vector<int> functions = functionsOf(node);
  return functions.empty() ? 0 : functions.back();
}

struct ExpressionModel::Tie {
  std::string left;
  std::string right;
  int joinType;
};

Node ExpressionModel::expression() {
  const Node left = andTerm();
  if (!_tokens.take(TokenOR)) return make(Kind::Expression, QORQL_OperatorNONE, {left});
  return make(Kind::Expression, QORQL_OperatorOR, {left, expression()});
}

Node ExpressionModel::andTerm() {
  const Node left = associationOrFactor();
  if (!_tokens.take(TokenAND)) return make(Kind::And, QORQL_OperatorNONE, {left});
  return make(Kind::And, QORQL_OperatorAND, {left, andTerm()});
}

std::optional<ExpressionModel::Tie> ExpressionModel::tieOf(const ModelNode& notFactor) const {
  const ModelNode& comparison = *notFactor.children[0];
  const bool mayBeOne = notFactor.operation != QORQL_OperatorNOT && comparison.arrayMode == 0;
  if (!mayBeOne || !mayTie(comparison.operation)) return std::nullopt;
  const auto leftReference = classReference(comparison.children[0]);
  const auto rightReference = classReference(comparison.children[1]);
  const int joinType = joinTypeOf(comparison.operation);
  if (leftReference && rightReference) return Tie{*leftReference, *rightReference, joinType};
  const auto left = leftReference ? leftReference : bareName(comparison.children[0], false);
  const auto right = bareName(comparison.children[1], true);
  if (!left || !right) return std::nullopt;
  return Tie{*left, *right, joinType};
}

Node ExpressionModel::associationOrFactor() {
  const Node first = notFactor();
  const std::optional<Tie> source = tieOf(*first);
  if (!source) return first;
  if (!_tokens.take(TokenAND)) throw _tokens.fault(6, "'AND' expected for an association");
  const std::optional<Tie> destination = tieOf(*notFactor());
  if (!destination || toUpper(destination->left) != toUpper(source->left)) {
    throw _tokens.fault(14, "Invalid syntax specified for an Association");
  }
  if (source->joinType > 1) {
    throw _tokens.fault(14, "Right and Full outer joins are not supported on associations");
  }
  const Node association = make(Kind::Association, source->joinType, {});
  association->association = source->left;
  association->source = source->right;
  association->destination = destination->right;
  return association;
}

Node ExpressionModel::notFactor() {
  const bool isNegated = _tokens.take(TokenNOT);
  return make(Kind::Not, isNegated ? QORQL_OperatorNOT : QORQL_OperatorNONE, {comparison()});
}

Node ExpressionModel::comparison() {
  const Node node = make(Kind::Comparison, QORQL_OperatorNONE, {});
  if (_tokens.take(TokenANY))
    node->arrayMode = 1;
  else if (_tokens.take(TokenEVERY))
    node->arrayMode = 3;
  node->children.push_back(arithmetic());
  node->operation = comparisonOperator();
  if (node->operation != QORQL_OperatorNONE && node->operation != QORQL_OperatorISNULL &&
      node->operation != QORQL_OperatorISNOTNULL) {
    _tokens.next();
    const bool isAny = _tokens.is(TokenANY);
    if (isAny || _tokens.is(TokenEVERY)) {
      if (node->arrayMode != 0) throw ModelFault::runtime(5, "ANY|EVERY cannot be on both sides of array-comp");
      node->arrayMode = isAny ? 2 : 4;
      _tokens.next();
    }
    node->children.push_back(arithmetic());
  }
  checkArrays(*node);
  return node;
}

// Leaves the operator current, but for IS NULL and IS NOT NULL.
int ExpressionModel::comparisonOperator() {
  static const std::map<int, int> operators = {{TokenEQUALS, QORQL_OperatorEQUAL},
                                               {TokenNOTEQUALS, QORQL_OperatorNOTEQUAL},
                                               {TokenLESS, QORQL_OperatorLESS},
                                               {TokenGREATER, QORQL_OperatorGREATER},
                                               {TokenLESSEQUAL, QORQL_OperatorLESSEQUAL},
                                               {TokenGREATEREQUAL, QORQL_OperatorGREATEREQUAL},
                                               {TokenLIKE, QORQL_OperatorLIKE},
                                               {TokenLEFTJOIN, QORQL_OperatorLEFTJOIN},
                                               {TokenRIGHTJOIN, QORQL_OperatorRIGHTJOIN},
                                               {TokenFULLOUTERJOIN, QORQL_OperatorFULLOUTERJOIN},
                                               {TokenISA, QORQL_OperatorISA}};
  if (_tokens.take(TokenIS)) return nullTest();
  if (_tokens.is(TokenISA)) checkIsa();
  const auto found = operators.find(_tokens.current().type);
  return found == operators.end() ? static_cast<int>(QORQL_OperatorNONE) : found->second;
}

int ExpressionModel::nullTest() {
  const bool isNegated = _tokens.take(TokenNOT);
  if (!_tokens.take(TokenNULL)) throw ModelFault::runtime(6, "Invalid syntax specified for 'IS' operator");
  return isNegated ? QORQL_OperatorISNOTNULL : QORQL_OperatorISNULL;
}

void ExpressionModel::checkIsa() {
  const int type = _tokens.ahead(1).type;
  if (type != TokenID && type != TokenSTRINGLITERAL) {
    throw ModelFault::runtime(6, "Invalid syntax specified for 'ISA' operator");
  }
}

Node ExpressionModel::arithmetic() {
  const Node left = term();
  if (_tokens.take(TokenPLUS)) return make(Kind::Arithmetic, QORQL_OperatorPLUS, {left, arithmetic()});
  if (_tokens.take(TokenMINUS)) return make(Kind::Arithmetic, QORQL_OperatorMINUS, {left, arithmetic()});
  return make(Kind::Arithmetic, QORQL_OperatorNONE, {left});
}

Node ExpressionModel::term() {
  const Node left = factor();
  if (_tokens.take(TokenASTERISK)) return make(Kind::Term, QORQL_OperatorMUL, {left, term()});
  if (_tokens.take(TokenDIV)) return make(Kind::Term, QORQL_OperatorDIV, {left, term()});
  return make(Kind::Term, QORQL_OperatorNONE, {left});
}
