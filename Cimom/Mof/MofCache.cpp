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
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
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

[[noreturn]] void refuseClass(const QORString& className, const std::string& reason) {
  throw QoriBaseException("CIM_Repository", "MofCache", "", "class " + className + QORString(reason), 1);
}

}  // namespace

// The text of a load that was taken from the cache, for classes whose part of that turns out to be damaged. It is read
// once, into an object manager of its own, and the cache is made anew on the way.
class MofCache::LaterText {
 public:
  LaterText(const MofCache& cache, std::unique_ptr<CimDeclarationSink> sink, Load load,
            std::shared_ptr<const std::string> content)
      : _cache(cache), _sink(std::move(sink)), _load(std::move(load)), _content(std::move(content)) {}

  CimClassDeclaration find(const QORString& nameSpace, const QORString& className) {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (!_record.has_value()) read(className);
    for (const auto& entry : _record->classes) {
      const bool isIt = entry.nameSpace.isEqualCaseInsensitive(nameSpace) && entry.declaration.name == className;
      if (isIt) return entry.declaration;
    }
    refuseClass(className, ": the cache is damaged, and the text has no such class");
  }

 private:
  // What others have taken from the cache already is as the text was then.
  void read(const QORString& className) {
    const std::string changed = changedInput(MofCacheReader(*_content));
    if (!changed.empty()) refuseClass(className, ": the cache is damaged, and " + changed + " has changed");
    QORLog::log("MOF", "The cache is made anew: its content is damaged", QoriTraceLog::kInfo, QoriTraceLog::kNormal, 0,
                QORLog::CIMOMLOG);
    Outcome outcome;
    _record = _cache.readText(*_sink, _load, outcome);
  }

  const MofCache _cache;
  const std::unique_ptr<CimDeclarationSink> _sink;
  const Load _load;
  const std::shared_ptr<const std::string> _content;
  std::mutex _mutex;
  std::optional<MofRecord> _record;
};

MofCacheReader::Text MofCache::textOf(const CimDeclarationSink& sink, const Load& load,
                                      const std::shared_ptr<const std::string>& content) const {
  std::unique_ptr<CimDeclarationSink> empty = sink.makeEmpty();
  if (empty == nullptr) return {};
  const auto text = std::make_shared<LaterText>(*this, std::move(empty), load, content);
  return [text](const QORString& nameSpace, const QORString& className) { return text->find(nameSpace, className); };
}

MofCache::MofCache(std::string file, QORuint64 leastBytes) : _file(std::move(file)), _leastBytes(leastBytes) {}

std::string MofCache::fileIn(const std::string& folder, const QORString& nameSpace,
                             const std::vector<std::string>& paths) {
  const std::string key = keyOf(nameSpace, paths);
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), XXH3_64bits(key.data(), key.size()), 16);
  return (fs::path(folder) / (std::string(digits.data(), end.ptr) + ".mofcache")).string();
}

bool MofCache::open(CimDeclarationSink& sink, const Load& load, Outcome& outcome) const {
  std::error_code error;
  if (!fs::exists(_file, error)) return false;
  try {
    const auto content = std::make_shared<const std::string>(readMofCacheFile(_file));
    const MofCacheReader cache(*content);
    if (cache.key() != load.key) {
      outcome.passedOver = "it was made of other files";
    } else if (const std::string changed = changedInput(cache); !changed.empty()) {
      outcome.passedOver = changed + " has changed";
    } else {
      cache.declare(sink, content, textOf(sink, load, content));
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
  const Load load{nameSpace, paths, keyOf(nameSpace, paths)};
  outcome.isFromCache = open(sink, load, outcome);
  if (!outcome.isFromCache) readText(sink, load, outcome);
  return outcome;
}

MofRecord MofCache::readText(CimDeclarationSink& sink, const Load& load, Outcome& outcome) const {
  MofCacheOutput output(_file);
  MofRecorder recorder(sink, [&output](std::string_view row) { appendMofCacheRow(output, row); });
  MofLoader loader(recorder, load.nameSpace);
  loader.setNotesInputs(true);
  loader.loadFiles(load.paths);
  QORuint64 bytes = 0;
  for (const MofInput& input : loader.getInputs()) bytes += input.isFolder ? 0 : input.size;
  if (bytes >= _leastBytes) {
    try {
      appendMofCacheRecord(output, recorder.record(), loader.getInputs(), load.key);
      output.finish();
    } catch (const std::exception& fault) {
      outcome.notWritten = fault.what();
    }
  }
  return std::move(recorder).record();
}
