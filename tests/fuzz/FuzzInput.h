// What the fuzz targets share: bytes as text, parts of an input, and how a
// target says that something is wrong.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FUZZINPUT_H
#define QORQL_TESTS_FUZZINPUT_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

inline std::string fuzzText(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Separates the parts of an input that has two.
constexpr char kFuzzSeparator[] = "\n%%\n";

// The text before the first separator and the text after it; the second is
// empty when there is none.
inline std::pair<std::string, std::string> fuzzParts(const std::string& input) {
  const std::size_t place = input.find(kFuzzSeparator);
  if (place == std::string::npos) return {input, {}};
  return {input.substr(0, place), input.substr(place + sizeof kFuzzSeparator - 1)};
}

// Ends the process, which is a finding, unless the condition holds.
inline void fuzzRequire(bool condition, const std::string& message) {
  if (condition) return;
  std::fprintf(stderr, "the target's requirement does not hold: %s\n", message.c_str());
  std::abort();
}

inline std::string fuzzFile(const std::string& pathInTheTree) {
  std::ifstream file(std::string(QORQL_SOURCE_DIR "/") + pathInTheTree, std::ios::binary);
  fuzzRequire(file.good(), pathInTheTree + " cannot be read");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

#endif
