// Results as MOF text that loads again.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_MOFWRITER_H
#define QORQL_TOOL_MOFWRITER_H

#include <map>
#include <optional>
#include <set>

#include "ResultWriter.h"

// `instance of C { ... };` for each row: of the class of the row's object where
// the columns are properties of one object, all keys among them, with the
// properties that have a value. Every other row, and one whose object is there
// already, is of a class QueryResult (QueryResult_2, ...) that is declared
// before it: a key Row counts them, columns are properties of their names, with
// _ for what a name may not have, and of their types; references and embedded
// objects are strings. Values of a column may differ in type: another
// QueryResult takes those that the first one does not.
class MofWriter : public ResultWriter {
 public:
  MofWriter(std::ostream& out, KeysOfClass keysOf) : ResultWriter(out), _keysOf(std::move(keysOf)) {}
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;

 private:
  using Columns = std::vector<ResultColumn>;
  struct ResultClass {
    std::string name;
    Columns columns;
  };

  // The columns that hold a class's keys; nothing where one has no column.
  std::optional<std::vector<std::size_t>> keyColumnsOf(const QORString& className) const;
  bool isNewInstance(const ResultRow& row);
  const ResultClass& resultClassFor(const ResultRow& row);
  void writeInstance(const ResultRow& row);
  void writeResult(const ResultRow& row);

  const KeysOfClass _keysOf;
  Columns _columns;
  std::map<QORString, std::optional<std::vector<std::size_t>>> _keyColumns;  // by class
  std::set<std::string> _writtenPaths;
  std::vector<ResultClass> _resultClasses;  // of this result
  unsigned _resultClassCount = 0;
  unsigned long long _rowCount = 0;
  bool _isFirst = true;
};

#endif
