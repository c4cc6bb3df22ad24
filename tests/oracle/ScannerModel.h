// A second scanner, written from the lexical rules: each rule is a regular expression, and the longest match counts.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_SCANNERMODEL_H
#define QORQL_TESTS_SCANNERMODEL_H

#include <string>
#include <vector>

struct ModelToken {
  int type;
  std::string text;
  unsigned line;       // where the scanner stands behind it
  std::size_t output;  // how much has been written to standard output until then
  friend bool operator==(const ModelToken&, const ModelToken&) = default;
};

struct ModelScan {
  std::vector<ModelToken> tokens;  // the end is the last one
  std::string output;              // what the scanner writes to standard output
};

ModelScan scanByModel(const std::string& text);

#endif
