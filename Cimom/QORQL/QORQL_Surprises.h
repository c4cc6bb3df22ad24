// Where a statement does not mean what someone who knows SQL expects.
#ifndef QORQL_SURPRISES_H
#define QORQL_SURPRISES_H

#include <string>
#include <vector>

#include "cmpbase.h"

class QORQL_Query;

struct QORQL_Surprise {
  const char* rule;  // of the language reference, such as "WHERE-3"
  std::string text;  // what the statement means, and what to write instead
};

// Each kind once, in the order of the rules below: OR, LIKE, ANY and EVERY on
// the left, `a - b - c`, AVG beside other aggregates, `SELECT *, x`, a class
// twice in FROM, the extra rows of left joins. REQUIRES a parsed query.
std::vector<QORQL_Surprise> QORQL_findSurprises(const QORQL_Query& query, const QORString& nameSpace);

#endif
