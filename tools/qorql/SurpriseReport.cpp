// Warnings where a statement does not mean what someone who knows SQL expects.
#include "SurpriseReport.h"

#include <ostream>

#include "Cimom/QORQL/QORQL_Surprises.h"
#include "ClassFamily.h"
#include "DisplayText.h"
#include "FilterText.h"

namespace {

constexpr std::size_t kLongest = 400;

// Behind SELECT, FIRST n or a comma; between two operands it multiplies.
bool isBareStar(const FilterText& text, std::size_t piece) {
  if (!text.is(piece, "*") || piece == 0) return false;
  if (text.is(piece - 1, "SELECT") || text.is(piece - 1, ",")) return true;
  return piece >= 2 && text.pieces()[piece - 1].kind == FilterText::Kind::Number && text.is(piece - 2, "FIRST");
}

std::string meantClass(EmbeddedObjectManager& manager, const std::string& nameSpace, const std::string& name) {
  if (name.empty()) return {};
  const std::string nearest = ClassFamily(manager, QORString(nameSpace)).nearestClass(name);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace

void printSurprises(std::ostream& out, EmbeddedObjectManager& manager, const QORQL_Query& query,
                    const std::string& nameSpace) {
  for (const QORQL_Surprise& surprise : QORQL_findSurprises(query, QORString(nameSpace))) {
    out << "qorql: warning: " << cutText(printableText(surprise.text), kLongest, "...")
        << meantClass(manager, nameSpace, surprise.unknownClass) << " [" << surprise.rule << "]\n";
  }
}

void printEmptyRows(std::ostream& out, const std::string& statement) {
  const FilterText text(statement);
  for (std::size_t i = 0; i < text.fromPiece(); ++i) {
    if (!isBareStar(text, i)) continue;
    out << "qorql: warning: In XML the rows of * are empty: name the columns [SEL-5]\n";
    return;
  }
}
