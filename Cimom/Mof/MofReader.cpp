// Files are told apart by their canonical path, so that a loop is found
// whatever the paths in it look like.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofReader.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaximumIncludeDepth = 64;

// Why a text cannot be MOF at all; empty when it may be.
std::string faultOfText(std::string_view text) {
  const std::string_view mark = text.substr(0, 2);
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF") return "the text is UTF-16; MOF is read as UTF-8";
  if (text.find('\0') != std::string_view::npos) return "this is no text: it contains zero bytes";
  return {};
}

std::string canonicalPath(const std::string& path) {
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
  _inputs.push_back(describeMofFolder(path, files));
  for (const std::string& file : files) readFile(file);
}

MofParser::Context MofReader::newContext() {
  MofParser::Context context;
  context.nameSpace = _nameSpace;
  context.scope = _scopes++;
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
  parse(std::make_unique<MofSource>(name, std::string(text)), context);
}

void MofReader::readInclude(const std::string& named, const MofLocation& at, MofParser::Context& context) {
  const fs::path folder = fs::path(at.source->getName()).parent_path();
  readOnce((folder / named).string(), context, &at);
}

void MofReader::readOnce(const std::string& path, MofParser::Context& context, const MofLocation* includer) {
  const std::string canonical = canonicalPath(path);
  if (std::find(_open.begin(), _open.end(), canonical) != _open.end()) {
    return fail(path, includer, "include loop: " + describeLoop(canonical));
  }
  if (_open.size() >= kMaximumIncludeDepth) {
    return fail(path, includer,
                "includes nested too deeply: more than " + std::to_string(kMaximumIncludeDepth) + " files");
  }
  const auto [known, isNew] = _scopeOfFile.try_emplace(canonical, context.scope);
  if (!isNew) {
    _imports.push_back({context.scope, known->second});
    return;
  }
  std::string contents;
  if (const std::string fault = readMofFile(path, contents); !fault.empty()) {
    return fail(path, includer, (includer != nullptr ? "cannot read " + path : "cannot be read") + ": " + fault);
  }
  _inputs.push_back(describeMofFile(path, contents));
  _open.push_back(canonical);
  parse(std::make_unique<MofSource>(path, std::move(contents)), context);
  _open.pop_back();
}

void MofReader::parse(std::unique_ptr<MofSource> source, MofParser::Context& context) {
  _document.sources.push_back(std::move(source));
  const MofSource& text = *_document.sources.back();
  if (const std::string fault = faultOfText(text.getText()); !fault.empty()) {
    _document.isIncomplete = true;
    _report.addFile(text.getName(), fault);
    return;
  }
  MofParser(text, _document, _report, context).readDeclarations();
}

void MofReader::fail(const std::string& path, const MofLocation* includer, const std::string& message) {
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
