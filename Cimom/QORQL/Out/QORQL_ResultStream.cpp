// The XML table, byte for byte: a row of cell declarations, then the rows.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/Out/QORQL_ResultStream.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ostream>

#include "Cimom/QORQL/QORQL_ExecutionMessages.h"
#include "Cimom/QORQL/QORQL_ExecutionMonitor.h"
#include "Cimom/QORQL/QORQL_Log.h"
#include "cimom/CIMUtil.h"
#include "cimom/CQoriValue.h"

namespace {

// When more text than this has gathered, it is handed to the stream after a row.
constexpr std::size_t kPiece = 32768;

// For each byte, whether it is a character that no encoding changes: a letter, a
// digit, a blank, or one of those that names and numbers are made of besides.
constexpr std::array<bool, 256> kMeansItself = [] {
  std::array<bool, 256> meansItself{};
  for (char c = '0'; c <= '9'; ++c) meansItself[static_cast<unsigned char>(c)] = true;
  for (char c = 'A'; c <= 'Z'; ++c) meansItself[static_cast<unsigned char>(c)] = true;
  for (char c = 'a'; c <= 'z'; ++c) meansItself[static_cast<unsigned char>(c)] = true;
  for (const char c : {' ', '-', '.', '_'}) meansItself[static_cast<unsigned char>(c)] = true;
  return meansItself;
}();

// A text of such characters needs no encoding, which spares most cells a copy.
bool meansItself(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), [](char c) { return kMeansItself[static_cast<unsigned char>(c)]; });
}

}  // namespace

QORQL_ResultStream::QORQL_ResultStream(const QORQL_SelectList& list, QORQL_SymbolTable& symbols,
                                       QORSmrPtr<QORQL_DataTable>& table, std::ostream& out)
    : _list(list), _table(table), _out(out), _reader(symbols, table) {
  QORValSlistIterator<QORSmrPtr<QORQL_SelectedEntry>> entries(*list.getSelectedEntries());
  while (++entries) {
    if (entries.key().IsNull()) continue;
    Column column;
    column.entry = entries.key();
    if (!column.entry->isSelectAll()) column.slot = _reader.addEntry(column.entry);
    _columns.push_back(column);
  }
}

// A column that cannot be declared, since it cannot be computed on the first row,
// is an error that passes through, after what has been written is handed over.
void QORQL_ResultStream::write() {
  _text = "\n<IRETURNVALUE>\n<TABLE>\n";
  try {
    _streamTableHeader();
  } catch (...) {
    _flush();
    throw;
  }
  _flush();
  try {
    _streamTableRows();
  } catch (const QORQL_StoppedException&) {
    _flush();
    throw;
  } catch (...) {
    QORQL_reportEarlyEnd(QORQL_ExecutionMessages::kStreamingFailed);
  }
  _text += "</TABLE>\n</IRETURNVALUE>\n";
  _flush();
}

void QORQL_ResultStream::_flush() {
  _out.write(_text.data(), static_cast<std::streamsize>(_text.size()));
  _text.clear();
}

void QORQL_ResultStream::_streamTableHeader() {
  _text += "<TABLEROW.DECLARATION>\n";
  for (Column& column : _columns) {
    if (column.entry->isSelectAll()) {
      QORValSlistIterator<QORSmrPtr<QORQL_TableHeader>> headers(*_table->getColumnHeaderList());
      while (++headers) _streamTableHeaderHelper(column, headers.key()->getName(), true);
    } else {
      column.declaredCells = _streamTableHeaderHelper(column, column.entry->getClassName(), column.entry->isClassAll());
    }
  }
  _text += "</TABLEROW.DECLARATION>\n";
}

QORuint32 QORQL_ResultStream::_streamComputedHeader(const Column& column) {
  QORString type(QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE);
  if (_reader.rowCount() != 0) {
    _reader.select(0);
    const QORSmrPtr<IQoriValue> value(_reader.hasRow() ? _reader.value(column.slot) : QORSmrPtr<IQoriValue>());
    if (!value.IsNull()) type = value->getType()->getName();
  }
  _streamTableHeaderCell(QORQL_SelectList::_getCellName(*column.entry), type, false);
  return 1;
}

// Returns the number of cells declared. A class without any object declares
// nothing over an empty table, and the default cell where rows exist.
QORuint32 QORQL_ResultStream::_streamTableHeaderHelper(const Column& column, const QORString& className,
                                                       bool allProperties) {
  const QORQL_SelectedEntry& entry = *column.entry;
  if (!allProperties && !entry.isPlainProperty()) return _streamComputedHeader(column);
  const QORuint32 before = _cellPosition;
  const QORSmrPtr<IQoriObject> object(_findNonNullObject(className));
  if (object.IsNull()) {
    if (_reader.rowCount() != 0 && !entry.isSelectAll()) {
      _streamTableHeaderCell(QORQL_SelectList::_getCellName(entry), QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE, false);
    }
  } else if (allProperties) {
    for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property(object->getPropertyAt(i));
      _streamProperty(className + "." + property->getName(), *property);
    }
  } else {
    const QORSmrPtr<IQoriProperty> property(object->getProperty(entry.getPropertyName(), true));
    const QORString name(QORQL_SelectList::_getCellName(entry));
    if (property.IsNull()) {
      _streamTableHeaderCell(name, QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE, false);
    } else {
      _streamProperty(name, *property);
    }
  }
  return _cellPosition - before;
}

void QORQL_ResultStream::_streamProperty(const QORString& name, const IQoriProperty& property) {
  const QORSmrPtr<IQoriValue>& value = property.getValue();
  const QORString type(value.IsNull() ? QORQL_SelectList::DEFAULT_COLUMN_DATA_TYPE : value->getType()->getName());
  _streamTableHeaderCell(name, type, property.getType()->isArray());
}

void QORQL_ResultStream::_streamTableHeaderCell(const QORString& name, const QORString& type, bool isArray) {
  _text.append("<TABLECELL.DECLARATION NAME=\"").append(name.view());
  _text.append("\" TYPE=\"").append(type.view());
  _text.append("\" ISARRAY=\"").append(isArray ? "1" : "0");
  _text.append("\" CELLPOS=\"").append(std::to_string(_cellPosition++)).append("\"></TABLECELL.DECLARATION>\n");
}

QORSmrPtr<IQoriObject> QORQL_ResultStream::_findNonNullObject(const QORString& className) {
  for (QORuint64 row = 0; row < _reader.rowCount(); ++row) {
    _reader.select(row);
    if (_reader.hasRow() && _reader.fetchedObject(className) != nullptr) return _reader.object(className);
  }
  return {};
}

// FIRST limits the rows that are written, not the table. An aggregate list
// writes exactly one row; with a budget of 0, its values outside any row.
void QORQL_ResultStream::_streamTableRows() {
  QORuint64 budget = _reader.rowCount();
  if (_list.isFirstUsed() && _list.getFirstCount() < budget) budget = _list.getFirstCount();
  if (_list.AreAllEntriesAggregates()) {
    if (budget != 0) _text += "<TABLEROW>\n";
    for (const Column& column : _columns) _streamAggregateValue(*column.entry);
    if (budget != 0) _text += "</TABLEROW>\n";
    return;
  }
  QORQL_StopCheck stopCheck;
  for (QORuint64 row = 0; row < budget; ++row) {
    stopCheck.count();
    _reader.select(row);
    if (_reader.hasRow()) _streamRow();
    if (_text.size() > kPiece) _flush();
  }
}

// A bare `*` finds no cell under its empty class name and writes nothing.
void QORQL_ResultStream::_streamRow() {
  _text += "<TABLEROW>\n";
  for (const Column& column : _columns) {
    if (column.entry->isSelectAll()) continue;
    if (column.entry->isClassAll()) {
      _streamClassProperties(column);
    } else {
      QORSmrPtr<IQoriValue> holder;
      const QoriScalar view = _reader.view(column.slot, holder);
      _streamCell(view, [&] { return holder.IsNull() ? _reader.value(column.slot) : holder; });
    }
  }
  _text += "</TABLEROW>\n";
}

void QORQL_ResultStream::_streamClassProperties(const Column& column) {
  const QORSmrPtr<IQoriObject> object(_reader.object(column.entry->getClassName()));
  if (object.IsNull()) {
    for (QORuint32 cell = 0; cell < column.declaredCells; ++cell) _streamRowCell(QORSmrPtr<IQoriValue>());
    return;
  }
  for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) _streamRowCell(object->getPropertyAt(i)->getValue());
}

void QORQL_ResultStream::_streamNumber(std::string_view digits) {
  _text.append("<VALUE>").append(digits).append("</VALUE>\n");
}

void QORQL_ResultStream::_streamText(const QORString& text) {
  if (meansItself(text.view())) return _streamNumber(text.view());
  _text.append("<VALUE>").append(CIMUtil::xmlEncode(text).view()).append("</VALUE>\n");
}

template <class ValueOf>
void QORQL_ResultStream::_streamCell(const QoriScalar& view, const ValueOf& value) {
  char digits[24];
  switch (view.kind) {
    case QoriScalarKind::Null:
      _text += "<VALUE.NULL></VALUE.NULL>\n";
      return;
    case QoriScalarKind::Unsigned:
      return _streamNumber({digits, std::to_chars(digits, digits + sizeof digits, view.u).ptr});
    case QoriScalarKind::Signed:
      return _streamNumber({digits, std::to_chars(digits, digits + sizeof digits, view.s).ptr});
    case QoriScalarKind::Text:
    case QoriScalarKind::DateTime:
      return _streamText(*view.text);
    default:
      return _streamRowCell(value());
  }
}

void QORQL_ResultStream::_streamRowCell(const QORSmrPtr<IQoriValue>& value) {
  if (value.IsNull()) {
    _text += "<VALUE.NULL></VALUE.NULL>\n";
    return;
  }
  const bool isReference = value->getType()->getName() == "reference";
  if (value->isArray()) {
    _text += isReference ? "<VALUE.REFARRAY>\n" : "<VALUE.ARRAY>\n";
    QORValSlistIterator<QORSmrPtr<IQoriValue>> elements(*value->getArray());
    while (++elements) {
      if (!elements.key().IsNull()) _streamText(elements.key()->toString());
    }
    _text += isReference ? "</VALUE.REFARRAY>\n" : "</VALUE.ARRAY>\n";
    return;
  }
  if (!isReference) return _streamText(value->toString());
  _text += "<VALUE.REFERENCE>";
  const QORSmrPtr<IQoriInstanceName> name(value->getReference());
  if (name.IsNull()) {
    _text.append(value->toString().view());
  } else {
    _flush();
    CIMUtil::StreamInstancePath(_out, *name, _table->GetHostAddress(), _table->GetHostPort(), true, false);
  }
  _text += "</VALUE.REFERENCE>\n";
}

void QORQL_ResultStream::_streamAggregateValue(const QORQL_SelectedEntry& entry) {
  _streamRowCell(entry.GetAggregateValue());
}
