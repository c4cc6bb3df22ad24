// Reads a text from a file or from standard input.
// SPDX-License-Identifier: Apache-2.0
#include "TextInput.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

constexpr std::size_t kGreatestText = std::size_t{512} << 20U;
constexpr std::size_t kTextChunk = std::size_t{1} << 16U;

[[noreturn]] void fail(const std::string& name, const std::string& reason) {
  throw std::runtime_error(name + " cannot be read: " + reason);
}

// A stream of the C library tells an error from the end, and says which error it is.
std::string readAll(std::FILE* in, const std::string& name) {
  std::string text;
  std::vector<char> chunk(kTextChunk);
  errno = 0;
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), in)) {
    text.append(chunk.data(), count);
    if (text.size() > kGreatestText) fail(name, "it is larger than 512 MB");
  }
  if (std::ferror(in) != 0) fail(name, std::strerror(errno));
  return text;
}

}  // namespace

std::string readTextFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (file == nullptr) fail(path, std::strerror(errno));
  return readAll(file.get(), path);
}

std::string readStandardInput() { return readAll(stdin, "standard input"); }
