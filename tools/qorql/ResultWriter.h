// The forms in which a result can be printed.
#ifndef QORQL_TOOL_RESULTWRITER_H
#define QORQL_TOOL_RESULTWRITER_H

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "cimom/IQoriValue.h"
#include "cmpbase.h"

enum class OutputForm { Table, Csv, Json, Html, Xml };

struct ResultColumn {
  std::string name;
  bool isNumber = false;
};

// What is known before the first row.
struct ResultHeading {
  std::string query;
  std::vector<ResultColumn> columns;
  std::size_t rowCount = 0;
};

// One value for each column; a null pointer for NULL.
using ResultRow = std::span<const QORSmrPtr<IQoriValue>>;

// Prints the results of one run of the program, one after the other: for each
// result begin, its rows, end; after the last one finish, also when a later
// statement failed. BORROWS the stream.
class ResultWriter {
 public:
  explicit ResultWriter(std::ostream& out) : _out(out) {}
  ResultWriter(const ResultWriter&) = delete;
  ResultWriter& operator=(const ResultWriter&) = delete;
  virtual ~ResultWriter() = default;

  virtual void begin(const ResultHeading& heading) = 0;
  virtual void writeRow(ResultRow row) = 0;
  virtual void end() = 0;
  virtual void finish() {}

 protected:
  std::ostream& _out;
};

// REQUIRES a form other than Xml, which the engine writes itself.
std::unique_ptr<ResultWriter> makeResultWriter(OutputForm form, std::ostream& out);

#endif
