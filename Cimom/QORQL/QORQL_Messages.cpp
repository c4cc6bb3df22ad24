// How the errors of parsing and name resolution are thrown.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Messages.h"

namespace {

QORString fill(const char* text, const QORString& argument) {
  QORString pattern(text);
  const std::size_t place = pattern.find("%s");
  if (place == QORString::npos) return pattern;
  return pattern.subStr(0, place) + argument + pattern.subStr(place + 2);
}

}  // namespace

void QORQL_raise(const QORQL_ParseMessage& message, QORuint32 line, QORuint32 offset, const QORString& argument) {
  throw QORQL_ParseException(message.code, fill(message.text, argument), line, {message.kind, argument, {}, offset});
}

void QORQL_raise(const QORQL_CheckMessage& message, QORuint32 offset, const QORString& argument) {
  const QORString& name = message.kind == QORQL_Fault::kOther ? QORString::emptyString() : argument;
  throw QORQL_Exception(message.code, fill(message.text, argument), {message.kind, name, {}, offset});
}
