// Warnings where a statement does not mean what someone who knows SQL expects.
#include "SurpriseReport.h"

#include <iostream>
#include <utility>

#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "ClassFamily.h"
#include "DisplayText.h"
#include "ParsedQuery.h"
#include "StatementText.h"
#include "UnknownProperties.h"

namespace {

constexpr std::size_t kLongest = 400;

// A star after SELECT, FIRST n or a comma stands for all columns; between two operands it multiplies.
bool isBareStar(const StatementText& text, std::size_t piece) {
  if (!text.is(piece, "*") || piece == 0) return false;
  if (text.is(piece - 1, "SELECT") || text.is(piece - 1, ",")) return true;
  return piece >= 2 && text.pieces()[piece - 1].kind == StatementText::Kind::Number && text.is(piece - 2, "FIRST");
}

std::string meantClass(EmbeddedObjectManager& manager, const std::string& nameSpace, const std::string& name) {
  if (name.empty()) return {};
  const std::string nearest = ClassFamily(manager, QORString(nameSpace)).nearestClass(name);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace

std::vector<std::string> findWarnings(EmbeddedObjectManager& manager, const std::string& nameSpace,
                                      ParsedQuery& parsed) {
  std::vector<std::string> warnings;
  for (const QORQL_Surprise& surprise : QORQL_findSurprises(parsed.query(), QORString(nameSpace))) {
    warnings.push_back(cutText(printableText(surprise.text), kLongest, "...") +
                       meantClass(manager, nameSpace, surprise.unknownClass) + " [" + surprise.rule + "]");
  }
  for (std::string& warning : findUnknownProperties(manager, QORString(nameSpace), parsed)) {
    warnings.push_back(std::move(warning));
  }
  return warnings;
}

std::string emptyRowsWarning(const std::string& statement) {
  const StatementText text(statement);
  for (std::size_t i = 0; i < text.fromPiece(); ++i) {
    if (isBareStar(text, i)) return "In XML the rows of * are empty: name the columns [SEL-5]";
  }
  return {};
}

void printWarnings(std::ostream& out, const std::vector<std::string>& warnings) {
  for (const std::string& warning : warnings) out << "qorql: warning: " << warning << '\n';
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
