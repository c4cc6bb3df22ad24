// Reading INI files. The parser takes lines of limited length, stops texts at
// zero bytes and takes an indented line for more of the value before it; so
// long lines and zero bytes are refused here, and indentation is removed:
// nothing is cut or joined silently.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/Configuration.h"

#include <ini.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <new>
#include <string_view>

#include "Cimom/Embedded/RepositoryError.h"

namespace embedded {

namespace {

constexpr std::size_t kGreatestFile = std::size_t{16} << 20U;  // a device such as /dev/zero never ends

[[noreturn]] void refuseFile(const std::string& path, const QORString& message) {
  throw QoriBaseException("CIM_Configuration", "CIMOM", QORString(std::string_view(path)), message, 1);
}

[[noreturn]] void refuseLine(const std::string& path, std::size_t line, std::string_view message) {
  refuseFile(path, joined({path, ":", std::to_string(line), ": ", message}));
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text;
  std::array<char, 4096> chunk{};
  while (file && text.size() <= kGreatestFile) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (!file.is_open() || file.bad()) refuseFile(path, joined({"cannot read configuration file ", path}));
  if (text.size() > kGreatestFile) {
    refuseFile(path, joined({"configuration file ", path, " is larger than 16 MB"}));
  }
  return text;
}

void checkLine(const std::string& path, std::size_t number, std::string_view line) {
  // The parser's buffer holds the line, its end and the terminating zero.
  const std::size_t longest = static_cast<std::size_t>(ini_max_line) - 3;
  if (line.size() > longest) {
    refuseLine(path, number, joined({"the line is longer than ", std::to_string(longest), " bytes"}).view());
  }
  if (line.find('\0') != std::string_view::npos) refuseLine(path, number, "the line contains a zero byte");
}

std::string withoutIndentation(const std::string& path, std::string_view text) {
  std::string lines;
  lines.reserve(text.size() + 1);
  std::size_t number = 1;
  for (std::size_t start = 0; start < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    std::string_view line = text.substr(start, end - start);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    checkLine(path, number, line);
    lines.append(line).push_back('\n');
    start = end + 1;
  }
  return lines;
}

}  // namespace

void Configuration::load(const std::string& path) {
  const std::string text = withoutIndentation(path, readFile(path));
  Sections read;
  const auto take = [](void* target, const char* section, const char* key, const char* value) {
    // Exceptions must not travel through the parser, which is C.
    try {
      (*static_cast<Sections*>(target))[section][key] = value;
      return 1;
    } catch (const std::bad_alloc&) {
      return 0;
    }
  };
  const int badLine = ini_parse_string(text.c_str(), take, &read);
  if (badLine > 0) refuseLine(path, static_cast<std::size_t>(badLine), "neither a section nor a key with a value");
  if (badLine < 0) refuseFile(path, joined({"cannot read configuration file ", path}));
  const std::lock_guard<std::mutex> lock(_mutex);
  for (auto& [section, keys] : read) {
    for (auto& [key, value] : keys) _sections[section][key] = value;
  }
}

void Configuration::set(const QORString& section, const QORString& key, const QORString& value) {
  const std::lock_guard<std::mutex> lock(_mutex);
  _sections[std::string(section.view())][std::string(key.view())] = value;
}

QORString Configuration::get(const QORString& section, const QORString& key) const {
  const std::lock_guard<std::mutex> lock(_mutex);
  const auto keys = _sections.find(section.view());
  if (keys == _sections.end()) return QORString::emptyString();
  const auto found = keys->second.find(key.view());
  return found == keys->second.end() ? QORString::emptyString() : found->second;
}

}  // namespace embedded
