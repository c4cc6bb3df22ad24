// A load through the cache: use the cache when it is fresh, otherwise read the text
// and record on the way what it declares.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCache.h"

#include <xxhash.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <exception>
#include <filesystem>
#include <memory>
#include <utility>

#include "Cimom/Mof/MofCacheFile.h"
#include "Cimom/Mof/MofCacheReader.h"
#include "Cimom/Mof/MofCacheWriter.h"
#include "Cimom/Mof/MofInput.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Mof/MofRecorder.h"

namespace {

namespace fs = std::filesystem;

// What is loaded: the namespace and the paths in their order.
std::string keyOf(const QORString& nameSpace, const std::vector<std::string>& paths) {
  std::string key(nameSpace.view());
  for (const std::string& path : paths) {
    std::error_code error;
    const fs::path whole = fs::absolute(path, error);
    key += '\n' + (error ? path : whole.lexically_normal().string());
  }
  return key;
}

// The input that has changed since the cache was written; empty when none has.
std::string changedInput(const MofCacheReader& cache) {
  for (const MofInput& input : cache.inputs()) {
    if (!isMofInputUnchanged(input, cache.written())) return input.path;
  }
  return {};
}

}  // namespace

MofCache::MofCache(std::string file, QORuint64 leastBytes) : _file(std::move(file)), _leastBytes(leastBytes) {}

std::string MofCache::fileIn(const std::string& folder, const QORString& nameSpace,
                             const std::vector<std::string>& paths) {
  const std::string key = keyOf(nameSpace, paths);
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), XXH3_64bits(key.data(), key.size()), 16);
  return (fs::path(folder) / (std::string(digits.data(), end.ptr) + ".mofcache")).string();
}

bool MofCache::open(CimDeclarationSink& sink, const std::string& key, Outcome& outcome) const {
  std::error_code error;
  if (!fs::exists(_file, error)) return false;
  try {
    const auto content = std::make_shared<const std::string>(readMofCacheFile(_file));
    const MofCacheReader cache(*content);
    if (cache.key() != key) {
      outcome.passedOver = "it was made of other files";
    } else if (const std::string changed = changedInput(cache); !changed.empty()) {
      outcome.passedOver = changed + " has changed";
    } else {
      cache.declare(sink, content);
      return true;
    }
  } catch (const std::exception& fault) {
    outcome.passedOver = fault.what();
  }
  return false;
}

MofCache::Outcome MofCache::loadFiles(CimDeclarationSink& sink, const QORString& nameSpace,
                                      const std::vector<std::string>& paths) const {
  Outcome outcome;
  const std::string key = keyOf(nameSpace, paths);
  outcome.isFromCache = open(sink, key, outcome);
  if (outcome.isFromCache) return outcome;
  MofCacheOutput output(_file);
  MofRecorder recorder(sink, [&output](std::string_view row) { appendMofCacheRow(output, row); });
  MofLoader loader(recorder, nameSpace);
  loader.loadFiles(paths);
  QORuint64 bytes = 0;
  for (const MofInput& input : loader.getInputs()) bytes += input.isFolder ? 0 : input.size;
  if (bytes < _leastBytes) return outcome;
  try {
    appendMofCacheRecord(output, recorder.record(), loader.getInputs(), key);
    output.finish();
  } catch (const std::exception& fault) {
    outcome.notWritten = fault.what();
  }
  return outcome;
}
