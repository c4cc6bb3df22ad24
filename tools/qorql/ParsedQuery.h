// A statement from its text to the tree that the engine runs.
#ifndef QORQL_TOOL_PARSEDQUERY_H
#define QORQL_TOOL_PARSEDQUERY_H

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>

#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"

// Keeps the texts that the tree refers to.
class ParsedQuery {
 public:
  explicit ParsedQuery(const std::string& text) : _text(text.data(), text.size()) {}
  ParsedQuery(const ParsedQuery&) = delete;
  ParsedQuery& operator=(const ParsedQuery&) = delete;

  // What the scanner passes over comes out on `out` at once, in order with what
  // it prints by other ways. THROWS what the engine throws.
  void parse(const std::string& nameSpace, std::ostream& out);

  // REQUIRES that parse has succeeded.
  QORQL_Query& query() const { return *_query; }
  QORQL_SymbolTable& symbols() { return _symbols; }
  // Where in the text parsing stopped; empty unless it failed at a token.
  std::optional<std::size_t> faultOffset() const { return _faultOffset; }

 private:
  const QORString _text;
  const QORString _language = "DMTF:CQL";
  QORQL_SymbolTable _symbols{nullptr};
  QORSmrPtr<QORQL_Query> _query;
  std::optional<std::size_t> _faultOffset;
};

#endif
