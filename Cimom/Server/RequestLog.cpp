// Writes lines of JSON, without what may not stand there: a long query is cut, bytes that are no UTF-8 are replaced.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/RequestLog.h"

#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>

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

std::string cut(const std::string& text) {
  return text.size() <= kLongestText ? text : text.substr(0, kLongestText) + "...";
}

void addIfThere(Json& line, const char* name, const std::string& text) {
  if (!text.empty()) line[name] = cut(text);
}

std::string textOf(const Json& line) {
  return line.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace) + '\n';
}

}  // namespace

std::string lineOf(const RequestRecord& record, std::chrono::system_clock::time_point when) {
  Json line;
  line["time"] = timeText(when);
  line["client"] = record.client;
  line["user"] = record.user;
  line["operation"] = cut(record.note.operation);
  addIfThere(line, "namespace", record.note.nameSpace);
  line["subject"] = cut(record.note.subject);
  line["status"] = record.note.status;
  addIfThere(line, "message", record.note.statusText);
  line["http"] = record.http;
  line["bytes"] = record.bytes;
  line["ms"] = static_cast<double>(static_cast<std::int64_t>(record.milliseconds * 1000)) / 1000;
  if (!record.isWhole) line["cut"] = true;
  return textOf(line);
}

void RequestLog::tell(const RequestRecord& record) const noexcept {
  if (!_logsRequests) return;
  try {
    write(lineOf(record, std::chrono::system_clock::now()));
  } catch (const std::exception&) {
    return;  // a log that cannot be written holds up no reply
  }
}

void RequestLog::complain(const std::string& what) const noexcept {
  try {
    Json line;
    line["time"] = timeText(std::chrono::system_clock::now());
    line["problem"] = cut(what);
    write(textOf(line));
  } catch (const std::exception&) {
    return;
  }
}

void RequestLog::write(const std::string& line) const noexcept {
  if (::write(_file, line.data(), line.size()) < 0) return;
}
