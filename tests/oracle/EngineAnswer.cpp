// The engine's answers over the worlds of World.h, and their comparison with the naive ones.
// SPDX-License-Identifier: Apache-2.0
#include "EngineAnswer.h"

#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr char kSortFailed[] = "Caught an exception while sorting the data.";
constexpr char kTypesDiffer[] = "Cannot compare ";

Answer readRows(const QORQL_Query& query, QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataTable>& table) {
  Answer answer;
  QORQL_ResultReader reader(query, symbols, table);
  while (reader.next()) {
    std::vector<std::string> row;
    for (std::size_t i = 0; i < reader.columns().size(); ++i) {
      const QORSmrPtr<IQoriValue> value = reader.value(i);
      row.push_back(value.IsNull() ? "-" : std::string(value->toString().view()));
    }
    answer.rows.push_back(row);
  }
  return answer;
}

}  // namespace

EngineStatement::EngineStatement(const Statement& statement) : _text(statement.toText()), _language("DMTF:CQL") {
  Universe::get();
  QORQL_Lexer lexer(_text, false);
  _query = QORQL_Query::parse(_symbols, lexer, false, _text, _language, kNameSpace).StaticCast<QORQL_Query>();
}

Answer EngineStatement::answer(const World& world, QORQL_DataTable::ExecutionMode mode) {
  Universe::get().setWorld(world);
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->setExecutionMode(mode);
  try {
    _query->execute(_symbols, table, nullptr, kNameSpace);
  } catch (const QORQL_Exception& error) {
    if (!(error.getMessage() == kSortFailed)) throw;
    return {Answer::Failure::Sort, {}};
  } catch (const QoriBaseException& error) {
    if (!error.getMessage().beginsWith(kTypesDiffer)) throw;
    return {Answer::Failure::Type, {}};
  }
  return readRows(*_query, _symbols, table);
}

testing::AssertionResult Judge::judge(const World& world) {
  const Answer expected = answerNaively(_statement, world);
  for (const auto mode : {QORQL_DataTable::kExecutionLazy, QORQL_DataTable::kExecutionPlain}) {
    const Answer got = _engine.answer(world, mode);
    if (got == expected) continue;
    return testing::AssertionFailure() << _statement.toText() << "\n"
                                       << describe(world) << "\nexpected\n"
                                       << expected.toText()
                                       << (mode == QORQL_DataTable::kExecutionLazy ? "lazy\n" : "plain\n")
                                       << got.toText();
  }
  return testing::AssertionSuccess();
}
