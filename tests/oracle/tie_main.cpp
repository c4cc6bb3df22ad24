// Random statements with associations, the engine in both modes against the
// simulator: tie_statements WORLDS STATEMENTS SEED. All must be alike.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <map>

#include "ChanceMain.h"
#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "TieSimulator.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr unsigned long kGreatestFailures = 5;

std::string rowsOf(const QORQL_Query& query, QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataTable>& table) {
  std::string text;
  QORQL_ResultReader reader(query, symbols, table);
  while (reader.next()) {
    for (std::size_t i = 0; i < reader.columns().size(); ++i) {
      const QORSmrPtr<IQoriValue> value = reader.value(i);
      text += (value.IsNull() ? std::string("-") : std::string(value->toString().view())) + " ";
    }
    text += "\n";
  }
  return text;
}

std::string answer(const std::string& query, QORQL_DataTable::ExecutionMode mode) {
  const QORString text(query);
  QORQL_SymbolTable symbols(nullptr);
  try {
    QORQL_Lexer lexer(text, false);
    const auto parsed =
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", kNameSpace).StaticCast<QORQL_Query>();
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    table->setExecutionMode(mode);
    parsed->execute(symbols, table, nullptr, kNameSpace);
    return rowsOf(*parsed, symbols, table);
  } catch (const QoriBaseException& error) {
    return std::string(error.getMessage().view());
  }
}

struct Tally {
  std::map<std::string, unsigned long> outcomes;
  unsigned long statements = 0;
  unsigned long failures = 0;

  void add(const TieStatement& statement, const std::string& expected) {
    ++statements;
    const bool hasRows = expected.ends_with('\n');
    ++outcomes[expected.empty() ? "without rows" : hasRows ? "with rows" : expected];
    const bool isOr = statement.where.size() > 1;
    if (hasRows && isOr) ++outcomes["with rows, OR"];
  }
  void print() const {
    for (const auto& [outcome, count] : outcomes) std::cout << count << "\t" << outcome << "\n";
    std::cout << failures << " of " << statements << " statements differ\n";
  }
};

void judge(const TieStatement& statement, const TieWorld& world, Tally& tally) {
  const std::string query = statement.toText();
  const std::string expected = simulate(statement, world);
  tally.add(statement, expected);
  for (const auto mode : {QORQL_DataTable::kExecutionPlain, QORQL_DataTable::kExecutionLazy}) {
    const std::string got = answer(query, mode);
    if (got == expected) continue;
    std::cout << world.toMof() << query << "\nexpected\n"
              << expected << (mode == QORQL_DataTable::kExecutionLazy ? "\nlazy\n" : "\nplain\n") << got << "\n";
    ++tally.failures;
    return;
  }
}

int run(unsigned long worlds, unsigned long statements, std::uint32_t seed) {
  std::mt19937 random(seed);
  Tally tally;
  for (unsigned long i = 0; i < worlds; ++i) {
    const TieWorld world(random);
    EmbeddedObjectManager manager;
    manager.makeCurrent();
    MofLoader(manager.sink(), kNameSpace).loadText(world.toMof(), "world");
    for (unsigned long j = 0; j < statements && tally.failures < kGreatestFailures; ++j) {
      judge(randomTieStatement(random, world), world, tally);
    }
  }
  tally.print();
  const unsigned long rows = tally.outcomes["with rows"];
  const bool isTelling = rows > tally.statements / 5 && tally.outcomes["with rows, OR"] > 0;
  return tally.failures == 0 && isTelling ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  return mainByChance(count, arguments, "tie_statements WORLDS STATEMENTS SEED", run);
}
