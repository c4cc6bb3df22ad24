// The object manager that the statements of one run are asked of.
// SPDX-License-Identifier: Apache-2.0
#include "Session.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "DisplayText.h"
#include "ErrorReport.h"
#include "ExitStatus.h"
#include "Interrupt.h"
#include "LiveClasses.h"
#include "LoadingMemory.h"
#include "MofCacheChoice.h"
#include "ProgressLine.h"

namespace {

// Further warnings of one statement are counted, not printed.
constexpr std::size_t kMaximumWarnings = 20;

const char* severityName(QORuint32 severity) {
  constexpr const char* kNames[] = {"fatal", "error", "warning", "info", "trace"};
  return kNames[severity < std::size(kNames) ? severity : std::size(kNames) - 1];
}

// The process ends soon and gives back all memory at once, which is much faster than object by object.
void keepToTheEnd(std::unique_ptr<EmbeddedObjectManager> manager) {
  static EmbeddedObjectManager* kept = nullptr;
  if (kept == nullptr) kept = manager.release();
}

}  // namespace

Session::Session(const SessionOptions& options, Life life)
    : _options(options),
      _life(life),
      _log(std::make_shared<Log>(Log{options.logSeverity, options.hidesRefusals})),
      _manager(makeManager()) {
  if (_life == Life::OfTheProcess) takeOver();
}

Session::~Session() {
  _manager->setLogSink({}, QoriTraceLog::kFatal);
  if (_life == Life::OfTheProcess) keepToTheEnd(std::move(_manager));
}

std::unique_ptr<EmbeddedObjectManager> Session::makeManager() {
  auto manager = std::make_unique<EmbeddedObjectManager>();
  manager->setLogSink([log = _log](const QORString& who, const QORString& message,
                                   QORuint32 severity) { log->take(who, message, severity); },
                      _options.logSeverity.value_or(QoriTraceLog::kWarning));
  if (_servers != nullptr) manager->setOuterSource(_servers);
  return manager;
}

void Session::connectServers() {
  if (_options.servers.servers.empty()) return;
  _servers = makeRemoteServers(_options.servers, _options.nameSpace, _options.isNamespaceGiven);
  _servers->setStopRequest(&Interrupt::isRequested);
  _manager->setOuterSource(_servers);
}

int Session::settle(int status) {
  if (_servers == nullptr) return status;
  for (const std::string& failure : _servers->takeFailures()) {
    _isIncomplete = true;
    reportRefusal(failure + "; what follows from the other servers stands without this one");
  }
  return _isIncomplete && status == kExitDone ? kExitPlatform : status;
}

void Session::Log::take(const QORString& who, const QORString& message, QORuint32 lineSeverity) {
  if (hidesRefusals && who == "CQLQUERYSTATEMENT::validate()") return;
  const std::string text = printableText(message.view());
  if (severity) {
    std::cerr << "qorql: " << severityName(lineSeverity) << ": " << who << ": " << text << '\n';
  } else {
    warnings.push_back(text);
  }
}

void Session::printWarnings() {
  std::vector<std::string> warnings;
  warnings.swap(_log->warnings);
  if (_options.isQuiet) return;
  // A join asks more than one class, and each may miss the same.
  std::set<std::string_view> seen;
  std::erase_if(warnings, [&seen](const std::string& warning) { return !seen.insert(warning).second; });
  const std::size_t shown = std::min(warnings.size(), kMaximumWarnings);
  for (std::size_t i = 0; i < shown; ++i) std::cerr << "qorql: warning: " << warnings[i] << '\n';
  if (shown < warnings.size()) std::cerr << "qorql: warning: " << warnings.size() - shown << " more warnings\n";
}

void Session::printNewWarnings() {
  std::erase_if(_log->warnings, [this](const std::string& warning) { return !_told.insert(warning).second; });
  printWarnings();
}

void Session::open(const char* commonMof, LeftOut leftOut) {
  _leftOutPolicy = leftOut;
  connectServers();
  loadConfiguration(*_manager);
  try {
    _options.isLenient ? loadLeniently(commonMof) : void(loadMof(*_manager));
  } catch (const MofException& alone) {
    if (commonMof == nullptr || _options.isLenient) throw;
    loadMofOver(commonMof, alone);
  }
  requireNamespace(commonMof != nullptr);
  if (hasLiveClasses()) addLiveClasses(*_manager);
  printWarnings();
}

// A namespace that is asked for by name, and that none of the MOF files mentions, is misspelt. Without MOF files the
// live classes or the common ones are declared wherever they are asked for.
void Session::requireNamespace(bool hasCommonMof) const {
  const QORString asked(_options.nameSpace);
  const bool isFree = _options.mofPaths.empty() && (hasCommonMof || !_options.hasNoLiveClasses);
  if (isFree || _servers != nullptr || asked.isEqualCaseInsensitive(EmbeddedObjectManager::kDefaultNamespace)) return;
  if (!_manager->classNames(asked).empty()) return;
  std::string known;
  for (const QORString& nameSpace : _manager->namespaces()) {
    if (_manager->classNames(nameSpace).empty()) continue;
    known += (known.empty() ? "" : ", ") + std::string(nameSpace.view());
  }
  const std::string reason = known.empty() ? ": nothing declares a class" : "; classes are declared in " + known;
  throw QoriBaseException("tool", "qorql", "", QORString("there is no namespace " + _options.nameSpace + reason), 0);
}

void Session::loadConfiguration(EmbeddedObjectManager& manager) const {
  if (!_options.configuration.empty()) manager.loadConfiguration(_options.configuration);
  for (const Setting& setting : _options.settings) {
    manager.setConfiguration(setting.section.c_str(), setting.key.c_str(), setting.value.c_str());
  }
}

MofFaults Session::loadMof(EmbeddedObjectManager& manager) const {
  if (_options.mofPaths.empty()) return {};
  prepareLoadingMemory();
  const Activity activity("loading MOF");
  const ProgressLine progress(!_options.isQuiet, activity);
  const QORString nameSpace(_options.nameSpace);
  if (const std::optional<MofCache> cache = mofCacheFor(_options); cache.has_value()) {
    const MofCache::Outcome outcome = cache->loadFiles(manager.sink(), nameSpace, _options.mofPaths);
    tellOfCache(outcome, !_options.cacheFile.empty());
    return {};
  }
  MofLoader loader(manager.sink(), nameSpace);
  prepare(loader);
  loader.loadFiles(_options.mofPaths);
  return loader.getFaults();
}

// Of the files alone and over the common classes that is kept of which less is left out.
void Session::loadLeniently(const char* commonMof) {
  MofFaults faults = loadMof(*_manager);
  if (faults.count != 0 && commonMof != nullptr) {
    std::unique_ptr<EmbeddedObjectManager> fresh = makeManager();
    loadConfiguration(*fresh);
    MofLoader(fresh->sink(), QORString(_options.nameSpace)).loadText(commonMof, "common classes");
    MofFaults together = loadMof(*fresh);
    if (together.count < faults.count) {
      faults = std::move(together);
      _manager = std::move(fresh);
      if (_life == Life::OfTheProcess) takeOver();
    }
  }
  tellOfFaults(faults);
}

void Session::tellOfFaults(const MofFaults& faults) const {
  if (faults.count == 0) return;
  if (!_options.isQuiet) reportMofWarnings(faults);
  if (!_options.refusesFaults) return;
  const std::string refusal = "--strict refuses MOF with faults (" + std::to_string(faults.count) + ")";
  throw QoriBaseException("tool", "qorql", "", QORString(refusal), 0);
}

// A failed load has stored nothing, so the files can be read again. Of two
// refusals the shorter one names the cause.
void Session::loadMofOver(const char* commonMof, const MofException& alone) {
  const QORString nameSpace(_options.nameSpace);
  try {
    MofLoader(_manager->sink(), nameSpace).loadText(commonMof, "common classes");
    MofLoader(_manager->sink(), nameSpace).loadFiles(_options.mofPaths);
  } catch (const MofException& together) {
    if (together.getDiagnostics().size() < alone.getDiagnostics().size()) throw;
    throw MofException(alone);
  }
}

// After the MOF files, so that a fuller CIM schema among them replaces
// the short one.
void Session::addLiveClasses(EmbeddedObjectManager& manager) {
  const auto descriptions = _options.needsDescriptions ? LiveDescriptions::Declared : LiveDescriptions::LeftAway;
  _leftOut = ::addLiveClasses(manager, QORString(_options.nameSpace), descriptions);
  if (_leftOutPolicy == LeftOut::TellWhenNamed || _leftOut.names.empty()) return;
  _log->warnings.push_back(_leftOut.complaint);
  _leftOut = {};
}

void Session::tellOfLeftOut(std::string_view className) {
  const bool isOne = std::any_of(_leftOut.names.begin(), _leftOut.names.end(), [&](const std::string& name) {
    return QORString::equalIgnoringCase(name, className);
  });
  if (!isOne) return;
  _log->warnings.push_back(_leftOut.complaint);
  _leftOut = {};
  printWarnings();
}

void Session::loadMore(const std::string& path, const std::string& nameSpace) {
  try {
    const Activity activity("loading MOF");
    const ProgressLine progress(!_options.isQuiet, activity);
    MofLoader(_manager->sink(), QORString(nameSpace)).loadFile(path);
  } catch (const MofException&) {
    if (!hasLiveClasses() && !_options.isLenient) throw;
    const std::exception_ptr refusal = std::current_exception();
    try {
      const MorePath last{path, nameSpace};
      openAnew(&last);
    } catch (const QoriBaseException&) {
      dropWarnings();
      if (_options.isLenient) throw;
      std::rethrow_exception(refusal);  // the live classes are not the cause
    }
  }
  _more.push_back({path, nameSpace});
  printWarnings();
}

void Session::renew() {
  if (_servers != nullptr && _servers->forgetIncompleteClasses()) openAnew(nullptr);
}

MofFaults Session::loadFile(EmbeddedObjectManager& manager, const MorePath& file) const {
  MofLoader loader(manager.sink(), QORString(file.nameSpace));
  prepare(loader);
  loader.loadFile(file.path);
  return loader.getFaults();
}

// The faults of what was loaded before have been told.
void Session::openAnew(const MorePath* last) {
  std::unique_ptr<EmbeddedObjectManager> fresh = makeManager();
  loadConfiguration(*fresh);
  loadMof(*fresh);
  const Activity activity("loading MOF");
  const ProgressLine progress(!_options.isQuiet, activity);
  for (const MorePath& more : _more) loadFile(*fresh, more);
  if (last != nullptr) tellOfFaults(loadFile(*fresh, *last));
  if (hasLiveClasses()) addLiveClasses(*fresh);
  fresh->makeCurrent();
  _manager = std::move(fresh);
}
