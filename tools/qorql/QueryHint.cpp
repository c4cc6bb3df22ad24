// The engine's message names what is wrong; the text and the classes say what
// may have been meant.
#include "QueryHint.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_Messages.h"
#include "ClassFamily.h"
#include "FilterFault.h"
#include "Suggestion.h"

namespace {

// About a row's object; the argument in place of %s contains the class as well.
constexpr const char* kPropertyMissing = "A non-existent property - '%s'";
constexpr std::string_view kOfClass = "' was requested from class - '";

constexpr const char* kSymbolUnknown = "Unable to locate the symbol for '%s'";

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

CQLQueryFault faultOf(const QORString& message) {
  CQLQueryFault fault;
  if (QORQL_isMessage(QORQL_Messages::kPropertyUnknown.text, message, fault.name)) {
    fault.kind = CQLQueryFault::kProperty;
  } else if (QORQL_isMessage(QORQL_Messages::kPropertyAmbiguous.text, message, fault.name)) {
    fault.kind = CQLQueryFault::kAmbiguous;
  } else if (QORQL_isMessage(kSymbolUnknown, message, fault.name) ||
             QORQL_isMessage(QORQL_Messages::kSymbolInvalid.text, message, fault.name)) {
    fault.kind = CQLQueryFault::kQualifier;
  } else {
    fault.kind = CQLQueryFault::kOther;
  }
  return fault;
}

// The property that an object lacks, and the class as the statement names it; null for other messages.
struct MissingProperty {
  QORString name;
  QORString qualifier;
};
std::optional<MissingProperty> missingPropertyOf(const QORString& message) {
  QORString rest;
  if (!QORQL_isMessage(kPropertyMissing, message, rest)) return std::nullopt;
  const std::size_t place = rest.view().find(kOfClass);
  if (place == std::string_view::npos) return std::nullopt;
  return MissingProperty{QORString(rest.view().substr(0, place)),
                         QORString(rest.view().substr(place + kOfClass.size()))};
}

// The error already says that the class lacks the property.
std::string hintOfName(const std::string& description) {
  const bool isKnown = description.find(" is no property of ") != std::string::npos;
  return isKnown && description.find("did you mean") == std::string::npos ? std::string() : description;
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

std::string hintOfMissing(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text,
                          const MissingProperty& missing) {
  if (isNameOfSeveral(text, missing.qualifier.view())) {
    return "in FROM " + std::string(missing.qualifier.view()) +
           " names more than one class: give each a name of its own";
  }
  CQLQueryFault fault;
  fault.kind = CQLQueryFault::kProperty;
  fault.name = missing.name;
  const std::string className = text.classOf(missing.qualifier.view());
  fault.className = className.empty() ? missing.qualifier : QORString(className);
  const QORString holder = ClassFamily(manager, nameSpace).holderOf(fault.className, missing.name);
  if (holder.isEmpty()) return hintOfName(FilterFault(manager, nameSpace, text).describe(fault));
  const std::string below(holder.view());
  return std::string(missing.name.view()) + " is a property of " + below + ", which not every " +
         std::string(fault.className.view()) + " is: ask for it FROM " + below;
}

// A number that is compared with a text, or the other way round.
std::string hintOfComparison(const QORString& message) {
  constexpr std::string_view kHead = "Cannot compare ";
  const std::string_view text = message.view();
  const bool isMixed = text.starts_with(kHead) && text.find("string") != std::string_view::npos;
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
std::string hintOfAssociation(const StatementText& text, const QORString& message) {
  const bool isHalf = message.view() == QORQL_Messages::kAssociationAndExpected.text ||
                      message.view() == QORQL_Messages::kAssociationInvalid.text;
  if (!isHalf) return {};
  const bool comparesPaths = text.findWord("OBJECTPATH") != StatementText::kNowhere;
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
                          std::optional<std::size_t> faultOffset, const std::vector<std::string>& commands) {
  const StatementText text(statement.text, statement.firstLine, statement.firstColumn);
  try {
    throw;
  } catch (const QoriBaseException& error) {
    if (const std::optional<MissingProperty> missing = missingPropertyOf(error.getMessage()); missing.has_value()) {
      return hintOfMissing(manager, QORString(nameSpace), text, *missing);
    }
    const CQLQueryFault fault = faultOf(error.getMessage());
    const bool isSyntax = faultOffset.has_value() && fault.kind == CQLQueryFault::kOther;
    if (!isSyntax) {
      const std::string hint = hintOfName(FilterFault(manager, QORString(nameSpace), text).describe(fault));
      return hint.empty() ? hintOfComparison(error.getMessage()) : hint;
    }
    for (const std::string& hint : {hintOfQuote(text, *faultOffset), hintOfSql(text, *faultOffset),
                                    hintOfAssociation(text, error.getMessage())}) {
      if (!hint.empty()) return hint;
    }
    return hintOfCommand(text, commands);
  } catch (const std::exception&) {
    return {};
  }
}
