// Results as MOF text that loads again.
#ifndef QORQL_TOOL_MOFWRITER_H
#define QORQL_TOOL_MOFWRITER_H

#include "ResultWriter.h"

// `instance of C { ... };` for each row: of the class of the row's object where
// the columns are properties of one object, with the properties that have a
// value. Otherwise of a class QueryResult (QueryResult_2, ...) that is declared
// before the rows: a key Row counts them, columns are properties of their
// names, with _ for what a name may not have, and of their types; references
// and embedded objects are strings.
class MofWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;

 private:
  void declareResult();
  void writeInstance(const ResultRow& row);

  std::vector<ResultColumn> _columns;
  std::string _className;  // of a result that is no instances of a class; empty while none is declared
  unsigned _resultCount = 0;
  unsigned long long _rowCount = 0;
  bool _isFirst = true;
};

#endif
