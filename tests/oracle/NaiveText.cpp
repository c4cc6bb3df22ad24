// Statements and answers of the naive implementation as text.
// SPDX-License-Identifier: Apache-2.0
#include "Naive.h"

namespace {

const char* textOf(Comparison::Operator op) {
  switch (op) {
    case Comparison::Operator::Equal:
      return " = ";
    case Comparison::Operator::NotEqual:
      return " <> ";
    case Comparison::Operator::Less:
      return " < ";
    case Comparison::Operator::GreaterEqual:
      return " >= ";
    case Comparison::Operator::LeftJoin:
      return " *= ";
    case Comparison::Operator::RightJoin:
      return " =* ";
    case Comparison::Operator::FullJoin:
      return " *=* ";
    case Comparison::Operator::IsNull:
      return " IS NULL";
    case Comparison::Operator::IsNotNull:
      return " IS NOT NULL";
  }
  return "";
}

std::string tableName(int table) { return std::string(1, static_cast<char>('A' + table)); }

template <class Items, class Text>
std::string join(const Items& items, const char* separator, Text text) {
  std::string joined;
  for (const auto& item : items) joined += (joined.empty() ? "" : separator) + text(item);
  return joined;
}

std::string chainText(const std::vector<Comparison>& chain) {
  return join(chain, " AND ", [](const Comparison& comparison) { return comparison.toText(); });
}

}  // namespace

std::string Operand::toText() const {
  if (field == Field::Number) return std::to_string(number);
  return tableName(table) + (field == Field::Id ? ".Id" : field == Field::K ? ".K" : ".V");
}

std::string Comparison::toText() const {
  const bool isUnary = op == Operator::IsNull || op == Operator::IsNotNull;
  return (isNegated ? "NOT " : "") + left.toText() + textOf(op) + (isUnary ? std::string() : right.toText());
}

std::string Statement::toText() const {
  std::string text = "SELECT ";
  if (first) text += "FIRST " + std::to_string(*first) + " ";
  text += join(select, ", ", [](const Operand& operand) { return operand.toText(); });
  text += " FROM " + join(from, ", ", tableName);
  if (!where.empty()) text += " WHERE " + join(where, " OR ", chainText);
  if (order) text += " ORDER BY " + order->key.toText() + (order->isAscending ? " ASC" : " DESC");
  return text;
}

std::string Answer::toText() const {
  if (failure == Failure::Sort) return "the sort fails\n";
  if (failure == Failure::Type) return "a text does not compare with a number\n";
  std::string text;
  for (const std::vector<std::string>& row : rows) {
    text += join(row, " ", [](const std::string& value) { return value; }) + "\n";
  }
  return text.empty() ? "no rows\n" : text;
}
