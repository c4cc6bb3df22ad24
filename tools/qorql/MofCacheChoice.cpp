// Which cache the MOF files of a run are loaded through.
// SPDX-License-Identifier: Apache-2.0
#include "MofCacheChoice.h"

#include <cstdlib>
#include <string>

#include "cmpbase.h"

namespace {

// Less MOF than this is read in a few milliseconds.
constexpr QORuint64 kLeastBytes = 256U << 10U;

// Empty when the environment names none. A path that is not absolute does not count.
std::string userCacheFolder() {
  const char* const named = std::getenv("XDG_CACHE_HOME");
  if (named != nullptr && *named == '/') return std::string(named) + "/qorql";
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? std::string(home) + "/.cache/qorql" : "";
}

void log(const std::string& line, QoriTraceLog::Severity severity) {
  QORLog::log("MOF", QORString(line), severity, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
}

}  // namespace

std::optional<MofCache> mofCacheFor(const SessionOptions& options) {
  // A cache does not tell what was left out.
  if (options.hasNoCache || options.isLenient) return std::nullopt;
  if (!options.cacheFile.empty()) return MofCache(options.cacheFile);
  const std::string folder = userCacheFolder();
  if (folder.empty()) return std::nullopt;
  return MofCache(MofCache::fileIn(folder, QORString(options.nameSpace), options.mofPaths), kLeastBytes);
}

void tellOfCache(const MofCache::Outcome& outcome, bool isNamed) {
  const QoriTraceLog::Severity severity = isNamed ? QoriTraceLog::kWarning : QoriTraceLog::kInfo;
  if (outcome.isFromCache) log("MOF comes from the cache", QoriTraceLog::kInfo);
  if (!outcome.passedOver.empty()) log("The cache is made anew: " + outcome.passedOver, QoriTraceLog::kInfo);
  if (!outcome.notWritten.empty()) log("The cache is not kept: " + outcome.notWritten, severity);
}
