// Results as streams of Arrow.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_ARROWWRITER_H
#define QORQL_TOOL_ARROWWRITER_H

#include <memory>
#include <vector>

#include "ArrowColumn.h"
#include "ResultWriter.h"

// A stream of the Arrow IPC format for each result, one behind the other: a schema, batches of about a megabyte that
// are written while rows come, and the end. A result that is broken off has no end but the beginning of a message, so
// that no reader takes it for whole. REQUIRES a heading whose columns have the types of all rows. writeRow() THROWS
// QoriBaseException (type "tool") for a value that its column's type does not hold.
class ArrowWriter : public ResultWriter {
 public:
  using ResultWriter::ResultWriter;
  void begin(const ResultHeading& heading) override;
  void writeRow(const ResultRow& row) override;
  void end() override;
  void breakOff() override;

 private:
  void writeBatch();

  std::vector<std::unique_ptr<ArrowColumn>> _columns;
  ArrowBatch _batch;
  std::int64_t _rowCount = 0;  // of the batch
};

#endif
