// The model's statements as text.
// SPDX-License-Identifier: Apache-2.0
#include "FilterModel.h"

namespace filter_model {

std::string Factor::toText() const {
  if (form == Form::Literal) return word;
  if (form == Form::Negation) return (negated->form == Form::Negation ? "- " : "-") + negated->toText();
  if (form == Form::Parentheses) return "(" + inner->toText() + ")";
  if (form == Form::Function) return word + "(" + argument->toText() + ")";
  std::string text;
  for (const std::string& step : path) text += step + ".";
  if (!scope.empty()) text += scope + "::";
  text += property;
  if (index >= 0) text += "[" + std::to_string(index) + "]";
  if (index == kStar) text += "[*]";
  return index == kBrackets ? text + "[]" : text;
}

std::string Product::toText() const {
  std::string text = factors[0].toText();
  for (std::size_t i = 1; i < factors.size(); ++i)
    text += std::string(" ") + operators[i - 1] + " " + factors[i].toText();
  return text;
}

std::string Sum::toText() const {
  std::string text = products[0].toText();
  for (std::size_t i = 1; i < products.size(); ++i)
    text += std::string(" ") + operators[i - 1] + " " + products[i].toText();
  return text;
}

std::string Comparison::toText() const {
  std::string text;
  if (asked == Asked::AnyLeft) text += "ANY ";
  if (asked == Asked::EveryLeft) text += "EVERY ";
  text += left.toText();
  if (!op.empty()) text += " " + op;
  if (!right) return text;
  text += " ";
  if (asked == Asked::AnyRight) text += "ANY ";
  if (asked == Asked::EveryRight) text += "EVERY ";
  return text + right->toText();
}

std::string Filter::toText() const {
  std::string text = "SELECT " + selectList + " FROM ";
  for (std::size_t i = 0; i < from.size(); ++i) {
    text += (i == 0 ? "" : ", ") + from[i].className + (from[i].alias.empty() ? "" : " AS " + from[i].alias);
  }
  for (std::size_t i = 0; i < conditions.size(); ++i) {
    const bool isOr = hasOr && i + 1 == conditions.size();
    text += (i == 0 ? " WHERE " : isOr ? " OR " : " AND ");
    text += (conditions[i].first ? "NOT " : "") + conditions[i].second.toText();
  }
  return text;
}

}  // namespace filter_model
