// The engine's message names what is wrong; the text and the classes say what
// may have been meant.
#include "QueryHint.h"

#include "Cimom/QORQL/QORQL_Messages.h"
#include "Command.h"
#include "FilterFault.h"
#include "Suggestion.h"

namespace {

constexpr const char* kSymbolUnknown = "Unable to locate the symbol for '%s'";

CQLQueryFault faultOf(const QORString& message) {
  CQLQueryFault fault;
  if (QORQL_isMessage(QORQL_Messages::kPropertyUnknown.text, message, fault.name)) {
    fault.kind = CQLQueryFault::kProperty;
  } else if (QORQL_isMessage(QORQL_Messages::kPropertyAmbiguous.text, message, fault.name)) {
    fault.kind = CQLQueryFault::kAmbiguous;
  } else if (QORQL_isMessage(kSymbolUnknown, message, fault.name)) {
    fault.kind = CQLQueryFault::kQualifier;
  } else {
    fault.kind = CQLQueryFault::kOther;
  }
  return fault;
}

// That a class lacks a property is what the error says already.
std::string hintOfName(const std::string& description) {
  const bool isKnown = description.find(" is no property of ") != std::string::npos;
  return isKnown && description.find("did you mean") == std::string::npos ? std::string() : description;
}

// "root" where 'root' is meant.
std::string hintOfQuote(const FilterText& text, std::size_t offset) {
  const std::string_view rest = text.text().substr(std::min(offset, text.text().size()));
  const std::size_t close = rest.empty() || rest.front() != '"' ? std::string_view::npos : rest.find('"', 1);
  if (close == std::string_view::npos) return {};
  return "texts stand in single quotes: '" + std::string(rest.substr(1, close - 1)) + "'";
}

// Who mistypes a command has it taken for a query.
std::string hintOfCommand(const FilterText& text) {
  if (text.pieces().size() != 1) return {};
  Suggestion suggestion(text.pieces().front().text);
  for (const Command& command : allCommands()) suggestion.consider(command.name);
  return suggestion.best().empty() ? "" : "did you mean the command " + suggestion.best() + "?";
}

}  // namespace

std::string hintOfFailure(EmbeddedObjectManager& manager, const std::string& nameSpace, const Statement& statement,
                          std::optional<std::size_t> faultOffset) {
  const FilterText text(statement.text, statement.firstLine);
  try {
    throw;
  } catch (const QoriBaseException& error) {
    const CQLQueryFault fault = faultOf(error.getMessage());
    const bool isSyntax = faultOffset.has_value() && fault.kind == CQLQueryFault::kOther;
    if (!isSyntax) return hintOfName(FilterFault(manager, QORString(nameSpace), text).describe(fault));
    const std::string quote = hintOfQuote(text, *faultOffset);
    return quote.empty() ? hintOfCommand(text) : quote;
  } catch (const std::exception&) {
    return {};
  }
}
