// Plain instances of a MOF text, read straight into rows.
// Tested by tests/unit/Mof/MofRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFROWREADER_H
#define QORQL_MOF_MOFROWREADER_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Mof/MofRows.h"

// Reads what is written without alias, comment or qualifier, with decimal numbers, strings in one piece, words and
// arrays of those. It refuses everything else, faults among it, and says nothing of it: MofParser reads that, and finds
// the faults. What it accepts the parser would accept, with the same values. BORROWS source and rows. Belongs to one
// load.
class MofRowReader {
 public:
  MofRowReader(const MofSource& source, MofRows& rows) : _source(source), _text(source.getText()), _rows(rows) {}

  // The instance whose word "instance" stands at `offset`: the place after its semicolon; npos when it is not plain.
  std::size_t read(std::size_t offset, const QORString& nameSpace, MofRow& row);

 private:
  char at(std::size_t offset) const noexcept { return offset < _text.size() ? _text[offset] : '\0'; }
  void skipBlanks() noexcept;
  bool take(char symbol) noexcept;
  // Empty when there is none.
  std::string_view takeName() noexcept;
  bool readHead(std::size_t offset);
  bool readProperties();
  bool readProperty(CimRowWriter& writer);
  bool readValue(CimRowWriter& writer);
  bool readArray(CimRowWriter& writer);
  bool readString(CimRowWriter& writer);
  bool readNumber(CimRowWriter& writer);
  bool readReal(std::size_t begin, std::size_t digits, bool isNegative, CimRowWriter& writer);
  bool readWord(CimRowWriter& writer);
  // Whether the form is that of the instance before.
  bool isAsBefore(const QORString& nameSpace) const noexcept;

  const MofSource& _source;
  const std::string_view _text;
  MofRows& _rows;
  std::size_t _at = 0;
  std::string_view _className;
  std::vector<std::string_view> _names;
  std::string _cells;
  std::string _decoded;                      // of a string with escapes
  QORuint32 _form = MofRows::kMaximumForms;  // of the instance before
};

#endif
