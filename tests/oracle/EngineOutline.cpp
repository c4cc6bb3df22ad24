// Reads the engine's tree, symbols and requests through its public accessors.
// SPDX-License-Identifier: Apache-2.0
#include "EngineOutline.h"

#include <map>
#include <set>
#include <stdexcept>

#include "Cimom/QORQL/QORQL_Arithmetic.h"
#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_Comparison.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Expression.h"
#include "Cimom/QORQL/QORQL_ExpressionFactor.h"
#include "Cimom/QORQL/QORQL_ExpressionTerm.h"
#include "Cimom/QORQL/QORQL_Factor.h"
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_Function.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "Cimom/QORQL/QORQL_Term.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"

namespace {

using Node = QORSmrPtr<QORQL_Evaluatable>;

std::string textOf(const QORString& text) { return std::string(text.view()); }
std::string shown(const QORSmrPtr<QORString>& text) { return text.IsNull() ? "~" : textOf(*text); }
std::string shownUpper(const QORSmrPtr<QORString>& text) {
  return text.IsNull() ? "~" : textOf(QORString::toUpperCase(*text));
}

std::string outline(const Node& node);

std::string ladder(const char* letter, int operation, const Node& left, const Node& right) {
  return letter + (operation == 0 ? "" : std::to_string(operation)) + "(" + outline(left) +
         (right.IsNull() ? "" : ", " + outline(right)) + ")";
}

std::string outlineOf(const QORQL_Comparison& node) {
  const std::string letter = "C" + std::to_string(node.getOperator());
  const std::string operation = node.getOperator() == 0 ? "C" : letter;
  const std::string mode = node.isArrayComp() ? "a" + std::to_string(node.getArrayComp()) : "";
  return ladder((operation + mode).c_str(), 0, node.getLHSArithmeticExpression(), node.getRHSArithmeticExpression());
}

std::string outlineOf(const QORQL_Factor& node) {
  if (!node.getEvaluatable().IsNull()) return ladder("F", node.getOperator(), node.getEvaluatable(), Node());
  if (!node.getSelectedEntry().IsNull()) return "=" + textOf(node.getSelectedEntry()->getAlias());
  if (!node.getLiteral().IsNull()) {
    const IQoriValue& value = *node.getLiteral();
    return "'" + textOf(value.getType()->getName()) + " " + textOf(value.toString()) + "'";
  }
  return "{" + shownUpper(node.getClassName()) + "|" + (node.isSelectAll() ? "*" : shown(node.getPropertyName())) +
         "|" + shown(node.getChain()) + "|" + shown(node.getPropertyScope()) + "|" +
         std::to_string(node.getArrayIndexList()) + "}";
}

std::string outlineOf(const QORQL_Function& node) {
  std::string arguments;
  QORValSlistIterator<Node> each(*node.getParameters());
  while (++each) arguments += (arguments.empty() ? "" : ", ") + outline(each.key());
  return "f" + std::to_string(node.getFunctionID()) + "(" + arguments + ")";
}

std::string outlineOf(const QORQL_Association& node) {
  return "tie(" + textOf(node.getAssociationName()) + ", " + textOf(node.getSource()) + ", " +
         textOf(node.getDestination()) + ", " + std::to_string(node.getJoinType()) + ")";
}

std::string outline(const Node& node) {
  if (const auto* or_ = QORQL_nodeAs<QORQL_Expression>(node)) {
    return ladder("E", or_->getOperator(), or_->getExpressionTerm(), or_->getExpression());
  }
  if (const auto* and_ = QORQL_nodeAs<QORQL_ExpressionTerm>(node)) {
    return ladder("A", and_->getOperator(), and_->getExpressionFactor(), and_->getExpressionTerm());
  }
  if (const auto* not_ = QORQL_nodeAs<QORQL_ExpressionFactor>(node)) {
    return ladder("N", not_->getOperator(), not_->getComparison(), Node());
  }
  if (const auto* sum = QORQL_nodeAs<QORQL_Arithmetic>(node)) {
    return ladder("M", sum->getOperator(), sum->getTerm(), sum->getArithmetic());
  }
  if (const auto* product = QORQL_nodeAs<QORQL_Term>(node)) {
    return ladder("T", product->getOperator(), product->getFactor(), product->getTerm());
  }
  if (const auto* comparison = QORQL_nodeAs<QORQL_Comparison>(node)) return outlineOf(*comparison);
  if (const auto* factor = QORQL_nodeAs<QORQL_Factor>(node)) return outlineOf(*factor);
  if (const auto* function = QORQL_nodeAs<QORQL_Function>(node)) return outlineOf(*function);
  if (const auto* association = QORQL_nodeAs<QORQL_Association>(node)) return outlineOf(*association);
  throw std::logic_error("a node of no known kind");
}

std::string outlineOf(const QORQL_SelectedEntry& entry) {
  if (entry.isSelectAll()) return "all";
  std::string text;
  QORValSlistIterator<QORSmrPtr<QORString>> each(*entry.getClassNameList());
  while (++each) text += shownUpper(each.key()) + " ";
  if (!entry.getClassName().isEmpty() || !entry.getPropertyName().isEmpty()) {
    text += "| " + textOf(QORString::toUpperCase(entry.getClassName())) + " . " + textOf(entry.getPropertyName()) + " ";
  }
  return text + "| AS " + textOf(entry.getAlias()) + " f" + std::to_string(entry.GetFunctionID()) +
         (entry.isEntryAggregate() ? "!" : "") + " " + outline(entry.getExpression());
}

std::string outlineOf(const QORQL_SelectList& list) {
  std::string text = list.isFirstUsed() ? "FIRST " + std::to_string(list.getFirstCount()) + "\n" : "";
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> each(*list.getSelectedEntries());
  while (++each) text += "SELECT " + outlineOf(*each.key()) + "\n";
  return text;
}

std::string outlineOf(const QORQL_FromClause& clause) {
  std::string text;
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> each(*clause.getFromSpecifierList());
  while (++each) {
    text += "FROM " + textOf(each.key()->getTableName()) + " " + textOf(each.key()->getAlias()) + "\n";
  }
  return text;
}

std::string outlineOf(const QORQL_Symbol& symbol) {
  const QORSmrPtr<QORQL_ClassInfo> needed = symbol.getClassInfo();
  std::set<std::string> properties;
  QORValSlistIterator<QORString> each(*needed->getPropertyList());
  while (++each) properties.insert(textOf(QORString::toUpperCase(each.key())));
  std::string text = (symbol.isAlias() ? " alias " : " class ") + textOf(symbol.getAlias()) + " " +
                     textOf(symbol.getClassName()) + (needed->needAllProperties() ? " all:" : ":");
  for (const std::string& property : properties) text += " " + property;
  return text;
}

std::string outlineOf(const QORQL_SymbolTable& symbols) {
  std::map<std::string, std::string> outlines;
  QORValMapIterator<QORString, QORSmrPtr<QORQL_Symbol>> each(symbols.getSymbolHashMap());
  while (++each) outlines[textOf(each.key())] = outlineOf(*each.value());
  std::string text;
  for (const auto& [name, outlined] : outlines) text += name + outlined + "\n";
  return text;
}

std::string outlineOf(const QORQL_Query& query, const QORQL_SymbolTable& symbols) {
  std::string text = outlineOf(dynamic_cast<QORQL_SelectList&>(*query.getSelectList())) +
                     outlineOf(dynamic_cast<QORQL_FromClause&>(*query.getFromClause()));
  if (!query.getWhereClause().IsNull()) {
    text += "WHERE " + outline(dynamic_cast<QORQL_WhereClause&>(*query.getWhereClause()).getExpression()) + "\n";
  }
  if (!query.getOrderByClause().IsNull()) {
    const auto& order = dynamic_cast<QORQL_OrderByClause&>(*query.getOrderByClause());
    text += "ORDER " + outline(order.getExpression()) + (order.isSortAscending() ? " up" : " down") + "\n";
  }
  if (!query.getFormatClause().IsNull()) {
    text += "FORMAT " + std::to_string(query.getFormatClause()->getFormatID()) + "\n";
  }
  return text + outlineOf(symbols);
}

}  // namespace

std::string outlineByEngine(const std::string& text, const std::string& nameSpace) {
  const QORString query(text.data(), text.size());
  QORQL_Lexer lexer(query, false);
  QORQL_SymbolTable symbols(nullptr);
  try {
    const QORString place(nameSpace);
    const auto parsed = QORQL_Query::parse(symbols, lexer, false, query, "DMTF:CQL", place);
    return outlineOf(dynamic_cast<QORQL_Query&>(*parsed), symbols);
  } catch (const QORQL_ParseException& fault) {
    return "parse " + std::to_string(fault.getCode()) + " line " + std::to_string(fault.getLineNr()) + ": " +
           textOf(fault.getMessage());
  } catch (const QORQL_Exception& fault) {
    return "runtime " + std::to_string(fault.getCode()) + ": " + textOf(fault.getMessage());
  }
}
