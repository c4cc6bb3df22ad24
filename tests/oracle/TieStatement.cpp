// Statements by chance, and their text.
// SPDX-License-Identifier: Apache-2.0
#include "TieStatement.h"

#include <algorithm>

namespace {

using Kind = TieOperand::Kind;
using Op = TieCondition::Operator;

std::string nameOf(int which) { return kTieModel[static_cast<std::size_t>(which)].name; }

const char* textOf(Op op) {
  constexpr const char* kTexts[] = {" = ", " <> ", " < ", " >= ", " *= ", " =* ", " *=* ", " IS NULL", " IS NOT NULL"};
  return kTexts[static_cast<std::size_t>(op)];
}

template <class Items, class Text>
std::string join(const Items& items, const char* separator, Text text) {
  std::string joined;
  for (const auto& item : items) joined += (joined.empty() ? "" : separator) + text(item);
  return joined;
}

class Dice {
 public:
  Dice(std::mt19937& random, const TieWorld& world, std::vector<int> from)
      : _random(random), _world(world), _from(std::move(from)) {}

  unsigned below(unsigned bound) { return static_cast<unsigned>(_random() % bound); }
  bool chance(unsigned percent) { return below(100) < percent; }
  int anyClass() { return _from[below(static_cast<unsigned>(_from.size()))]; }

  TieOperand property() { return {chance(60) ? Kind::Id : Kind::Number, anyClass(), 0, {}}; }
  TieCondition condition() { return chance(65) ? association() : comparison(); }

 private:
  // Mostly the ends that the class has, in either order.
  TieCondition association() {
    TieCondition one;
    std::vector<int> ties;
    std::copy_if(_from.begin(), _from.end(), std::back_inserter(ties), isTie);
    one.association = ties.empty() || chance(15) ? static_cast<int>(below(kTieClasses))
                                                 : ties[below(static_cast<unsigned>(ties.size()))];
    const auto& ends = kTieModel[static_cast<std::size_t>(one.association)].endClasses;
    const bool isTurned = chance(50);
    one.source = endOr(ends[isTurned ? 1 : 0], one.association);
    one.destination = endOr(ends[isTurned ? 0 : 1], one.association);
    one.isOuter = chance(40);
    return one;
  }
  int endOr(int end, int association) {
    const bool isThere = std::find(_from.begin(), _from.end(), end) != _from.end();
    return isThere && isTie(association) && chance(92) ? end : anyClass();
  }

  TieCondition comparison() {
    TieCondition one;
    one.isNegated = chance(10);
    one.op = chance(30) ? Op::NotEqual : static_cast<Op>(below(7));
    switch (below(6)) {
      case 0:
        one.left = {chance(50) ? Kind::Object : Kind::Number, anyClass(), 0, {}};
        one.op = chance(60) ? Op::IsNotNull : Op::IsNull;
        break;
      case 1:
        one.left = path();
        one.right = pathOrText(one.left.kind == Kind::Path);
        if (chance(30)) std::swap(one.left, one.right);
        break;
      case 2:
        one.left = {Kind::Quotient, anyClass(), static_cast<int>(below(5)), {}};
        one.right = {Kind::NumberLiteral, -1, static_cast<int>(below(7)), {}};
        one.op = chance(50) ? Op::NotEqual : Op::GreaterEqual;
        break;
      default: {
        const Kind kind = chance(50) ? Kind::Id : Kind::Number;
        one.left = {kind, anyClass(), 0, {}};
        one.right = {kind, anyClass(), 0, {}};
        if (chance(35)) one.right = literal(kind);
      }
    }
    return one;
  }
  TieOperand literal(Kind kind) {
    const int number = static_cast<int>(below(3));
    return kind == Kind::Id ? TieOperand{Kind::TextLiteral, -1, 0, std::to_string(number)}
                            : TieOperand{Kind::NumberLiteral, -1, number, {}};
  }
  TieOperand path() {
    const int which = anyClass();
    if (!isTie(which) || chance(20)) return {Kind::Path, which, 0, {}};
    return {chance(50) ? Kind::FirstEnd : Kind::SecondEnd, which, 0, {}};
  }
  // Two paths of whole objects would be read as an association.
  TieOperand pathOrText(bool isText) {
    if (!isText && chance(70)) return {Kind::Path, anyClass(), 0, {}};
    const auto& objects = _world.of(static_cast<int>(below(kTieClasses)));
    const unsigned count = static_cast<unsigned>(objects.size());
    return {Kind::TextLiteral, -1, 0, count == 0 ? "root/cimv2:A.Id=\"\"" : objects[below(count)].path()};
  }

  std::mt19937& _random;
  const TieWorld& _world;
  std::vector<int> _from;
};

}  // namespace

std::string TieOperand::toText() const {
  const std::string name = which < 0 ? std::string() : nameOf(which);
  switch (kind) {
    case Kind::Id:
      return name + ".Id";
    case Kind::Number:
      return name + ".N";
    case Kind::Path:
      return "OBJECTPATH(" + name + ")";
    case Kind::FirstEnd:
      return name + "." + kTieModel[static_cast<std::size_t>(which)].ends[0];
    case Kind::SecondEnd:
      return name + "." + kTieModel[static_cast<std::size_t>(which)].ends[1];
    case Kind::Object:
      return name;
    case Kind::Quotient:
      return "6 / (" + name + ".N - " + std::to_string(number) + ")";
    case Kind::NumberLiteral:
      return std::to_string(number);
    case Kind::TextLiteral:
      return "'" + text + "'";
  }
  return {};
}

std::string TieCondition::toText() const {
  if (isAssociation()) {
    const std::string name = nameOf(association);
    return name + (isOuter ? " *= " : " = ") + nameOf(source) + " AND " + name + " = " + nameOf(destination);
  }
  const bool isUnary = op == Operator::IsNull || op == Operator::IsNotNull;
  return (isNegated ? "NOT " : "") + left.toText() + textOf(op) + (isUnary ? std::string() : right.toText());
}

std::string TieStatement::toText() const {
  const auto text = [](const auto& one) { return one.toText(); };
  const auto chain = [&](const std::vector<TieCondition>& conditions) { return join(conditions, " AND ", text); };
  std::string result = "SELECT " + join(select, ", ", text) + " FROM " + join(from, ", ", nameOf);
  if (!where.empty()) result += " WHERE " + join(where, " OR ", chain);
  if (order) result += " ORDER BY " + order->toText() + (isAscending ? " ASC" : " DESC");
  return result;
}

TieStatement randomTieStatement(std::mt19937& random, const TieWorld& world) {
  TieStatement statement;
  statement.from = {0, 1, 2, 3, 4, 5};
  for (std::size_t i = statement.from.size(); i > 1; --i)
    std::swap(statement.from[i - 1], statement.from[random() % i]);
  statement.from.resize(2 + random() % 4);
  Dice dice(random, world, statement.from);
  do {
    statement.select.push_back(dice.property());
  } while (dice.chance(70));
  const unsigned operands = dice.chance(70) ? 1 : 2 + dice.below(2);
  for (unsigned i = 0; i < operands; ++i) {
    statement.where.emplace_back();
    do {
      statement.where.back().push_back(dice.condition());
    } while (dice.chance(60) && statement.where.back().size() < 5);
  }
  if (dice.chance(30)) statement.order = dice.property();
  statement.isAscending = dice.chance(50);
  return statement;
}
