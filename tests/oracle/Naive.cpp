// Rows are lists of objects, one for each FROM table, null for none. FROM makes
// the product, each comparison of an AND chain filters what is left, of OR only
// the last operand counts; then the rows are sorted, projected and cut off.
// SPDX-License-Identifier: Apache-2.0
#include "Naive.h"

#include <algorithm>
#include <deque>
#include <stdexcept>

#include "cmpbase.h"

namespace {

enum class Truth { False, True, Null };

using Row = std::vector<const Object*>;

struct Table {
  std::vector<int> columns;  // the table of each column
  std::vector<Row> rows;

  std::size_t columnOf(int table) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i] == table) return i;
    }
    throw std::logic_error("a table that FROM does not name");
  }
};

// A value is a number or a text; nothing is null.
struct Value {
  std::optional<int> number;
  std::optional<std::string> text;
  bool isNull() const { return !number && !text; }
};

Value valueOf(const Operand& operand, const Table& table, const Row& row) {
  if (operand.field == Operand::Field::Number) return {operand.number, {}};
  const Object* const object = row[table.columnOf(operand.table)];
  if (object == nullptr) return {};
  switch (operand.field) {
    case Operand::Field::Id:
      return {{}, object->id()};
    case Operand::Field::K:
      return {object->key, {}};
    default:
      return {object->position, {}};
  }
}

struct TypeFailure {};

bool isOuter(Comparison::Operator op) {
  using Op = Comparison::Operator;
  return op == Op::LeftJoin || op == Op::RightJoin || op == Op::FullJoin;
}

Truth truthOf(const Comparison& comparison, const Table& table, const Row& row) {
  using Op = Comparison::Operator;
  const Value left = valueOf(comparison.left, table, row);
  const auto truth = [](bool holds) { return holds ? Truth::True : Truth::False; };
  if (comparison.op == Op::IsNull) return truth(left.isNull());
  if (comparison.op == Op::IsNotNull) return truth(!left.isNull());
  const Value right = valueOf(comparison.right, table, row);
  if (left.isNull() || right.isNull()) return Truth::Null;
  if (!left.number || !right.number) throw TypeFailure();
  const int a = *left.number;
  const int b = *right.number;
  switch (comparison.op) {
    case Op::NotEqual:
      return truth(a != b);
    case Op::Less:
      return truth(a < b);
    case Op::GreaterEqual:
      return truth(a >= b);
    default:
      return truth(a == b);
  }
}

// Objects by their paths, visited bucket by bucket and by age within one.
class ObjectMap {
 public:
  bool contains(const Object* object) const {
    for (const Object* other : bucketOf(object)) {
      if (other->path() == object->path()) return true;
    }
    return false;
  }
  void insertOnce(const Object* object) {
    if (!contains(object)) const_cast<std::vector<const Object*>&>(bucketOf(object)).push_back(object);
  }
  const std::vector<std::vector<const Object*>>& buckets() const { return _buckets; }

 private:
  const std::vector<const Object*>& bucketOf(const Object* object) const {
    return _buckets[hashKeyQORString(QORString(object->path())) % _buckets.size()];
  }

  std::vector<std::vector<const Object*>> _buckets = std::vector<std::vector<const Object*>>(150);
};

// The objects of one side of an outer join.
struct Side {
  std::size_t column = 0;
  ObjectMap matched;
  ObjectMap unmatched;
};

void note(Side& left, Side& right, const Row& row, bool holds) {
  const Object* const a = row[left.column];
  const Object* const b = row[right.column];
  if (holds) {
    // An object that has failed before is never taken for matched; on the right it may be.
    if (a != nullptr && !left.unmatched.contains(a)) left.matched.insertOnce(a);
    if (b != nullptr) right.matched.insertOnce(b);
  } else {
    if (a != nullptr) left.unmatched.insertOnce(a);
    if (b != nullptr) right.unmatched.insertOnce(b);
  }
}

void addUnmatched(const Side& side, std::size_t width, std::vector<Row>& rows) {
  for (const std::vector<const Object*>& bucket : side.unmatched.buckets()) {
    for (const Object* object : bucket) {
      if (side.matched.contains(object)) continue;
      Row row(width, nullptr);
      row[side.column] = object;
      rows.push_back(row);
    }
  }
}

void filter(const Comparison& comparison, Table& table) {
  using Op = Comparison::Operator;
  if (table.rows.empty()) return;
  Side left;
  Side right;
  if (isOuter(comparison.op) && comparison.left.table >= 0 && comparison.right.table >= 0) {
    left.column = table.columnOf(comparison.left.table);
    right.column = table.columnOf(comparison.right.table);
  }
  std::vector<Row> kept;
  for (const Row& row : table.rows) {
    const Truth truth = truthOf(comparison, table, row);
    if (isOuter(comparison.op)) note(left, right, row, truth == Truth::True);
    if (truth == (comparison.isNegated ? Truth::False : Truth::True)) kept.push_back(row);
  }
  const std::size_t width = table.columns.size();
  if (comparison.op == Op::LeftJoin || comparison.op == Op::FullJoin) addUnmatched(left, width, kept);
  if (comparison.op == Op::RightJoin || comparison.op == Op::FullJoin) addUnmatched(right, width, kept);
  table.rows = kept;
}

void filterChain(const std::vector<Comparison>& chain, Table& table) {
  for (const Comparison& comparison : chain) filter(comparison, table);
}

// An operand of OR before the last works on a copy whose columns stand in reverse.
void filterCopy(const std::vector<Comparison>& chain, const Table& table) {
  Table copy = table;
  std::reverse(copy.columns.begin(), copy.columns.end());
  for (Row& row : copy.rows) std::reverse(row.begin(), row.end());
  filterChain(chain, copy);
}

void filter(const Condition& where, Table& table) {
  if (where.empty()) return;
  const Table given = table;
  filterChain(where.back(), table);
  for (std::size_t i = where.size() - 1; i-- != 0;) filterCopy(where[i], given);
}

// An empty table takes the objects as rows; a table without rows stays with
// null cells where the others are empty.
void multiply(Table& table, int which, const std::deque<Object>& objects) {
  std::vector<Row> product;
  const std::size_t width = table.columns.size();
  if (table.rows.empty() && !objects.empty()) table.rows = {Row(width, nullptr)};
  for (const Row& row : table.rows) {
    if (objects.empty()) {
      product.push_back(row);
      product.back().push_back(nullptr);
    }
    for (const Object& object : objects) {
      product.push_back(row);
      product.back().push_back(&object);
    }
  }
  table.columns.push_back(which);
  table.rows = product;
}

struct NullKey {};

struct Keyed {
  std::optional<int> key;
  const Row* row;
};

bool comesFirst(const Keyed& left, const Keyed& right, bool isAscending) {
  if (!left.key || !right.key) throw NullKey();
  return isAscending ? *left.key < *right.key : *left.key > *right.key;
}

// Merges runs of 1, 2, 4, ... rows. The left run's head goes first only if it
// must: of equal keys the right one is taken.
std::vector<Keyed> sorted(std::vector<Keyed> rows, bool isAscending) {
  for (std::size_t width = 1; width < rows.size(); width *= 2) {
    std::vector<Keyed> merged;
    for (std::size_t start = 0; start < rows.size(); start += 2 * width) {
      const std::size_t middle = std::min(start + width, rows.size());
      const std::size_t end = std::min(start + 2 * width, rows.size());
      std::size_t left = start;
      std::size_t right = middle;
      while (left < middle && right < end) {
        merged.push_back(comesFirst(rows[left], rows[right], isAscending) ? rows[left++] : rows[right++]);
      }
      while (left < middle) merged.push_back(rows[left++]);
      while (right < end) merged.push_back(rows[right++]);
    }
    rows = merged;
  }
  return rows;
}

void order(const OrderKey& key, Table& table) {
  std::vector<Keyed> keyed;
  for (const Row& row : table.rows) keyed.push_back({valueOf(key.key, table, row).number, &row});
  std::vector<Row> rows;
  for (const Keyed& one : sorted(keyed, key.isAscending)) rows.push_back(*one.row);
  table.rows = rows;
}

std::string textOf(const Value& value) {
  if (value.isNull()) return "-";
  return value.text ? *value.text : std::to_string(*value.number);
}

}  // namespace

Answer answerNaively(const Statement& statement, const World& world) {
  std::deque<Object> objects[kTables];
  Table table;
  for (const int which : statement.from) {
    const std::vector<Key>& keys = world[static_cast<std::size_t>(which)];
    for (std::size_t i = 0; i < keys.size(); ++i) objects[which].push_back({which, static_cast<int>(i), keys[i]});
    multiply(table, which, objects[which]);
  }
  try {
    filter(statement.where, table);
    if (statement.order) order(*statement.order, table);
  } catch (const TypeFailure&) {
    return {Answer::Failure::Type, {}};
  } catch (const NullKey&) {
    return {Answer::Failure::Sort, {}};
  }
  Answer answer;
  for (const Row& row : table.rows) {
    if (answer.rows.size() == statement.first.value_or(0xFFFFFFFFU)) break;
    std::vector<std::string> texts;
    for (const Operand& column : statement.select) texts.push_back(textOf(valueOf(column, table, row)));
    answer.rows.push_back(texts);
  }
  return answer;
}
