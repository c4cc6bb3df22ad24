// Warnings where a statement does not mean what someone who knows SQL expects.
#include "SurpriseReport.h"

#include <ostream>

#include "Cimom/QORQL/QORQL_Surprises.h"
#include "DisplayText.h"

namespace {

constexpr std::size_t kLongest = 400;

}  // namespace

void printSurprises(std::ostream& out, const QORQL_Query& query, const std::string& nameSpace) {
  for (const QORQL_Surprise& surprise : QORQL_findSurprises(query, QORString(nameSpace))) {
    out << "qorql: warning: " << cutText(printableText(surprise.text), kLongest, "...") << " [" << surprise.rule
        << "]\n";
  }
}
