// Standard output as a stream that remembers why it failed.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STANDARDOUTPUT_H
#define QORQL_TOOL_STANDARDOUTPUT_H

#include <array>
#include <streambuf>

// The buffer of std::cout while this object lives. After a write has
// failed everything further is dropped.
class StandardOutput : public std::streambuf {
 public:
  StandardOutput();
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput() override;

  // Writes out what is buffered. Returns the errno of the first failure; 0 when there was none.
  int close();

 protected:
  int_type overflow(int_type byte) override;
  int sync() override;

 private:
  bool writeOut();

  std::array<char, 1 << 16> _buffer;
  std::streambuf* _previous;
  int _error = 0;
};

#endif
