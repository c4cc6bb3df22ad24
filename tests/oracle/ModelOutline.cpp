// Statements of the second parser in the form in which they are compared.
// SPDX-License-Identifier: Apache-2.0
#include "NameModel.h"

namespace {

using Kind = ModelNode::Kind;
using Node = std::shared_ptr<ModelNode>;

std::string shown(const std::optional<std::string>& text) { return text ? *text : "~"; }

std::string outline(const ModelNode& node);

std::string children(const ModelNode& node) {
  std::string text;
  for (const Node& child : node.children) text += (text.empty() ? "" : ", ") + outline(*child);
  return text;
}

std::string plainFactor(const ModelNode& node) {
  if (node.column) return "=" + *node.column;
  if (node.literal) return "'" + *node.literal + "'";
  const std::string className = node.className ? toUpper(*node.className) : "~";
  const std::string property = node.isSelectAll ? "*" : shown(node.property);
  return "{" + className + "|" + property + "|" + shown(node.chain) + "|" + shown(node.scope) + "|" +
         std::to_string(node.index) + "}";
}

std::string outline(const ModelNode& node) {
  const std::string operation = node.operation == 0 ? "" : std::to_string(node.operation);
  if (node.isPlain()) return plainFactor(node);
  switch (node.kind) {
    case Kind::Association:
      return "tie(" + node.association + ", " + node.source + ", " + node.destination + ", " +
             std::to_string(node.operation) + ")";
    case Kind::Function:
      return "f" + operation + "(" + children(node) + ")";
    case Kind::Comparison:
      return "C" + operation + (node.arrayMode == 0 ? "" : "a" + std::to_string(node.arrayMode)) + "(" +
             children(node) + ")";
    default:
      return std::string(1, "EANCMTF"[static_cast<int>(node.kind)]) + operation + "(" + children(node) + ")";
  }
}

std::string outline(const ModelEntry& entry) {
  if (entry.isSelectAll) return "all";
  std::string text;
  for (const Node& factor : factorsOf(entry.expression)) {
    if (factor->className) text += toUpper(*factor->className) + " ";
  }
  if (entry.reference) {
    const std::string property = entry.reference->isSelectAll ? "*" : entry.reference->property.value_or("");
    text += "| " + toUpper(*entry.reference->className) + " . " + property + " ";
  }
  return text + "| AS " + entry.alias + " f" + std::to_string(entry.function) + (entry.isAggregate() ? "!" : "") + " " +
         outline(*entry.expression);
}

std::string outline(const ModelStatement& statement) {
  std::string text = statement.isFirst ? "FIRST " + std::to_string(statement.firstCount) + "\n" : "";
  for (const ModelEntry& entry : statement.entries) text += "SELECT " + outline(entry) + "\n";
  for (const std::string& from : statement.from) text += "FROM " + from + "\n";
  if (statement.where) text += "WHERE " + outline(*statement.where) + "\n";
  if (statement.orderKey) {
    text += "ORDER " + outline(*statement.orderKey) + (statement.isAscending ? " up" : " down") + "\n";
  }
  if (statement.format >= 0) text += "FORMAT " + std::to_string(statement.format) + "\n";
  for (const auto& [name, symbol] : statement.symbols) {
    text += name + (symbol.isAlias ? " alias " : " class ") + symbol.alias + " " + symbol.className +
            (symbol.request->needsAll ? " all:" : ":");
    for (const std::string& property : symbol.request->properties) text += " " + property;
    text += "\n";
  }
  return text;
}

}  // namespace

std::string outlineByModel(const std::string& text, const ModelSchema& schema, std::string& output) {
  try {
    ModelStatement statement = parseByModel(text, output);
    resolveByModel(statement, schema);
    return outline(statement);
  } catch (const ModelFault& fault) {
    return fault.text;
  }
}
