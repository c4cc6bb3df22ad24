// What the scanner says on standard output, kept away from it.
#ifndef QORQL_TOOL_SCANNEROUTPUT_H
#define QORQL_TOOL_SCANNEROUTPUT_H

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "Statements.h"

// While it lives, what is written to std::cout and to stdout is collected: the
// scanner repeats characters that it does not know on the one and complains of
// strings without end on the other. One at a time, on one thread.
class ScannerOutput {
 public:
  ScannerOutput();
  ScannerOutput(const ScannerOutput&) = delete;
  ScannerOutput& operator=(const ScannerOutput&) = delete;
  ~ScannerOutput();

  // What was passed over of the text that was scanned meanwhile, a printable
  // sentence each: the unknown characters, with their places, and strings without end.
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
