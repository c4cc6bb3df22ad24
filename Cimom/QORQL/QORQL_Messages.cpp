// How the errors of parsing and name resolution are thrown.
#include "Cimom/QORQL/QORQL_Messages.h"

#include <string_view>

namespace {

QORString fill(const char* text, const QORString& argument) {
  QORString pattern(text);
  const std::size_t place = pattern.find("%s");
  if (place == QORString::npos) return pattern;
  return pattern.subStr(0, place) + argument + pattern.subStr(place + 2);
}

}  // namespace

bool QORQL_isMessage(const char* message, const QORString& text, QORString& argument) {
  const std::string_view pattern(message);
  const std::size_t place = pattern.find("%s");
  if (place == std::string_view::npos) return false;
  const std::string_view before = pattern.substr(0, place);
  const std::string_view behind = pattern.substr(place + 2);
  std::string_view rest = text.view();
  if (rest.size() < before.size() + behind.size() || !rest.starts_with(before) || !rest.ends_with(behind)) return false;
  rest.remove_prefix(before.size());
  rest.remove_suffix(behind.size());
  argument = QORString(rest);
  return true;
}

void QORQL_raise(const QORQL_ParseMessage& message, QORuint32 line, const QORString& argument) {
  throw QORQL_ParseException(message.code, fill(message.text, argument), line);
}

void QORQL_raise(const QORQL_ParseMessage& message, const QORString& argument) { QORQL_raise(message, 0, argument); }

void QORQL_raise(const QORQL_CheckMessage& message, const QORString& argument) {
  throw QORQL_Exception(message.code, fill(message.text, argument));
}
