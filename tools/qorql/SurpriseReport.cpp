// Warnings where a statement does not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#include "SurpriseReport.h"

#include <iostream>
#include <utility>

#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_SelectList.h"
#include "ClassFamily.h"
#include "DisplayText.h"
#include "ParsedQuery.h"
#include "QueryText.h"
#include "UnknownProperties.h"

namespace {

constexpr std::size_t kLongestSurprise = 400;

std::string meantClass(EmbeddedObjectManager& manager, const std::string& nameSpace, const std::string& name) {
  if (name.empty()) return {};
  const std::string nearest = ClassFamily(manager, QORString(nameSpace)).nearestClass(name);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace

std::vector<Warning> findWarnings(EmbeddedObjectManager& manager, const std::string& nameSpace, ParsedQuery& parsed) {
  std::vector<Warning> warnings;
  for (const QORQL_Surprise& surprise : QORQL_findSurprises(parsed.query(), QORString(nameSpace))) {
    warnings.push_back({cutText(printableText(surprise.text), kLongestSurprise, "...") +
                            meantClass(manager, nameSpace, surprise.unknownClass) + " [" + surprise.rule + "]",
                        surprise.offset});
  }
  for (Warning& warning : findUnknownProperties(manager, QORString(nameSpace), parsed)) {
    warnings.push_back(std::move(warning));
  }
  return warnings;
}

std::optional<Warning> findEmptyRows(const ParsedQuery& parsed) {
  const auto& list = dynamic_cast<const QORQL_SelectList&>(*parsed.query().getSelectList());
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (!entries.key()->isSelectAll()) continue;
    return Warning{"In XML the rows of * are empty: name the columns [SEL-5]", entries.key()->getOffset()};
  }
  return std::nullopt;
}

void printWarnings(std::ostream& out, const std::vector<std::string>& warnings) {
  for (const std::string& warning : warnings) out << "qorql: warning: " << warning << '\n';
}

void printWarnings(std::ostream& out, const TerminalShape& terminal, const Statement& statement,
                   const std::vector<Warning>& warnings) {
  for (const Warning& warning : warnings) {
    out << "qorql: warning: " << warning.text << '\n' << caretOf(warning, terminal, statement);
  }
}

std::string caretOf(const Warning& warning, const TerminalShape& terminal, const Statement& statement) {
  const bool isShown = terminal.isTerminal && warning.offset;
  return isShown ? lineWithCaret(statement.text, *warning.offset, terminal.width) : std::string();
}

void parseWithWarnings(ParsedQuery& parsed, const std::string& nameSpace, bool isQuiet) {
  const auto tell = [&] {
    if (!isQuiet) printWarnings(std::cerr, parsed.passedOver());
  };
  try {
    parsed.parse(nameSpace);
  } catch (...) {
    tell();
    throw;
  }
  tell();
}
