// Standard error of a program that must not wait for its reader.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PATIENTERRORS_H
#define QORQL_TOOL_PATIENTERRORS_H

#include <unistd.h>

#include <iostream>
#include <memory>

#include "Cimom/Server/ServerModule.h"

// While it lives, what is told on standard error waits for nobody who reads it.
class PatientErrors {
 public:
  explicit PatientErrors(ServerModule& library)
      : _buffer(library.makeLogBuffer(STDERR_FILENO)), _before(std::cerr.rdbuf(_buffer.get())) {}
  PatientErrors(const PatientErrors&) = delete;
  PatientErrors& operator=(const PatientErrors&) = delete;
  ~PatientErrors() { std::cerr.rdbuf(_before); }

 private:
  const std::unique_ptr<std::streambuf> _buffer;
  std::streambuf* const _before;
};

#endif
