// A second name resolution, written from its rules, over small schemas.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_NAMEMODEL_H
#define QORQL_TESTS_NAMEMODEL_H

#include <map>
#include <set>
#include <string>

#include "ParserModel.h"

// The properties of each class, inherited ones included; all names in upper case.
using ModelSchema = std::map<std::string, std::set<std::string>>;

// Binds the names of a parsed statement and completes what it requests. THROWS ModelFault.
void resolveByModel(ModelStatement& statement, const ModelSchema& schema);

// The fault of a statement, or its clauses, tree and requests in a form to compare. EngineOutline prints the same. Puts
// into `output` what scanning writes to standard output.
std::string outlineByModel(const std::string& text, const ModelSchema& schema, std::string& output);

#endif
