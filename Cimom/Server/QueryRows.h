// The result of a client's query as instances, one for each row.
// Tested by tests/unit/Server/QueryOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_QUERYROWS_H
#define QORQL_SERVER_QUERYROWS_H

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Model/ModelShape.h"
#include "Cimom/Server/ServerLimits.h"
#include "Cimom/Server/ServerOperations.h"
#include "qorql.h"

// Rows are made of the engine's result one by one; what comes out are instances whose properties are the columns, in
// their order, each of one type in all rows. Their class is that of the one object whose properties the columns are, by
// their names, else "QueryResult". One thread at a time.
class QueryRows {
 public:
  static constexpr const char* kResultClass = "QueryResult";

  // THROWS CimStatusException 14 when nobody knows it.
  static void requireLanguage(const QORString& language);

  // Runs the statement, and looks for what can fail later. THROWS CimStatusException: a language that is unknown 14; a
  // text that the engine refuses 15, with its message; a query that takes too long, or too much memory, 27; what fails
  // otherwise 1. What providers throw passes through.
  QueryRows(const ServerCall& call, const QORString& language, const QORString& text, const ServerLimits& limits);
  QueryRows(const QueryRows&) = delete;
  QueryRows& operator=(const QueryRows&) = delete;
  ~QueryRows();

  // Whether there is another row.
  bool hasNext() const noexcept { return _hasRow; }
  // Its instance. REQUIRES that there is one.
  QORSmrPtr<IQoriObject> next();
  // About what the rows that are held take, at most.
  QORuint64 heldBytes() const noexcept { return _heldBytes; }
  // A class with the columns as properties.
  CimClassDeclaration resultClass() const;

 private:
  class Run;

  void settleColumns(Run& run);
  void nameColumns(std::vector<std::string> names);
  bool hasColumns(const QORString& className) const;
  const QORSmrPtr<ModelShape>& shapeOf(const QORString& className);

  const QORString _nameSpace;
  std::unique_ptr<QORQL_Result> _result;
  std::vector<ModelLayout::Column> _columns;
  QORSmrPtr<ModelLayout> _layout;
  std::unordered_map<std::string, QORSmrPtr<ModelShape>> _shapes;  // by class
  std::vector<QORSmrPtr<IQoriValue>> _values;                      // of one row
  QORuint64 _heldBytes = 0;
  bool _hasRow = false;
};

#endif
