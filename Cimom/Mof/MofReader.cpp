// Files are told apart by their canonical path, so that a loop is found
// whatever the paths in it look like.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofReader.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Cimom/Mof/MofEncoding.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaximumIncludeDepth = 64;

// A file's reading for one namespace.
std::string keyOf(const std::string& canonical, const QORString& nameSpace) {
  return canonical + '\n' + foldMofName(nameSpace);
}

// The path of a file that another one names: relative to the folder of that.
std::string besides(const std::string& path, const std::string& named) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos || named.starts_with('/')) return named;
  const std::size_t last = path.find_last_not_of('/', slash);
  const std::string folder = last == std::string::npos ? "" : path.substr(0, last + 1);
  return folder + '/' + named;
}

std::string canonicalOf(const std::string& path) {
  std::error_code error;
  const fs::path canonical = fs::weakly_canonical(path, error);
  return error ? path : canonical.string();
}

}  // namespace

void MofReader::readPath(const std::string& path) {
  std::error_code error;
  fs::is_directory(path, error) ? readFolder(path) : readFile(path);
}

void MofReader::readFolder(const std::string& path) {
  std::vector<std::string> files;
  if (const std::string fault = listMofFolder(path, files); !fault.empty()) return fail(path, nullptr, fault);
  if (_notesInputs) _inputs.push_back(describeMofFolder(path, files));
  _isFolderOpen = true;
  for (const std::string& file : files) readFile(file);
  _isFolderOpen = false;
}

// That of a folder is worked out once for all plain files in it.
std::string MofReader::canonicalPath(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  std::error_code error;
  const bool isPlain = slash != std::string::npos && fs::symlink_status(path, error).type() == fs::file_type::regular;
  if (!isPlain) return canonicalOf(path);
  const auto [known, isNew] = _folders.try_emplace(path.substr(0, std::max<std::size_t>(slash, 1)));
  if (isNew) known->second = canonicalOf(known->first);
  const std::string& folder = known->second;
  return folder + (folder.ends_with('/') ? path.substr(slash + 1) : path.substr(slash));
}

MofParser::Context MofReader::newContext() {
  MofParser::Context context;
  context.nameSpace = _nameSpace;
  context.scope = _scopes++;
  context.makesRows = _makesRows;
  return context;
}

void MofReader::readFile(const std::string& path) {
  MofParser::Context context = newContext();
  context.include = [this, &context](const std::string& named, const MofLocation& at) {
    readInclude(named, at, context);
  };
  readOnce(path, context, nullptr);
}

void MofReader::readText(std::string_view text, const std::string& name) {
  MofParser::Context context = newContext();
  context.include = [this, &context](const std::string& named, const MofLocation& at) {
    readInclude(named, at, context);
  };
  parse(name, std::string(text), context);
}

void MofReader::readInclude(const std::string& named, const MofLocation& at, MofParser::Context& context) {
  readOnce(besides(at.source->getName(), named), context, &at);
}

void MofReader::readOnce(const std::string& path, MofParser::Context& context, const MofLocation* includer) {
  if (context.nameSpace.isEmpty()) return;
  const std::string canonical = canonicalPath(path);
  if (std::find(_open.begin(), _open.end(), canonical) != _open.end()) {
    return fail(path, includer, "include loop: " + describeLoop(canonical));
  }
  if (_open.size() >= kMaximumIncludeDepth) {
    return fail(path, includer,
                "includes nested too deeply: more than " + std::to_string(kMaximumIncludeDepth) + " files");
  }
  if (isRead(canonical, context)) return;
  _scopeOfFile.emplace(keyOf(canonical, context.nameSpace), context.scope);
  const bool isNoted = _notesInputs && !_described.contains(canonical);
  const QORsint64 modified = isNoted ? changeOfMofFile(path) : 0;
  std::string text;
  if (const std::string fault = readMofFile(path, text); !fault.empty()) {
    return fail(path, includer, (includer != nullptr ? "cannot read " + path : "cannot be read") + ": " + fault);
  }
  if (isNoted) {
    _inputs.push_back(describeMofFile(path, text, modified));
    _described.insert(canonical);
  }
  _open.push_back(canonical);
  parseOnce(path, canonical, std::move(text), context);
  _open.pop_back();
}

// The aliases of a file that was read before are lent to the one that includes it again.
bool MofReader::isRead(const std::string& canonical, MofParser::Context& context) {
  auto known = _scopeOfFile.find(canonical);
  if (known == _scopeOfFile.end()) {
    known = _scopeOfFile.find(keyOf(canonical, context.nameSpace));
    if (known == _scopeOfFile.end()) return false;
    context.use();
  }
  _imports.push_back({context.scope, known->second});
  return true;
}

// A file that names its namespace before it declares anything means the same wherever it is included. One that names
// it later is not read again for that one either: a part of it is there already.
void MofReader::parseOnce(const std::string& path, const std::string& canonical, std::string contents,
                          MofParser::Context& context) {
  const bool hasNamed = std::exchange(context.hasNamed, false);
  const bool hasUsed = std::exchange(context.hasUsed, false);
  parse(path, std::move(contents), context);
  const bool isPlaced = context.hasUsed || !context.hasNamed;
  _scopeOfFile.emplace(isPlaced ? keyOf(canonical, context.nameSpace) : canonical, context.scope);
  context.hasUsed = hasUsed || (!hasNamed && context.hasUsed);
  context.hasNamed = hasNamed || context.hasNamed;
}

void MofReader::parse(const std::string& name, std::string text, MofParser::Context& context) {
  const bool isWhole = decodeMofText(text);
  _document.sources.push_back(std::make_unique<MofSource>(name, std::move(text)));
  const MofSource& source = *_document.sources.back();
  const std::string_view content = source.getText();
  if (!isWhole) {
    _report.add({&source, content.size()}, "the text is UTF-16 with half of a character here");
  } else if (content.find('\0') != std::string_view::npos) {
    _report.addFile(name, "this is not text: it contains zero bytes");
  } else {
    return MofParser(source, _document, _report, context).readDeclarations();
  }
  _document.isIncomplete = true;
}

void MofReader::fail(const std::string& path, const MofLocation* includer, const std::string& message) {
  const bool isGiven = includer == nullptr && !_isFolderOpen;
  if (isGiven && _report.isLenient()) throw MofException({{path, 0, 0, message, "", 0}});
  _document.isIncomplete = true;
  includer != nullptr ? _report.add(*includer, message) : _report.addFile(path, message);
}

std::string MofReader::describeLoop(const std::string& path) const {
  std::string chain;
  for (auto file = std::find(_open.begin(), _open.end(), path); file != _open.end(); ++file) {
    chain += fs::path(*file).filename().string() + " includes ";
  }
  return chain + fs::path(path).filename().string();
}
