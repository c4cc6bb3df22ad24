// MOF that has been loaded before, kept in a file.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHE_H
#define QORQL_MOF_MOFCACHE_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "cmpbase.h"

struct MofRecord;

// Loads files and folders as MofLoader does, through a cache file: what the load
// declares is kept there, and as long as every file that was read (includes
// among them) and every folder is still the same, the next load takes it from
// there. A cache that is missing, damaged, of another version, of other paths or
// older than its sources is ignored and replaced as a whole, so that several
// processes may share one. Classes are read from it when they are needed; it is
// kept in memory for them. The outcome of a load does not depend on it.
class MofCache {
 public:
  // How a load went.
  struct Outcome {
    bool isFromCache = false;
    std::string passedOver;  // why an existing cache was not used; empty: it was, or there was none
    std::string notWritten;  // why no cache could be written; empty: it was, or need not be
  };

  // `leastBytes`: loads of less MOF text are not kept.
  explicit MofCache(std::string file, QORuint64 leastBytes = 0);

  // THROWS MofException as MofLoader::loadFiles(); trouble with the cache is no
  // failure. REQUIRES a sink whose namespaces are empty or were made by the same steps.
  Outcome loadFiles(CimDeclarationSink& sink, const QORString& nameSpace, const std::vector<std::string>& paths) const;

  // The file in `folder` for a load of these paths into this namespace.
  static std::string fileIn(const std::string& folder, const QORString& nameSpace,
                            const std::vector<std::string>& paths);

 private:
  class LaterText;
  struct Load {
    QORString nameSpace;
    std::vector<std::string> paths;
    std::string key;  // of both
  };

  bool open(CimDeclarationSink& sink, const Load& load, Outcome& outcome) const;
  MofRecord readText(CimDeclarationSink& sink, const Load& load, Outcome& outcome) const;
  std::function<CimClassDeclaration(const QORString&, const QORString&)> textOf(
      const CimDeclarationSink& sink, const Load& load, const std::shared_ptr<const std::string>& content) const;

  std::string _file;
  QORuint64 _leastBytes;
};

#endif
