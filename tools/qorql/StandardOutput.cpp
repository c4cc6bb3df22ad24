// Standard output as a stream that remembers why it failed.
// SPDX-License-Identifier: Apache-2.0
#include "StandardOutput.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

StandardOutput::StandardOutput() : _previous(std::cout.rdbuf(this)) {
  setp(_buffer.data(), _buffer.data() + _buffer.size());
}

StandardOutput::~StandardOutput() {
  writeOut();
  std::cout.rdbuf(_previous);
}

int StandardOutput::close() {
  writeOut();
  return _error;
}

bool StandardOutput::writeOut() {
  const char* from = pbase();
  while (from != pptr() && _error == 0) {
    const ssize_t count = write(STDOUT_FILENO, from, static_cast<std::size_t>(pptr() - from));
    if (count >= 0) {
      from += count;
    } else if (errno != EINTR) {
      _error = errno;
    }
  }
  setp(_buffer.data(), _buffer.data() + _buffer.size());
  return _error == 0;
}

StandardOutput::int_type StandardOutput::overflow(int_type byte) {
  if (!writeOut()) return traits_type::eof();
  if (!traits_type::eq_int_type(byte, traits_type::eof())) sputc(traits_type::to_char_type(byte));
  return traits_type::not_eof(byte);
}

int StandardOutput::sync() { return writeOut() ? 0 : -1; }
