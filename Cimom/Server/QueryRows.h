// The result of a client's query as INSTANCE elements, one for each row.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUERYROWS_H
#define QORQL_SERVER_QUERYROWS_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/CimXml/CimXmlColumn.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerOperations.h"
#include "qorql.h"

// Rows are written from the engine's result one by one, as instances whose properties are the columns, in their order,
// each of one type in all rows. Their class is that of the one object whose properties the columns are, by
// their names, else "QueryResult". One thread at a time.
class QueryRows {
 public:
  static constexpr const char* kResultClass = "QueryResult";

  // THROWS CimStatusException 14 when nobody knows it.
  static void requireLanguage(const QORString& language);

  // What the engine says of a text that it refuses, with the place of the word at fault.
  static std::string messageOf(const QoriBaseException& error, const QORString& text);

  // Runs the statement, and looks for what can fail later. THROWS CimStatusException: a language that is unknown 14; a
  // text that the engine refuses 15, with its message; a query that takes too long, or too much memory, 27; what fails
  // otherwise 1. What providers throw passes through.
  QueryRows(const ServerCall& call, const QORString& language, const QORString& text, const ServerLimits& limits);
  QueryRows(const QueryRows&) = delete;
  QueryRows& operator=(const QueryRows&) = delete;
  ~QueryRows();

  // Whether there is another row.
  bool hasNext() const noexcept { return _hasRow; }
  // Appends its INSTANCE, and goes on to the next one. REQUIRES that there is one.
  void writeNext(std::string& out);
  // About what the rows that are held take, at most.
  QORuint64 heldBytes() const noexcept { return _heldBytes; }
  // A class with the columns as properties.
  CimClassDeclaration resultClass() const;

 private:
  class Run;

  void settleColumns(Run& run);
  bool hasColumns(const QORString& className) const;
  const std::string& headOf(const QORString& className);
  void writeColumn(std::string& out, std::size_t index);

  const QORString _nameSpace;
  std::unique_ptr<QORQL_Result> _result;
  std::vector<CimXmlColumn> _columns;
  std::vector<QORString> _referenceClasses;             // of each column
  std::vector<bool> _showsCells;                        // of each column, whether it is a property with cells
  std::unordered_map<std::string, std::string> _heads;  // the begin of INSTANCE, by the class of the row
  QORString _lastClass;
  const std::string* _lastHead = nullptr;
  QORuint64 _heldBytes = 0;
  bool _hasRow = false;
};

#endif
