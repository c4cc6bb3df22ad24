// Results as streams of Arrow.
// SPDX-License-Identifier: Apache-2.0
#include "ArrowWriter.h"

#include <ostream>

#include "Cimom/Server/UniqueNames.h"

namespace {

constexpr std::int64_t kMostRows = 16384;
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

}  // namespace

void ArrowWriter::begin(const ResultHeading& heading) {
  _columns.clear();
  _rowCount = 0;
  const std::vector<std::string> names = uniqueNames(namesOf(heading.columns));
  std::vector<ArrowField> fields;
  for (std::size_t i = 0; i < names.size(); ++i) {
    _columns.push_back(std::make_unique<ArrowColumn>(heading.columns[i], names[i]));
    fields.push_back(_columns.back()->field());
  }
  _out << arrowSchemaMessage(fields);
}

void ArrowWriter::writeRow(const ResultRow& row) {
  std::size_t byteCount = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    _columns[i]->append(row[i].Get());
    byteCount += _columns[i]->byteCount();
  }
  ++_rowCount;
  if (_rowCount == kMostRows || byteCount >= kMostBytes) writeBatch();
}

void ArrowWriter::writeBatch() {
  _batch.clear();
  for (const std::unique_ptr<ArrowColumn>& column : _columns) column->take(_batch);
  _out << arrowBatchMessage(_rowCount, _batch) << _batch.body();
  _rowCount = 0;
}

void ArrowWriter::end() {
  if (_rowCount > 0) writeBatch();
  _out << arrowEndOfStream();
}

void ArrowWriter::breakOff() { _out << arrowBrokenStream(); }
