// What the scanner says on standard output, kept away from it.
#ifndef QORQL_TOOL_SCANNEROUTPUT_H
#define QORQL_TOOL_SCANNEROUTPUT_H

#include <cstdio>
#include <sstream>
#include <string>

// While it lives, what is written to std::cout and to stdout is collected: the
// scanner repeats characters that it does not know on the one and complains of
// strings without end on the other. One at a time, on one thread.
class ScannerOutput {
 public:
  ScannerOutput();
  ScannerOutput(const ScannerOutput&) = delete;
  ScannerOutput& operator=(const ScannerOutput&) = delete;
  ~ScannerOutput();

  // The characters that it did not know.
  std::string unknownCharacters() const { return _stream.str(); }
  bool isStringOpen() const;

 private:
  std::ostringstream _stream;
  std::streambuf* _previousStream;
  std::FILE* _previousFile;
  std::FILE* _file;
  char* _fileText = nullptr;  // OWNS: as malloc
  std::size_t _fileSize = 0;
};

#endif
