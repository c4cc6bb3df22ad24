// Statements by chance: a walk through the grammar that throws dice.
// SPDX-License-Identifier: Apache-2.0
#include "RandomStatement.h"

#include <array>

struct RandomStatement::Source {
  const char* className;
  const char* alias;
  std::vector<const char*> properties;
  const char* array;   // null: none
  const char* number;  // a property to join by, and one that is a text; null: none
  const char* text;
};

namespace {

template <class Items>
auto pick(const Items& items, unsigned index) {
  return items[index];
}

constexpr std::array<const char*, 10> kComparisons = {
    " = ", " <> ", " < ", " > ", " <= ", " >= ", " *= ", " =* ", " *=* ", " LIKE "};
constexpr std::array<const char*, 9> kLiterals = {"0", "1", "3", "200", "2.5", "'d1'", "'north'", "'TRUE'", "''"};
constexpr std::array<const char*, 5> kAggregates = {"COUNT", "MIN", "MAX", "SUM", "AVG"};
constexpr std::array<const char*, 4> kArithmetic = {" + ", " - ", " * ", " / "};

}  // namespace

const RandomStatement::Source& RandomStatement::anySource() {
  return *_from[below(static_cast<unsigned>(_from.size()))];
}

std::string RandomStatement::property() {
  const Source& source = anySource();
  const std::string name = source.properties[below(static_cast<unsigned>(source.properties.size()))];
  return std::string(source.alias) + "." + name;
}

std::string RandomStatement::literal() { return pick(kLiterals, below(kLiterals.size())); }

std::string RandomStatement::operand(int depth) {
  const unsigned kind = below(20);
  if (kind < 11) return property();
  if (kind < 14) return literal();
  if (depth == 0) return property();
  if (kind < 18) return operand(depth - 1) + pick(kArithmetic, below(kArithmetic.size())) + operand(depth - 1);
  if (kind == 18) return "-" + property();
  return "(" + comparison() + ")";
}

std::string RandomStatement::arrayComparison() {
  const Source& source = anySource();
  if (source.array == nullptr) return comparison();
  const std::string array = std::string(source.alias) + "." + source.array;
  switch (below(5)) {
    case 0:
      return array + "[" + std::to_string(below(3)) + "] = " + literal();
    case 1:
      return array + "[] = " + array + "[*]";
    case 2:
      return operand(0) + pick(kComparisons, below(6)) + (chance(50) ? "ANY " : "EVERY ") + array;
    default:
      return (chance(50) ? "ANY " : "EVERY ") + array + pick(kComparisons, below(6)) + operand(0);
  }
}

std::string RandomStatement::comparison() {
  const unsigned kind = below(28);
  if (kind < 2) return property() + (chance(50) ? " IS NULL" : " IS NOT NULL");
  if (kind == 2) return std::string(anySource().alias) + " ISA T_SolidDisk";
  if (kind == 3) return std::string(anySource().alias) + " IS NULL";
  if (kind == 4) return property();
  if (kind == 5) return "OBJECTPATH(" + std::string(anySource().alias) + ") < OBJECTPATH(" + anySource().alias + ")";
  if (kind == 6) return "INSTANCEOF(" + std::string(anySource().alias) + ") IS " + (chance(50) ? "NULL" : "NOT NULL");
  if (kind == 7) return std::string(anySource().alias) + (chance(50) ? " <> " : " < ") + anySource().alias;
  if (kind == 8) return "OBJECTPATH(" + std::string(anySource().alias) + ") *= " + property();
  return operand(1) + pick(kComparisons, below(kComparisons.size())) + operand(1);
}

// Two classes by properties of one type; over one class it is a comparison like any other.
std::string RandomStatement::join() {
  const Source& left = *_from.front();
  const Source& right = *_from.back();
  const bool isText = chance(50) && left.text != nullptr && right.text != nullptr;
  const std::string operation = pick(kComparisons, chance(60) ? 0 : below(kComparisons.size() - 1));
  return std::string(left.alias) + "." + (isText ? left.text : left.number) + operation + right.alias + "." +
         (isText ? right.text : right.number);
}

std::string RandomStatement::association() {
  // T_Seat ties instances of T_PoolMember; m and t are the aliases of both.
  constexpr std::array<const char*, 4> kNames = {"T_PoolMember", "m", "T_Seat", "t"};
  const std::string name = pick(kNames, below(kNames.size()));
  return name + (chance(30) ? " *= " : " = ") + anySource().alias + " AND " + name + " = " + anySource().alias;
}

std::string RandomStatement::condition() {
  std::string text;
  do {
    if (!text.empty()) text += chance(80) ? " AND " : " OR ";
    const unsigned kind = below(13);
    if (kind == 0 || kind == 12) {
      text += association();
    } else if (kind > 9) {
      text += join();
    } else {
      text += (chance(10) ? "NOT " : "") + (kind < 3 ? arrayComparison() : comparison());
    }
  } while (chance(45));
  return text;
}

std::string RandomStatement::entry(unsigned number) {
  const unsigned kind = below(14);
  const std::string alias = " AS Col" + std::to_string(number);
  if (kind == 0) return "*";
  if (kind == 1) return std::string(anySource().alias) + ".*";
  if (kind < 4) return operand(2) + alias;
  if (kind == 4) return comparison() + alias;
  if (kind == 5) return "OBJECTPATH(" + std::string(anySource().alias) + ")" + alias;
  if (kind == 6) return "INSTANCEOF(" + std::string(anySource().alias) + ")" + alias;
  return property();
}

std::string RandomStatement::aggregate(unsigned number) {
  const std::string name = pick(kAggregates, below(kAggregates.size()));
  const std::string argument = chance(10) ? std::string(anySource().alias) : operand(1);
  return name + "(" + argument + ")" + (chance(20) ? " * 2" : "") + " AS Agg" + std::to_string(number);
}

std::string RandomStatement::selectList() {
  const bool isAggregate = chance(12);
  std::string text = !isAggregate && chance(15) ? "FIRST " + std::to_string(below(4)) + " " : "";
  unsigned number = 0;
  do {
    if (number != 0) text += ", ";
    text += isAggregate ? aggregate(number) : entry(number);
    ++number;
  } while (chance(50));
  return text;
}

std::string RandomStatement::fromClause() const {
  std::string text;
  for (const Source* source : _from) {
    text += (text.empty() ? "" : ", ") + std::string(source->className) + " AS " + source->alias;
  }
  return text;
}

std::string RandomStatement::orderClause() {
  const std::string alias = anySource().alias;
  const std::array<std::string, 5> rare = {"Col0", "OBJECTPATH(" + alias + ")", "INSTANCEOF(" + alias + ")", alias,
                                           "(" + comparison() + ")"};
  const std::string key = chance(60) ? property() : chance(40) ? operand(1) : rare[below(rare.size())];
  return " ORDER BY " + key + (chance(50) ? " ASC" : " DESC");
}

std::string RandomStatement::next() {
  static const std::vector<Source> kSources = {
      {"T_Disk", "d", {"Name", "Slot", "Size", "Kind", "Vendor", "Spare", "Level"}, nullptr, "Slot", "Name"},
      {"T_Bay", "b", {"No", "Slot", "Room"}, nullptr, "Slot", "Room"},
      {"T_Pool", "p", {"Id", "Quota"}, nullptr, "Quota", "Id"},
      {"T_PoolMember", "m", {"Pool", "Member", "Rank"}, nullptr, "Rank", nullptr},
      {"T_Seat", "t", {"Seated", "Place", "Note"}, nullptr, "Note", nullptr},
      {"T_Empty", "e", {"Tag", "Slot"}, nullptr, "Slot", "Tag"},
      {"T_Box", "x", {"Name", "Top", "Codes"}, "Codes", "Top", "Name"},
      {"T_SolidDisk", "s", {"Name", "Slot", "Wear"}, nullptr, "Slot", "Name"},
      {"T_Disk", "again", {"Name", "Slot", "Kind"}, nullptr, "Slot", "Name"},  // with d, one class twice
      {"T_Bay", "T_Bay", {"No", "Room"}, nullptr, "No", "Room"},
      {"T_Pool", "values", {"Id", "Quota"}, nullptr, "Quota", "Id"},  // like the column of function results
      {"T_Filtered", "f", {"Name", "Size", "Note"}, nullptr, "Size", "Name"},
      {"T_Open", "d", {"Name", "Size"}, nullptr, "Size", "Name"}};  // with T_Disk, one alias twice
  _from.clear();
  unsigned chosen = 0;
  const unsigned count = 1 + below(3);
  while (_from.size() < count) {
    const unsigned index = below(static_cast<unsigned>(kSources.size()));
    if ((chosen & (1U << index)) == 0) _from.push_back(&kSources[index]);
    chosen |= 1U << index;
  }
  std::string text = "SELECT " + selectList() + " FROM " + fromClause();
  if (chance(85)) text += " WHERE " + condition();
  if (chance(30)) text += orderClause();
  return text;
}
