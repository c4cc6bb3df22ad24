// The error's fault says what is wrong and where; the text and the classes say
// what may have been meant.
// SPDX-License-Identifier: Apache-2.0
#include "QueryHint.h"

#include <algorithm>
#include <utility>

#include "Cimom/QORQL/CQLQueryFault.h"
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "Cimom/QORQL/QORQL_Fault.h"
#include "ClassFamily.h"
#include "StatementFault.h"
#include "cimom/CQoriProviderException.h"

namespace {

// Whether the place is in the key of ORDER BY, whose first word no other part of a statement has.
bool isOfSortKey(const StatementText& text, QORuint32 offset) {
  const auto isKeyword = [offset](const QORQL_TextPieces::Piece& piece) {
    return piece.kind == QORQL_TextPieces::Kind::Word && QORString::equalIgnoringCase(piece.text, "ORDER") &&
           piece.offset < offset;
  };
  return offset != QORQL_Fault::kNowhere && std::any_of(text.pieces().begin(), text.pieces().end(), isKeyword);
}

// The error already says that the class lacks the property, but for that of a sort, which names nothing.
std::string hintOfName(const StatementText& text, const StatementFault::Description& description) {
  return description.hasSuggestion || isOfSortKey(text, description.offset) ? description.text : std::string();
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
  if (holder.isEmpty()) return hintOfName(text, StatementFault(manager, nameSpace, text).describe(fault));
  const std::string below(holder.view());
  return std::string(fault.name.view()) + " is a property of " + below + ", which not every " +
         std::string(fault.className.view()) + " is: ask for it FROM " + below;
}

// A mistyped command is taken for a statement of one word.
std::string hintOfCommand(const StatementText& text, const std::vector<std::string>& commands) {
  if (text.pieces().size() != 1) return {};
  QORQL_Suggestion suggestion(text.pieces().front().text);
  for (const std::string& command : commands) suggestion.consider(command);
  return suggestion.best().empty() ? "" : "did you mean the command " + suggestion.best() + "?";
}

// What the schema tells of a name at fault.
QORQL_Hint hintOfSchema(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text,
                        const CQLQueryFault& fault) {
  if (fault.kind == CQLQueryFault::kProperty && !fault.className.isEmpty()) {
    return {"", hintOfMissing(manager, nameSpace, text, fault), fault.offset};
  }
  const StatementFault::Description description = StatementFault(manager, nameSpace, text).describe(fault);
  return {"", hintOfName(text, description), description.offset};
}

// What the manager lists.
QORQL_KnownNames knownNames(EmbeddedObjectManager& manager, const QORString& nameSpace) {
  QORQL_KnownNames names;
  names.nameSpace = nameSpace;
  names.classes = [&manager, nameSpace] { return manager.classNames(nameSpace); };
  names.properties = [&manager, nameSpace](const QORString& className) {
    std::vector<QORString> properties;
    for (CimPropertyDeclaration& property : manager.allProperties(nameSpace, className)) {
      properties.push_back(std::move(property.name));
    }
    return properties;
  };
  return names;
}

// The statement's words first, then what the schema tells of its names.
QORQL_Hint hintOf(const QoriBaseException& error, EmbeddedObjectManager& manager, const QORString& nameSpace,
                  const Statement& statement, const std::vector<std::string>& commands) {
  const StatementText text(statement.text, statement.firstLine, statement.firstColumn);
  const CQLQueryFault fault = CQLQueryFaultOf(error);
  QORQL_Hint hint = QORQL_hintOf(error, statement.text);
  if (hint.text.empty()) {
    hint = fault.kind == CQLQueryFault::kSyntax ? QORQL_hintOf(error, statement.text, knownNames(manager, nameSpace))
                                                : hintOfSchema(manager, nameSpace, text, fault);
  }
  const std::string command = hintOfCommand(text, commands);
  if (fault.kind == CQLQueryFault::kSyntax && !command.empty()) hint = {"", command, fault.offset};
  return hint;
}

}  // namespace

// Where a provider or a server failed the statement is not the cause; and one that fails when it is asked for names of
// classes leaves no hint.
QORQL_Hint hintOfFailure(EmbeddedObjectManager& manager, const std::string& nameSpace, const Statement& statement,
                         const std::vector<std::string>& commands) {
  try {
    throw;
  } catch (const CQoriProviderException&) {
    return {};
  } catch (const QoriBaseException& error) {
    try {
      return hintOf(error, manager, QORString(nameSpace), statement, commands);
    } catch (const CQoriProviderException&) {
      return {};
    }
  } catch (const std::exception&) {
    return {};
  }
}
