// The error's fault says what is wrong and where; the text and the classes say
// what may have been meant.
// SPDX-License-Identifier: Apache-2.0
#include "QueryHint.h"

#include <algorithm>

#include "Cimom/QORQL/CQLQueryFault.h"
#include "Cimom/QORQL/QORQL_Fault.h"
#include "ClassFamily.h"
#include "StatementFault.h"
#include "Suggestion.h"

namespace {

// Words of SQL, and what this language has in their place.
struct SqlWord {
  const char* word;
  const char* hint;
};
constexpr SqlWord kSqlWords[] = {
    {"LIMIT", "the first rows alone are asked for by SELECT FIRST n ..."},
    {"TOP", "the first rows alone are asked for by SELECT FIRST n ..."},
    {"DISTINCT", "there is no DISTINCT: every row is shown"},
    {"GROUP", "there is no GROUP BY: an aggregate is of all rows"},
    {"HAVING", "there is no HAVING: an aggregate is of all rows"},
    {"JOIN", "classes stand in FROM with commas between them; WHERE joins them, by values or through an association"},
    {"INNER", "classes stand in FROM with commas between them; WHERE joins them, by values or through an association"},
    {"LEFT", "an outer join is written in WHERE, as A.x *= B.y"},
    {"RIGHT", "an outer join is written in WHERE, as A.x =* B.y"},
    {"IN", "there is no IN: ask for one value after the other with ="},
    {"BETWEEN", "there is no BETWEEN: write x >= least AND x <= greatest"},
};

// The error already says that the class lacks the property.
std::string hintOfName(const StatementFault::Description& description) {
  return description.hasSuggestion ? description.text : std::string();
}

// Whether a name of FROM stands for more than one class.
bool isNameOfSeveral(const StatementText& text, std::string_view name) {
  const std::string first = text.classOf(name);
  const auto isOther = [&](const StatementText::Source& source) {
    const bool isNamed =
        QORString::equalIgnoringCase(source.className, name) || QORString::equalIgnoringCase(source.alias, name);
    return isNamed && !QORString::equalIgnoringCase(source.className, first);
  };
  return std::any_of(text.sources().begin(), text.sources().end(), isOther);
}

// An object of the class, which the fault names as the statement does, lacks the property.
std::string hintOfMissing(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text,
                          CQLQueryFault fault) {
  if (isNameOfSeveral(text, fault.className.view())) {
    return "in FROM " + std::string(fault.className.view()) + " names more than one class: give each a name of its own";
  }
  const std::string className = text.classOf(fault.className.view());
  if (!className.empty()) fault.className = QORString(className);
  const QORString holder = ClassFamily(manager, nameSpace).holderOf(fault.className, fault.name);
  if (holder.isEmpty()) return hintOfName(StatementFault(manager, nameSpace, text).describe(fault));
  const std::string below(holder.view());
  return std::string(fault.name.view()) + " is a property of " + below + ", which not every " +
         std::string(fault.className.view()) + " is: ask for it FROM " + below;
}

// A number that is compared with a text, or the other way round.
std::string hintOfComparison(const QORQL_Fault* fault) {
  const bool isMixed = fault != nullptr && fault->kind == QORQL_Fault::kValuesIncomparable &&
                       (fault->type.beginsWith("string") || fault->otherType.beginsWith("string"));
  return isMixed ? "texts are compared with texts in single quotes, numbers with numbers" : "";
}

// "root" where 'root' is meant.
std::string hintOfQuote(const StatementText& text, std::size_t offset) {
  const std::string_view rest = text.text().substr(std::min(offset, text.text().size()));
  const std::size_t close = rest.empty() || rest.front() != '"' ? std::string_view::npos : rest.find('"', 1);
  if (close == std::string_view::npos) return {};
  return "texts stand in single quotes: '" + std::string(rest.substr(1, close - 1)) + "'";
}

// A word or sign of SQL at the place where parsing stopped.
std::string hintOfSql(const StatementText& text, std::size_t offset) {
  const auto& pieces = text.pieces();
  std::size_t at = 0;
  while (at < pieces.size() && pieces[at].offset < offset) ++at;
  for (const SqlWord& known : kSqlWords) {
    if (text.is(at, known.word)) return known.hint;
  }
  if (at >= 2 && text.is(at, "*") && text.is(at - 1, "(")) return "an aggregate is of a property, as in COUNT(Name)";
  const auto isClassBefore = [&](const StatementText::Source& source) {
    return at > 0 && text.isWord(at) && source.offset == pieces[at - 1].offset;
  };
  if (std::none_of(text.sources().begin(), text.sources().end(), isClassBefore)) return {};
  return "an alias stands behind AS: " + std::string(pieces[at - 1].text) + " AS " + std::string(pieces[at].text);
}

// One half of an association: either paths should be compared, or the other half is missing.
std::string hintOfAssociation(const StatementText& text, const QORQL_Fault& fault) {
  if (fault.kind != QORQL_Fault::kHalfAssociation) return {};
  bool comparesPaths = false;
  for (std::size_t i = text.behindFrom(); i < text.pieces().size(); ++i) {
    comparesPaths = comparesPaths || text.is(i, "OBJECTPATH");
  }
  return comparesPaths
             ? "OBJECTPATH(a) = OBJECTPATH(b) is read as half an association: compare the keys, as in a.Name = b.Name"
             : "an association is written with both its ends side by side: Link = a AND Link = b";
}

// A mistyped command is taken for a statement of one word.
std::string hintOfCommand(const StatementText& text, const std::vector<std::string>& commands) {
  if (text.pieces().size() != 1) return {};
  Suggestion suggestion(text.pieces().front().text);
  for (const std::string& command : commands) suggestion.consider(command);
  return suggestion.best().empty() ? "" : "did you mean the command " + suggestion.best() + "?";
}

}  // namespace

std::string hintOfFailure(EmbeddedObjectManager& manager, const std::string& nameSpace, const Statement& statement,
                          const std::vector<std::string>& commands) {
  const StatementText text(statement.text, statement.firstLine, statement.firstColumn);
  try {
    throw;
  } catch (const QoriBaseException& error) {
    const CQLQueryFault fault = CQLQueryFaultOf(error);
    if (fault.kind != CQLQueryFault::kSyntax) {
      const QORString space(nameSpace);
      if (fault.kind == CQLQueryFault::kProperty && !fault.className.isEmpty())
        return hintOfMissing(manager, space, text, fault);
      const std::string hint = hintOfName(StatementFault(manager, space, text).describe(fault));
      return hint.empty() ? hintOfComparison(QORQL_faultOf(error)) : hint;
    }
    for (const std::string& hint : {hintOfQuote(text, fault.offset), hintOfSql(text, fault.offset),
                                    hintOfAssociation(text, *QORQL_faultOf(error))}) {
      if (!hint.empty()) return hint;
    }
    return hintOfCommand(text, commands);
  } catch (const std::exception&) {
    return {};
  }
}
