// What the scanner says on standard output, kept away from it.
#include "ScannerOutput.h"

#include <cstdlib>
#include <iostream>
#include <new>

ScannerOutput::ScannerOutput() : _file(open_memstream(&_fileText, &_fileSize)) {
  if (_file == nullptr) throw std::bad_alloc();
  _previousStream = std::cout.rdbuf(_stream.rdbuf());
  _previousFile = stdout;
  stdout = _file;
}

ScannerOutput::~ScannerOutput() {
  stdout = _previousFile;
  std::cout.rdbuf(_previousStream);
  std::fclose(_file);
  std::free(_fileText);
}

bool ScannerOutput::isStringOpen() const {
  std::fflush(_file);
  return _fileSize != 0;
}
