// Names are bound once the whole statement is parsed: those of the select list, then WHERE's, then the sort key's.
// SPDX-License-Identifier: Apache-2.0
#include "NameModel.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_Operator.h"
#include "cmpbase.h"

namespace {

using Node = std::shared_ptr<ModelNode>;

class Resolution {
 public:
  Resolution(ModelStatement& statement, const ModelSchema& schema) : _statement(statement), _schema(schema) {}

  void run() {
    for (const std::string& name : _statement.bareNames) {
      if (_statement.find(name) == nullptr) request(findClass(name)).properties.insert(toUpper(name));
    }
    for (ModelEntry& entry : _statement.entries) resolveEntry(entry);
    for (const ModelQualified& one : _statement.selected) addSelected(one);
    refuseUnknown();
    for (const ModelQualified& one : _statement.conditioned) {
      const ModelSymbol* const symbol = _statement.find(one.name);
      if (symbol != nullptr) merge(*symbol->request, one.request);
    }
    if (_statement.where) resolve(_statement.where, false);
    _isKey = true;  // whose bare names are columns of the select list first, and may stay unbound
    if (_statement.orderKey) resolve(_statement.orderKey, false);
  }

 private:
  ModelRequest& request(const std::string& className) { return *_statement.symbols.at(className).request; }

  static void merge(ModelRequest& known, const ModelRequest& more) {
    known.needsAll = known.needsAll || more.needsAll;
    known.properties.insert(more.properties.begin(), more.properties.end());
  }

  // The classes of FROM, not its aliases, that have the property.
  std::vector<std::string> classesWith(const std::string& property) const {
    std::vector<std::string> found;
    for (const auto& [name, symbol] : _statement.symbols) {
      const auto known = _schema.find(name);
      if (symbol.isAlias || known == _schema.end()) continue;
      if (known->second.count(toUpper(property)) != 0) found.push_back(name);
    }
    return found;
  }

  std::string findClass(const std::string& property) const {
    const std::vector<std::string> found = classesWith(property);
    if (found.empty()) throw ModelFault::parse(12, "property '" + property + "' not found in any class", 0);
    if (found.size() > 1) throw ModelFault::parse(12, "property '" + property + "' found in more than one class", 0);
    return found[0];
  }

  void resolveEntry(ModelEntry& entry) {
    if (entry.expression) resolve(entry.expression, entry.function == 0);
  }

  // A qualifier that FROM does not know may be a property that holds an object.
  void addSelected(const ModelQualified& one) {
    const ModelSymbol* const symbol = _statement.find(one.name);
    if (symbol != nullptr) return merge(*symbol->request, one.request);
    const std::vector<std::string> found = classesWith(one.name);
    if (found.size() == 1)
      request(found[0]).properties.insert(toUpper(one.name));
    else
      _unknown.push_back(one.name);
  }

  // The map of what is selected is walked by its buckets, and each bucket as it was filled.
  void refuseUnknown() {
    const auto bucketOf = [](const std::string& name) { return hashKeyQORString(QORString(name)) % 150; };
    const auto first = std::min_element(_unknown.begin(), _unknown.end(),
                                        [&](const auto& a, const auto& b) { return bucketOf(a) < bucketOf(b); });
    if (first == _unknown.end()) return;
    throw ModelFault::runtime(4, "Invalid symbol specified in the select clause -'" + *first + "'");
  }

  // An object that is compared is needed whole.
  static bool comparesObjects(const ModelNode& node) {
    const bool isRelation = node.operation >= QORQL_OperatorEQUAL && node.operation <= QORQL_OperatorGREATEREQUAL;
    const bool isJoin = node.operation >= QORQL_OperatorLEFTJOIN && node.operation <= QORQL_OperatorFULLOUTERJOIN;
    return node.kind == ModelNode::Kind::Comparison && (isRelation || isJoin);
  }

  void resolve(const Node& node, bool needsObjects) {
    if (node->isPlain()) return bind(*node, needsObjects);
    for (const Node& child : node->children) resolve(child, needsObjects || comparesObjects(*node));
  }

  void bind(ModelNode& factor, bool needsObjects) {
    const bool hasNoClass = factor.className == "";
    if (!factor.property || (!hasNoClass && factor.chain != "")) return;
    if (_isKey && factor.isBare() && isColumn(toUpper(*factor.property))) {
      factor.column = toUpper(*factor.property);
    } else if (!factor.scope && _statement.find(*factor.property) != nullptr) {
      factor.className = factor.property;
      factor.property.reset();
      if (needsObjects) _statement.find(*factor.className)->request->needsAll = true;
    } else if (!_isKey || classesWith(*factor.property).size() == 1) {
      bindProperty(factor, findClass(*factor.property));
    }
  }

  void bindProperty(ModelNode& factor, const std::string& className) {
    factor.className = className;
    if (factor.chain) factor.chain = className;
    request(className).properties.insert(toUpper(*factor.property));
  }

  bool isColumn(const std::string& name) const {
    for (const ModelEntry& entry : _statement.entries) {
      if (!entry.alias.empty() && entry.alias == name) return true;
    }
    return false;
  }

  ModelStatement& _statement;
  const ModelSchema& _schema;
  std::vector<std::string> _unknown;  // qualifiers of the select list
  bool _isKey = false;
};

}  // namespace

void resolveByModel(ModelStatement& statement, const ModelSchema& schema) { Resolution(statement, schema).run(); }
