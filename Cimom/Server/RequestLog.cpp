// Writes lines of JSON, without what may not stand there: a long query is cut, bytes that are no UTF-8 are replaced.
// What ends a line or commands a terminal is escaped.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/RequestLog.h"

#include <time.h>

#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>
#include <string_view>

namespace {

constexpr std::size_t kLongestText = 2000;

using Json = nlohmann::ordered_json;

std::string timeText(std::chrono::system_clock::time_point when) {
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::duration_cast<milliseconds>(when.time_since_epoch()).count();
  const time_t seconds = static_cast<time_t>(sinceEpoch / 1000);
  tm parts{};
  gmtime_r(&seconds, &parts);
  char text[40];
  const std::size_t length = strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
  std::snprintf(text + length, sizeof text - length, ".%03dZ", static_cast<int>(sinceEpoch % 1000));
  return text;
}

std::string cut(const std::string& text, std::size_t longest) {
  return text.size() <= longest ? text : text.substr(0, longest) + "...";
}

void addIfThere(Json& line, const char* name, const std::string& text, std::size_t longest) {
  if (!text.empty()) line[name] = cut(text, longest);
}

// JSON leaves these characters as they are: DEL and the C1 controls, separators of lines, and those that turn the
// direction of a text. 0 where `text` does not begin with one, else its code.
unsigned unsafeCodeOf(std::string_view text) {
  const auto byte = [text](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
  if (byte(0) == 0x7F) return 0x7F;
  if (byte(0) == 0xC2 && byte(1) < 0xA0) return byte(1);
  if (byte(0) != 0xE2) return 0;
  const unsigned code = 0x2000 + ((byte(1) & 0x3F) << 6) + (byte(2) & 0x3F);
  return (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) ? code : 0;
}

std::size_t encodedBytesOf(unsigned code) { return code < 0x80 ? 1 : code < 0x800 ? 2 : 3; }

// Such characters stand within strings alone.
std::string withUnsafeEscaped(const std::string& json) {
  std::string safe;
  for (std::size_t i = 0; i < json.size();) {
    const unsigned code = unsafeCodeOf(std::string_view(json).substr(i));
    if (code == 0) {
      safe += json[i++];
      continue;
    }
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\u%04x", code & 0xFFFF);
    safe += escaped;
    i += encodedBytesOf(code);
  }
  return safe;
}

std::string textOf(const Json& line) {
  return withUnsafeEscaped(line.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace)) + '\n';
}

std::string problemLine(const std::string& what, std::size_t longest) {
  Json line;
  line["time"] = timeText(std::chrono::system_clock::now());
  line["problem"] = cut(what, longest);
  return textOf(line);
}

// What is escaped may take six times as much.
template <class LineOf>
std::string fitting(const LineOf& lineOf) {
  std::size_t longest = kLongestText;
  std::string line = lineOf(longest);
  while (line.size() > LogFile::kLongestLine) line = lineOf(longest /= 2);
  return line;
}

std::string lineOf(const RequestRecord& record, std::chrono::system_clock::time_point when, std::size_t longest) {
  Json line;
  line["time"] = timeText(when);
  line["client"] = record.client;
  line["user"] = cut(record.user, longest);
  line["operation"] = cut(record.note.operation, longest);
  addIfThere(line, "namespace", record.note.nameSpace, longest);
  line["subject"] = cut(record.note.subject, longest);
  line["status"] = record.note.status;
  addIfThere(line, "message", record.note.statusText, longest);
  line["http"] = record.http;
  line["bytes"] = record.bytes;
  line["ms"] = static_cast<double>(static_cast<std::int64_t>(record.milliseconds * 1000)) / 1000;
  if (!record.isWhole) line["cut"] = true;
  return textOf(line);
}

std::string lostLine(std::uint64_t count) {
  return problemLine(std::to_string(count) + " lines were not written, since nobody read them", kLongestText);
}

}  // namespace

RequestLog::RequestLog(int file, bool logsRequests) : _file(file, &lostLine), _logsRequests(logsRequests) {}

std::string lineOf(const RequestRecord& record, std::chrono::system_clock::time_point when) {
  return fitting([&](std::size_t longest) { return lineOf(record, when, longest); });
}

void RequestLog::tell(const RequestRecord& record) const noexcept {
  if (!_logsRequests) return;
  try {
    _file.write(lineOf(record, std::chrono::system_clock::now()));
  } catch (const std::exception&) {
    return;  // a log that cannot be written holds up no reply
  }
}

void RequestLog::complain(const std::string& what) const noexcept {
  try {
    _file.write(fitting([&](std::size_t longest) { return problemLine(what, longest); }));
  } catch (const std::exception&) {
    return;
  }
}
