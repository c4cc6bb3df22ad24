// What the scanner prints on standard output, collected instead.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_SCANNEROUTPUT_H
#define QORQL_TOOL_SCANNEROUTPUT_H

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "Statements.h"

// While it lives, what is written to std::cout and to stdout is collected: the
// scanner prints unknown characters to the first and complaints about
// unterminated strings to the second. One at a time, on one thread.
class ScannerOutput {
 public:
  ScannerOutput();
  ScannerOutput(const ScannerOutput&) = delete;
  ScannerOutput& operator=(const ScannerOutput&) = delete;
  ~ScannerOutput();

  // What was skipped of the text that was scanned since then, a printable
  // sentence each: the unknown characters, with their places, and unterminated strings.
  std::vector<std::string> passedOver(const Statement& scanned) const;

 private:
  std::ostringstream _stream;
  std::streambuf* _previousStream;
  std::FILE* _previousFile;
  std::FILE* _file;
  char* _fileText = nullptr;  // OWNS: as malloc
  std::size_t _fileSize = 0;
};

#endif
