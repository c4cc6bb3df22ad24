// Runs a fuzz target on every file of the folders (or the files) that are named:
// what a fuzzer once found stays found, in builds without a fuzzer too.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& place) {
  if (!std::filesystem::is_directory(place)) return {place};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(place)) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t inputs = 0;
  for (int i = 1; i < count; ++i) {
    for (const std::filesystem::path& path : filesOf(arguments[i])) {
      std::ifstream file(path, std::ios::binary);
      const std::string input((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
      std::fprintf(stderr, "%s\n", path.filename().c_str());  // the last one named is the one that fails
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
      ++inputs;
    }
  }
  std::fprintf(stderr, "%zu inputs\n", inputs);
  return inputs == 0 ? 1 : 0;
}
