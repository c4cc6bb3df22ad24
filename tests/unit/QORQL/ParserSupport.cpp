// Short ways to parse, to catch what parsing throws, and to print a tree.
// SPDX-License-Identifier: Apache-2.0
#include "ParserSupport.h"

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace parsertest {

void Parsed::parse(Level level) {
  switch (level) {
    case Level::Expression:
      tree = QORQL_Expression::parse(symbols, lexer, map, text, "CQL");
      break;
    case Level::Comparison:
      tree = QORQL_Comparison::parse(symbols, lexer, map, text, "CQL");
      break;
    case Level::Arithmetic:
      tree = QORQL_Arithmetic::parse(symbols, lexer, map, text, "CQL");
      break;
    case Level::Factor:
      tree = QORQL_Factor::parse(symbols, lexer, map, text, "CQL");
      break;
  }
}

void Parsed::know(std::initializer_list<const char*> names) {
  for (const char* name : names) {
    QORSmrPtr<QORQL_ClassInfo> info(new QORQL_ClassInfo(name, nullptr, false));
    symbols.insert(name, new QORQL_Symbol(QORQL_SYMBOLTYPE_TABLE_NAME, name, "", info, nullptr));
  }
}

std::string describe(const QORSmrPtr<QORQL_ClassInfo>& info) {
  if (info.IsNull()) return "-";
  std::string names = info->needAllProperties() ? "*" : "";
  QORValSlistIterator<QORString> properties(*info->getPropertyList());
  while (++properties) names += (names.empty() ? "" : ",") + plain(properties.key());
  return names;
}

std::string Parsed::requested(const char* record) const {
  QORSmrPtr<QORQL_ClassInfo> info;
  map->find(record, info);
  return describe(info);
}

namespace {

const char* symbolOf(QORQL_Operator op) {
  static constexpr const char* kSymbols[] = {"none", "=",  "<>", "<",   ">",       "<=",          ">=",  "~",
                                             "+",    "-",  "*",  "/",   "AND",     "OR",          "NOT", "function",
                                             "LIKE", "*=", "=*", "*=*", "IS NULL", "IS NOT NULL", "ISA"};
  return kSymbols[op];
}

std::string join(const Node& left, const Node& right, QORQL_Operator op) {
  if (right.IsNull()) return op == QORQL_OperatorNONE ? print(left) : "(" + print(left) + " " + symbolOf(op) + ")";
  return "(" + print(left) + " " + symbolOf(op) + " " + print(right) + ")";
}

std::string printComparison(const QORQL_Comparison& comparison) {
  static constexpr const char* kModes[] = {"", "ANY< ", "ANY> ", "EVERY< ", "EVERY> "};
  return kModes[comparison.getArrayComp()] + join(comparison.getLHSArithmeticExpression(),
                                                  comparison.getRHSArithmeticExpression(), comparison.getOperator());
}

std::string printFunction(const QORQL_Function& function) {
  std::string text = QORQL_functionName(function.getFunctionID());
  std::string separator = "(";
  QORValSlistIterator<QORSmrPtr<QORQL_Evaluatable>> parameters(*function.getParameters());
  while (++parameters) {
    text += separator + print(parameters.key());
    separator = ", ";
  }
  return text + ")";
}

std::string printAssociation(const QORQL_Association& association) {
  return "assoc(" + plain(association.getAssociationName()) + ": " + plain(association.getSource()) +
         (association.getJoinType() == QORQL_JOIN_TYPE_LEFT_OUTER ? " *> " : " -> ") +
         plain(association.getDestination()) + ")";
}

std::string printReference(const QORQL_Factor& factor) {
  if (factor.getPropertyName().IsNull()) return "<" + plain(*factor.getClassName()) + ">";
  std::string text = plain(*factor.getClassName());
  if (!text.empty()) text += ".";
  return text + plain(*factor.getPropertyName());
}

std::string printAnyFactor(const QORQL_Factor& factor) {
  const std::string minus = factor.getOperator() == QORQL_OperatorMINUS ? "-" : "";
  if (!factor.getEvaluatable().IsNull()) return minus + "{" + print(factor.getEvaluatable()) + "}";
  if (!factor.getLiteral().IsNull()) return minus + plain(factor.getLiteral()->toString());
  return minus + printReference(factor);
}

std::string orAbsent(const QORSmrPtr<QORString>& text) { return text.IsNull() ? "~" : plain(*text); }

}  // namespace

std::string print(const Node& node) {
  QORQL_Evaluatable* const any = node.Get();
  if (any == nullptr) return "null";
  if (auto* or_ = dynamic_cast<QORQL_Expression*>(any)) {
    return join(or_->getExpressionTerm(), or_->getExpression(), or_->getOperator());
  }
  if (auto* and_ = dynamic_cast<QORQL_ExpressionTerm*>(any)) {
    return join(and_->getExpressionFactor(), and_->getExpressionTerm(), and_->getOperator());
  }
  if (auto* not_ = dynamic_cast<QORQL_ExpressionFactor*>(any)) {
    const std::string inner = print(not_->getComparison());
    return not_->getOperator() == QORQL_OperatorNOT ? "(NOT " + inner + ")" : inner;
  }
  if (auto* sum = dynamic_cast<QORQL_Arithmetic*>(any)) {
    return join(sum->getTerm(), sum->getArithmetic(), sum->getOperator());
  }
  if (auto* product = dynamic_cast<QORQL_Term*>(any)) {
    return join(product->getFactor(), product->getTerm(), product->getOperator());
  }
  if (auto* comparison = dynamic_cast<QORQL_Comparison*>(any)) return printComparison(*comparison);
  if (auto* function = dynamic_cast<QORQL_Function*>(any)) return printFunction(*function);
  if (auto* association = dynamic_cast<QORQL_Association*>(any)) return printAssociation(*association);
  if (auto* factor = dynamic_cast<QORQL_Factor*>(any)) return printAnyFactor(*factor);
  return "unknown node";
}

std::string printFactor(const QORQL_Factor& factor) {
  return "[" + orAbsent(factor.getClassName()) + "|" + orAbsent(factor.getPropertyName()) + "|" +
         orAbsent(factor.getChain()) + "|" + orAbsent(factor.getPropertyScope()) + "|" +
         std::to_string(factor.getArrayIndexList()) + "]";
}

const QORQL_Factor* leadingFactor(const Node& node) {
  QORQL_Evaluatable* const any = node.Get();
  if (auto* or_ = dynamic_cast<QORQL_Expression*>(any)) return leadingFactor(or_->getExpressionTerm());
  if (auto* and_ = dynamic_cast<QORQL_ExpressionTerm*>(any)) return leadingFactor(and_->getExpressionFactor());
  if (auto* not_ = dynamic_cast<QORQL_ExpressionFactor*>(any)) return leadingFactor(not_->getComparison());
  if (auto* comparison = dynamic_cast<QORQL_Comparison*>(any)) {
    return leadingFactor(comparison->getLHSArithmeticExpression());
  }
  if (auto* sum = dynamic_cast<QORQL_Arithmetic*>(any)) return leadingFactor(sum->getTerm());
  if (auto* product = dynamic_cast<QORQL_Term*>(any)) return leadingFactor(product->getFactor());
  return dynamic_cast<QORQL_Factor*>(any);
}

Statement::Statement(const QORString& source, const QORString& space) : text(source), nameSpace(space) {
  QORQL_Lexer lexer(text, false);
  executable = QORQL_Query::parse(symbols, lexer, false, text, language, nameSpace);
}

std::string Statement::requested(const char* name) const {
  const QORSmrPtr<QORQL_Symbol> symbol = symbols.lookup(name);
  return symbol.IsNull() ? "no symbol" : describe(symbol->getClassInfo());
}

Node Statement::where() const {
  return static_cast<const QORQL_WhereClause&>(*query().getWhereClause()).getExpression();
}

std::string statementError(const QORString& text) {
  return thrownBy([&] { Statement statement(text); });
}

}  // namespace parsertest
