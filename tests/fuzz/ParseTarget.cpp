// Fuzz target: parsing and resolving. A text gives a tree or a stated error,
// the same each time, and the tree can be walked and freed.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_FromClause.h"
#include "Cimom/QORQL/QORQL_IdentifierFinder.h"
#include "Cimom/QORQL/QORQL_OrderByClause.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "Cimom/QORQL/QORQL_WhereClause.h"
#include "FuzzQueries.h"

namespace {

// Everything that a tree says about itself.
std::string describe(const QORQL_Query& query) {
  const auto& from = dynamic_cast<const QORQL_FromClause&>(*query.getFromClause());
  const auto& list = dynamic_cast<const QORQL_SelectList&>(*query.getSelectList());
  std::string text = std::to_string(list.getSelectedEntries()->entries()) + " of";
  QORValSlistIterator<QORSmrPtr<QORQL_FromSpecifier>> specifiers(*from.getFromSpecifierList());
  while (++specifiers) {
    text +=
        " " + QueryRun::textOf(specifiers.key()->getTableName()) + "/" + QueryRun::textOf(specifiers.key()->getAlias());
  }
  if (!query.getWhereClause().IsNull()) {
    QORQL_IdentifierFinder* const finder = new QORQL_IdentifierFinder;
    QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
    dynamic_cast<const QORQL_WhereClause&>(*query.getWhereClause()).getExpression()->accept(visitor);
    text += " where " + std::to_string(finder->getFactorCount());
  }
  if (!query.getOrderByClause().IsNull()) text += " ordered";
  return text;
}

std::string outcomeOf(const QORString& text) {
  try {
    QORQL_SymbolTable symbols(nullptr);
    QORQL_Lexer lexer(text, false);
    const QORSmrPtr<QORQL_Executable> parsed(
        QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", EmbeddedObjectManager::kDefaultNamespace));
    return describe(dynamic_cast<const QORQL_Query&>(*parsed));
  } catch (const QORQL_ParseException& error) {
    fuzzRequire(!error.getMessage().isEmpty(), "a parse error has a message");
    return "parse " + std::to_string(error.getCode()) + " " + std::to_string(error.getLineNr()) + " " +
           QueryRun::textOf(error.getMessage());
  } catch (const QORQL_Exception& error) {
    fuzzRequire(!error.getMessage().isEmpty(), "an error has a message");
    return "runtime " + std::to_string(error.getCode()) + " " + QueryRun::textOf(error.getMessage());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static QueryRun world(fuzzModel());
  const QORString text(reinterpret_cast<const char*>(data), size);
  const std::string first = outcomeOf(text);
  const std::string second = outcomeOf(text);
  fuzzRequire(first == second, "parsed twice, first: " + first + "\nthen: " + second);
  return 0;
}
