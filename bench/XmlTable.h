// The XML table as a peer writes it by hand.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_BENCH_XMLTABLE_H
#define QORQL_BENCH_XMLTABLE_H

#include <charconv>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

#include "bench/Answer.h"
#include "bench/Workloads.h"

namespace bench {

// Takes no memory for what is written.
class CountingBuffer final : public std::streambuf {
 public:
  std::uint64_t bytes() const noexcept { return _bytes; }

 private:
  std::streamsize xsputn(const char*, std::streamsize count) override {
    _bytes += static_cast<std::uint64_t>(count);
    return count;
  }
  int_type overflow(int_type character) override {
    ++_bytes;
    return traits_type::not_eof(character);
  }
  std::uint64_t _bytes = 0;
};

// Calls write(stream) with the stream of the workload and answers with what came.
template <class Write>
Answer answerOfXml(const Workload& workload, bool isThorough, const Write& write) {
  Answer answer(isThorough);
  if (workload.task == Task::XmlCounted && !isThorough) {
    CountingBuffer buffer;
    std::ostream out(&buffer);
    write(out);
    answer.documentSize(buffer.bytes());
  } else {
    std::ostringstream out;
    write(out);
    answer.document(std::move(out).str());
  }
  return answer;
}

// Builds each row in one buffer and hands it over in one piece.
class XmlTable {
 public:
  explicit XmlTable(std::ostream& out) : _out(out) {
    _row =
        "\n<IRETURNVALUE>\n<TABLE>\n<TABLEROW.DECLARATION>\n"
        "<TABLECELL.DECLARATION NAME=\"EX_DISK.DeviceID\" TYPE=\"string\" ISARRAY=\"0\" CELLPOS=\"0\">"
        "</TABLECELL.DECLARATION>\n"
        "<TABLECELL.DECLARATION NAME=\"EX_DISK.Name\" TYPE=\"string\" ISARRAY=\"0\" CELLPOS=\"1\">"
        "</TABLECELL.DECLARATION>\n"
        "<TABLECELL.DECLARATION NAME=\"EX_DISK.Size\" TYPE=\"uint64\" ISARRAY=\"0\" CELLPOS=\"2\">"
        "</TABLECELL.DECLARATION>\n</TABLEROW.DECLARATION>\n";
    flush();
  }

  void beginRow() { _row = "<TABLEROW>\n"; }
  void text(std::string_view cell) {
    _row += "<VALUE>";
    while (!cell.empty()) {
      std::size_t plain = 0;
      while (plain < cell.size() && !isSpecial(cell[plain])) ++plain;
      _row.append(cell.substr(0, plain));
      cell.remove_prefix(plain);
      if (cell.empty()) break;
      _row += entityOf(cell.front());
      cell.remove_prefix(1);
    }
    _row += "</VALUE>\n";
  }
  void number(std::uint64_t cell) {
    char digits[20];
    char* const end = std::to_chars(digits, digits + sizeof digits, cell).ptr;
    _row += "<VALUE>";
    _row.append(digits, static_cast<std::size_t>(end - digits));
    _row += "</VALUE>\n";
  }
  void endRow() {
    _row += "</TABLEROW>\n";
    flush();
  }
  void end() {
    _row = "</TABLE>\n</IRETURNVALUE>\n";
    flush();
  }

 private:
  static bool isSpecial(char character) noexcept {
    return character == '&' || character == '<' || character == '>' || character == '"';
  }
  static const char* entityOf(char character) noexcept {
    switch (character) {
      case '&':
        return "&amp;";
      case '<':
        return "&lt;";
      case '>':
        return "&gt;";
      default:
        return "&quot;";
    }
  }
  void flush() { _out.rdbuf()->sputn(_row.data(), static_cast<std::streamsize>(_row.size())); }

  std::ostream& _out;
  std::string _row;
};

}  // namespace bench

#endif
