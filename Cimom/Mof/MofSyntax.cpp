// Names of MOF declarations and what is known about refused ones.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofSyntax.h"

#include <algorithm>
#include <cstring>

std::string foldMofName(const QORString& name) {
  std::string folded(name.view());
  for (char& byte : folded) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
  }
  return folded;
}

// Eight bytes at a time; folding changes letters only, where it is exact, and other bytes in the same way each time.
std::size_t MofNameHash::operator()(std::string_view name) const noexcept {
  constexpr QORuint64 kCase = 0x2020202020202020;
  QORuint64 hash = name.size();
  while (!name.empty()) {
    QORuint64 bytes = 0;
    const std::size_t count = std::min(name.size(), sizeof bytes);
    std::memcpy(&bytes, name.data(), count);
    hash = (hash ^ (bytes | kCase)) * 0x9E3779B97F4A7C15;
    hash ^= hash >> 32U;
    name.remove_prefix(count);
  }
  return hash;
}

QORString MofNamePool::nameOf(std::string_view name) {
  QORString& recent = _recent[MofNameHash()(name) % _recent.size()];
  if (recent.view() != name || recent.isNull()) recent = QORString(name);
  return recent;
}

std::string subjectOfMofClass(const QORString& nameSpace, const QORString& name) {
  return "class " + foldMofName(nameSpace) + ':' + foldMofName(name);
}

QORString localMofNameSpace(std::string_view path) {
  constexpr std::size_t kNone = std::string_view::npos;
  const std::size_t scheme = path.find("://");
  if (scheme != kNone) path.remove_prefix(scheme + 1);
  if (path.substr(0, 2) == "//") {
    const std::size_t host = path.find('/', 2);
    path.remove_prefix(host == kNone ? path.size() : host);
  }
  while (!path.empty() && path.front() == '/') path.remove_prefix(1);
  while (!path.empty() && path.back() == '/') path.remove_suffix(1);
  const bool isRefused = path.find_first_of(" \t\r\n\"'\\:.=,;$#(){}[]") != kNone || path.find("//") != kNone;
  return isRefused ? QORString() : QORString(path);
}

bool isMofWord(std::string_view text, const char* word) noexcept { return QORString::equalIgnoringCase(text, word); }

void MofDocument::refuseClass(const QORString& name) { refusedClasses.insert(foldMofName(name)); }

void MofDocument::refuseAlias(const QORString& name) { refusedAliases.insert(foldMofName(name)); }
