// The XML table that a query writes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_RESULTSTREAM_H
#define QORQL_RESULTSTREAM_H

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Lazy/QORQL_RowReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_SelectList.h"

// Writes one projected table. BORROWS its arguments.
class QORQL_ResultStream {
 public:
  QORQL_ResultStream(const QORQL_SelectList& list, QORQL_SymbolTable& symbols, QORSmrPtr<QORQL_DataTable>& table,
                     std::ostream& out);

  // The whole table, handed to the stream in large pieces. Errors while rows are
  // written are logged and end the rows.
  void write();

 private:
  // Where the values of one entry come from.
  struct Column {
    QORSmrPtr<QORQL_SelectedEntry> entry;
    std::size_t slot = 0;
    QORuint32 declaredCells = 0;
  };

  void _streamTableHeader();
  QORuint32 _streamTableHeaderHelper(const Column& column, const QORString& className, bool allProperties);
  QORuint32 _streamComputedHeader(const Column& column);
  void _streamTableHeaderCell(const QORString& name, const QORString& type, bool isArray);
  void _streamProperty(const QORString& name, const IQoriProperty& property);
  void _streamTableRows();
  void _streamRow();
  void _streamClassProperties(const Column& column);
  // A cell from a view; `value` gives the value itself, for what is neither number nor text.
  template <class ValueOf>
  void _streamCell(const QoriScalar& view, const ValueOf& value);
  void _streamRowCell(const QORSmrPtr<IQoriValue>& value);
  // A VALUE of digits, and one of a text, which the object manager encodes.
  void _streamNumber(std::string_view digits);
  void _streamText(const QORString& text);
  // Hands what has been written to the stream.
  void _flush();
  void _streamAggregateValue(const QORQL_SelectedEntry& entry);
  QORSmrPtr<IQoriObject> _findNonNullObject(const QORString& className);

  const QORQL_SelectList& _list;
  QORSmrPtr<QORQL_DataTable>& _table;
  std::ostream& _out;
  std::string _text;  // written, but not handed over yet
  QORQL_RowReader _reader;
  std::vector<Column> _columns;
  QORuint32 _cellPosition = 0;
};

#endif
