// A table has a column for each class that is there and rows of objects, null
// for none. FROM makes the product, conditions filter it one after another, of
// OR only the last operand counts; then rows are sorted and selected.
// SPDX-License-Identifier: Apache-2.0
#include "TieSimulator.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "cmpbase.h"

namespace {

using Kind = TieOperand::Kind;
using Op = TieCondition::Operator;
using Chain = std::vector<TieCondition>;
using Object = const TieObject*;
using Row = std::vector<Object>;

constexpr char kDivisionByZero[] = "Division by zero";
constexpr char kSortFailed[] = "Caught an exception while sorting the data.";

enum class Truth { False, True, Null };
enum class Filtered { Unknown, All, NotAll };

// What an association said before its class was a column.
struct OpenTie {
  int association;
  int source;
  int destination;
  bool isOuter;
};

struct Table {
  std::vector<int> columns;
  std::vector<Row> rows;
  std::vector<OpenTie> open;
  Filtered filtered = Filtered::Unknown;

  bool has(int which) const { return std::find(columns.begin(), columns.end(), which) != columns.end(); }
  std::size_t columnOf(int which) const {
    const auto found = std::find(columns.begin(), columns.end(), which);
    if (found == columns.end()) throw std::logic_error("no such column");
    return static_cast<std::size_t>(found - columns.begin());
  }
  Object cell(const Row& row, int which) const { return has(which) ? row[columnOf(which)] : nullptr; }
};

// A number or a text; neither is null.
struct Value {
  std::optional<int> number;
  std::optional<std::string> text;
  bool isNull() const { return !number && !text; }
};

Value valueOf(const TieOperand& operand, const Table& table, const Row& row) {
  if (operand.kind == Kind::NumberLiteral) return {operand.number, {}};
  if (operand.kind == Kind::TextLiteral) return {{}, operand.text};
  const Object object = table.cell(row, operand.which);
  if (object == nullptr) return {};
  switch (operand.kind) {
    case Kind::Id:
      return {{}, object->id};
    case Kind::Number:
      return {object->number, {}};
    case Kind::FirstEnd:
      return {{}, object->ends[0]->path()};
    case Kind::SecondEnd:
      return {{}, object->ends[1]->path()};
    case Kind::Quotient:
      if (!object->number) return {};
      if (*object->number == operand.number) throw std::runtime_error(kDivisionByZero);
      return {6 / (*object->number - operand.number), {}};
    default:
      return {{}, object->path()};
  }
}

template <class T>
bool holds(Op op, const T& a, const T& b) {
  if (op == Op::NotEqual) return a != b;
  if (op == Op::Less) return a < b;
  if (op == Op::GreaterEqual) return a >= b;
  return a == b;
}

Truth truthOf(const TieCondition& one, const Table& table, const Row& row) {
  const Value left = valueOf(one.left, table, row);
  const auto truth = [](bool is) { return is ? Truth::True : Truth::False; };
  if (one.op == Op::IsNull) return truth(left.isNull());
  if (one.op == Op::IsNotNull) return truth(!left.isNull());
  const Value right = valueOf(one.right, table, row);
  if (left.isNull() || right.isNull()) return Truth::Null;
  return left.number ? truth(holds(one.op, *left.number, *right.number))
                     : truth(holds(one.op, *left.text, *right.text));
}

bool ties(Object association, Object source, Object destination) {
  if (association == nullptr || source == nullptr || destination == nullptr || !isTie(association->which)) return false;
  const auto& [first, second] = association->ends;
  return (first == source && second == destination) || (first == destination && second == source);
}

// The objects at the other ends of the association's objects, in their order, each once.
std::vector<Object> associatesOf(Object source, int association, int result, const TieWorld& world) {
  std::vector<Object> found;
  if (source == nullptr || !isTie(association)) return found;
  for (const TieObject& object : world.of(association)) {
    for (std::size_t end : {0U, 1U}) {
      const Object other = object.ends[1 - end];
      if (object.ends[end] != source || other->which != result) continue;
      if (std::find(found.begin(), found.end(), other) == found.end()) found.push_back(other);
    }
  }
  return found;
}

// The rows that agree but for some columns, groups in the order of their first rows.
std::vector<std::vector<Row>> groupsOf(const std::vector<Row>& rows, const std::set<std::size_t>& without) {
  std::vector<std::vector<Row>> groups;
  std::map<Row, std::size_t> places;
  for (const Row& row : rows) {
    Row key = row;
    for (const std::size_t column : without) key[column] = nullptr;
    const auto [place, isNew] = places.try_emplace(key, groups.size());
    if (isNew) groups.emplace_back();
    groups[place->second].push_back(row);
  }
  return groups;
}

Row without(Row row, const std::set<std::size_t>& columns) {
  for (const std::size_t column : columns) row[column] = nullptr;
  return row;
}

void applyTie(const OpenTie& tie, Table& table) {
  const std::set<std::size_t> own = {table.columnOf(tie.association), table.columnOf(tie.destination)};
  std::vector<Row> kept;
  for (const std::vector<Row>& group : groupsOf(table.rows, own)) {
    const std::size_t before = kept.size();
    for (const Row& row : group) {
      const bool isTied =
          ties(table.cell(row, tie.association), table.cell(row, tie.source), table.cell(row, tie.destination));
      if (isTied) kept.push_back(row);
    }
    if (kept.size() == before && tie.isOuter) kept.push_back(without(group.front(), own));
  }
  table.rows = kept;
}

std::vector<OpenTie> takeOpen(Table& table, int association) {
  std::vector<OpenTie> taken;
  std::erase_if(table.open, [&](const OpenTie& tie) {
    if (tie.association == association) taken.push_back(tie);
    return tie.association == association;
  });
  return taken;
}

class Run {
 public:
  Run(const TieStatement& statement, const TieWorld& world) : _statement(statement), _world(world) {}

  std::string result() {
    std::set<int> skipped = skippedClasses();
    Table table;
    for (const int which : _statement.from) {
      if (!skipped.contains(which)) fetch(table, which, nullptr);
    }
    if (!_statement.where.empty() && !isLeftToProviders(table)) applyWhere(table);
    if (_statement.order && !isLeftToProviders(table)) order(table);
    std::string text;
    for (const Row& row : table.rows) {
      for (const TieOperand& operand : _statement.select) text += textOf(valueOf(operand, table, row)) + " ";
      text += "\n";
    }
    return text;
  }

 private:
  static std::string textOf(const Value& value) {
    if (value.isNull()) return "-";
    return value.text ? *value.text : std::to_string(*value.number);
  }

  // What associations bring need not be enumerated: a class that they first name
  // as a destination, and an association class that nothing else names.
  std::set<int> skippedClasses() const {
    std::set<int> skipped;
    if (_statement.where.empty()) return skipped;
    std::map<int, bool> isDestination;
    for (const TieCondition& one : _statement.where.back()) {
      if (!one.isAssociation()) continue;
      isDestination.try_emplace(one.source, false);
      isDestination.try_emplace(one.destination, true);
    }
    for (const auto& [which, is] : isDestination) {
      if (is) skipped.insert(which);
    }
    const std::set<int> named = namedElsewhere();
    for (const TieCondition& one : _statement.where.back()) {
      if (one.isAssociation() && !isDestination.contains(one.association) && !named.contains(one.association)) {
        skipped.insert(one.association);
      }
    }
    return skipped;
  }

  std::set<int> namedElsewhere() const {
    std::set<int> named;
    for (const TieOperand& operand : _statement.select) named.insert(operand.which);
    if (_statement.order) named.insert(_statement.order->which);
    for (const Chain& chain : _statement.where) {
      for (const TieCondition& one : chain) {
        if (!one.isAssociation()) named.insert({one.left.which, one.right.which});
      }
    }
    return named;
  }

  bool isLeftToProviders(const Table& table) const {
    const auto hasAssociation = [](const Chain& chain) {
      return std::any_of(chain.begin(), chain.end(), [](const TieCondition& one) { return one.isAssociation(); });
    };
    const bool isWalked = std::any_of(_statement.where.begin(), _statement.where.end(), hasAssociation);
    return !isWalked && table.filtered == Filtered::All;
  }

  // A new column beside the rows there are; a condition keeps what it does not find false.
  void fetch(Table& table, int which, const TieCondition* condition) const {
    if (which < 0 || table.has(which)) return;
    const std::vector<OpenTie> open = takeOpen(table, which);
    if (!open.empty() || (condition != nullptr && condition->isJoin())) condition = nullptr;
    const std::deque<TieObject>& objects = _world.of(which);
    std::vector<Row> rows = table.rows;
    const std::size_t width = table.columns.size();
    table.columns.push_back(which);
    if (rows.empty() && !objects.empty()) rows = {Row(width, nullptr)};
    if (!objects.empty()) noteFiltered(table, which);
    table.rows.clear();
    for (Row& row : rows) {
      row.push_back(nullptr);
      if (objects.empty()) table.rows.push_back(row);
      for (const TieObject& object : objects) {
        row.back() = &object;
        if (condition == nullptr || truthOf(*condition, table, row) != Truth::False) table.rows.push_back(row);
      }
    }
    for (const OpenTie& tie : open) applyTie(tie, table);
  }

  void noteFiltered(Table& table, int which) const {
    if (!_world.isFiltered(which)) {
      table.filtered = Filtered::NotAll;
    } else if (table.filtered == Filtered::Unknown) {
      table.filtered = Filtered::All;
    }
  }

  void applyWhere(Table& table) const {
    const Table given = table;
    applyChain(_statement.where.back(), table);
    for (std::size_t i = _statement.where.size() - 1; i-- != 0;) {
      Table copy = given;
      std::reverse(copy.columns.begin(), copy.columns.end());
      for (Row& row : copy.rows) std::reverse(row.begin(), row.end());
      applyChain(_statement.where[i], copy);
    }
  }

  void applyChain(const Chain& chain, Table& table) const {
    for (const TieCondition& one : chain) {
      if (one.isAssociation()) {
        associate(one, table);
      } else {
        filter(one, table);
      }
    }
  }

  void associate(const TieCondition& one, Table& table) const {
    fetch(table, one.source, nullptr);
    if (table.has(one.destination)) {
      filterDestination(one, table);
    } else {
      addDestination(one, table);
    }
    const OpenTie tie{one.association, one.source, one.destination, one.isOuter};
    const auto& from = _statement.from;
    if (table.has(one.association)) {
      applyTie(tie, table);
    } else if (std::find(from.begin(), from.end(), one.association) != from.end()) {
      table.open.push_back(tie);
    }
  }

  void addDestination(const TieCondition& one, Table& table) const {
    const std::vector<OpenTie> open = takeOpen(table, one.destination);
    std::vector<Row> kept;
    for (Row row : table.rows) {
      const std::size_t before = kept.size();
      const Row given = row;
      row.push_back(nullptr);
      for (const Object object :
           associatesOf(table.cell(given, one.source), one.association, one.destination, _world)) {
        const bool isTied = std::all_of(open.begin(), open.end(), [&](const OpenTie& tie) {
          return ties(object, table.cell(given, tie.source), table.cell(given, tie.destination));
        });
        row.back() = object;
        if (isTied) kept.push_back(row);
      }
      row.back() = nullptr;
      if (kept.size() == before && one.isOuter) kept.push_back(row);
    }
    table.columns.push_back(one.destination);
    table.rows = kept;
  }

  void filterDestination(const TieCondition& one, Table& table) const {
    std::set<std::size_t> free;
    const std::size_t destination = table.columnOf(one.destination);
    if (one.source != one.destination) free.insert(destination);
    std::vector<Row> kept;
    for (const std::vector<Row>& group : groupsOf(table.rows, free)) {
      const std::size_t before = kept.size();
      const Object source = table.cell(group.front(), one.source);
      for (const Object object : associatesOf(source, one.association, one.destination, _world)) {
        for (const Row& row : group) {
          if (row[destination] == object) kept.push_back(row);
        }
      }
      if (kept.size() == before && one.isOuter) kept.push_back(without(group.front(), {destination}));
    }
    table.rows = kept;
  }

  // Objects of one side of an outer join, by their paths, as a map with 150 buckets visits them.
  struct Side {
    std::size_t column = 0;
    std::vector<Object> matched;
    std::vector<Object> unmatched;
  };

  static bool contains(const std::vector<Object>& objects, Object object) {
    return std::find(objects.begin(), objects.end(), object) != objects.end();
  }
  static void note(Side& side, const Row& row, bool holds, bool isLeft) {
    const Object object = row[side.column];
    if (object == nullptr || (holds && isLeft && contains(side.unmatched, object))) return;
    std::vector<Object>& objects = holds ? side.matched : side.unmatched;
    if (!contains(objects, object)) objects.push_back(object);
  }
  static void addUnmatched(const Side& side, std::size_t width, std::vector<Row>& rows) {
    std::vector<Object> objects = side.unmatched;
    const auto bucket = [](Object object) { return hashKeyQORString(QORString(object->path())) % 150; };
    std::stable_sort(objects.begin(), objects.end(), [&](Object a, Object b) { return bucket(a) < bucket(b); });
    for (const Object object : objects) {
      if (contains(side.matched, object)) continue;
      rows.emplace_back(width, nullptr);
      rows.back()[side.column] = object;
    }
  }

  void filter(const TieCondition& one, Table& table) const {
    fetch(table, one.left.which, &one);
    if (one.op != Op::IsNull && one.op != Op::IsNotNull) fetch(table, one.right.which, &one);
    if (table.rows.empty()) return;
    Side left;
    Side right;
    if (one.isJoin() && one.left.which >= 0 && one.right.which >= 0) {
      left.column = table.columnOf(one.left.which);
      right.column = table.columnOf(one.right.which);
    }
    std::vector<Row> kept;
    for (const Row& row : table.rows) {
      const Truth truth = truthOf(one, table, row);
      if (one.isJoin()) {
        note(left, row, truth == Truth::True, true);
        note(right, row, truth == Truth::True, false);
      }
      if (truth == (one.isNegated ? Truth::False : Truth::True)) kept.push_back(row);
    }
    if (one.op == Op::LeftJoin || one.op == Op::FullJoin) addUnmatched(left, table.columns.size(), kept);
    if (one.op == Op::RightJoin || one.op == Op::FullJoin) addUnmatched(right, table.columns.size(), kept);
    table.rows = kept;
  }

  struct Keyed {
    Value key;
    Row row;
  };

  bool comesFirst(const Keyed& a, const Keyed& b) const {
    if (a.key.isNull() || b.key.isNull()) throw std::runtime_error(kSortFailed);
    const auto less = [](const Value& x, const Value& y) {
      return x.number ? *x.number < *y.number : *x.text < *y.text;
    };
    return _statement.isAscending ? less(a.key, b.key) : less(b.key, a.key);
  }

  // Merges runs of 1, 2, 4, ... rows; of equal keys the right one is taken.
  void order(Table& table) const {
    std::vector<Keyed> rows;
    for (const Row& row : table.rows) rows.push_back({valueOf(*_statement.order, table, row), row});
    for (std::size_t width = 1; width < rows.size(); width *= 2) {
      std::vector<Keyed> merged;
      for (std::size_t start = 0; start < rows.size(); start += 2 * width) {
        const std::size_t middle = std::min(start + width, rows.size());
        const std::size_t end = std::min(middle + width, rows.size());
        std::size_t a = start;
        std::size_t b = middle;
        while (a < middle && b < end) merged.push_back(comesFirst(rows[a], rows[b]) ? rows[a++] : rows[b++]);
        while (a < middle) merged.push_back(rows[a++]);
        while (b < end) merged.push_back(rows[b++]);
      }
      rows = merged;
    }
    table.rows.clear();
    for (const Keyed& one : rows) table.rows.push_back(one.row);
  }

  const TieStatement& _statement;
  const TieWorld& _world;
};

}  // namespace

std::string simulate(const TieStatement& statement, const TieWorld& world) {
  try {
    return Run(statement, world).result();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}
