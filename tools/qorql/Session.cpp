// The object manager that the statements of one run are asked of.
#include "Session.h"

#include <iostream>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Providers/LinuxProviders.h"
#include "DisplayText.h"
#include "MofCacheChoice.h"
#include "ProgressLine.h"

namespace {

// More warnings of one statement than this are counted, not printed.
constexpr std::size_t kMaximumWarnings = 20;

const char* severityName(QORuint32 severity) {
  constexpr const char* kNames[] = {"fatal", "error", "warning", "info", "trace"};
  return kNames[severity < std::size(kNames) ? severity : std::size(kNames) - 1];
}

}  // namespace

Session::Session(const SessionOptions& options) : _options(options) {
  _manager.setLogSink([this](const QORString& who, const QORString& message,
                             QORuint32 severity) { takeLogLine(who, message, severity); },
                      options.logSeverity.value_or(QoriTraceLog::kWarning));
  _manager.makeCurrent();
}

Session::~Session() { _manager.setLogSink({}, QoriTraceLog::kFatal); }

void Session::takeLogLine(const QORString& who, const QORString& message, QORuint32 severity) {
  const std::string text = printableText(message.view());
  if (_options.logSeverity) {
    std::cerr << "qorql: " << severityName(severity) << ": " << who << ": " << text << '\n';
  } else {
    _warnings.push_back(text);
  }
}

void Session::printWarnings() {
  std::vector<std::string> warnings;
  warnings.swap(_warnings);
  if (_options.isQuiet) return;
  const std::size_t shown = std::min(warnings.size(), kMaximumWarnings);
  for (std::size_t i = 0; i < shown; ++i) std::cerr << "qorql: warning: " << warnings[i] << '\n';
  if (shown < warnings.size()) std::cerr << "qorql: warning: " << warnings.size() - shown << " more warnings\n";
}

void Session::open(const char* commonMof) {
  loadConfiguration();
  try {
    loadMof();
  } catch (const MofException& alone) {
    if (commonMof == nullptr) throw;
    loadMofOver(commonMof, alone);
  }
  if (!_options.hasNoLiveClasses) addLiveClasses();
  printWarnings();
}

void Session::loadConfiguration() {
  if (!_options.configuration.empty()) _manager.loadConfiguration(_options.configuration);
  for (const Setting& setting : _options.settings) {
    _manager.setConfiguration(setting.section.c_str(), setting.key.c_str(), setting.value.c_str());
  }
}

void Session::loadMof() {
  if (_options.mofPaths.empty()) return;
  const Activity activity("loading MOF");
  const ProgressLine progress(!_options.isQuiet, activity);
  const QORString nameSpace(_options.nameSpace);
  if (const std::optional<MofCache> cache = mofCacheFor(_options); cache.has_value()) {
    const MofCache::Outcome outcome = cache->loadFiles(_manager.sink(), nameSpace, _options.mofPaths);
    tellOfCache(outcome, !_options.cacheFile.empty());
  } else {
    MofLoader(_manager.sink(), nameSpace).loadFiles(_options.mofPaths);
  }
}

// A failed load has stored nothing, so the files can be read again. Of two
// refusals the shorter one tells what is wrong.
void Session::loadMofOver(const char* commonMof, const MofException& alone) {
  const QORString nameSpace(_options.nameSpace);
  try {
    MofLoader(_manager.sink(), nameSpace).loadText(commonMof, "common classes");
    MofLoader(_manager.sink(), nameSpace).loadFiles(_options.mofPaths);
  } catch (const MofException& together) {
    if (together.getDiagnostics().size() < alone.getDiagnostics().size()) throw;
    throw MofException(alone);
  }
}

// After the MOF files, so that a fuller CIM schema among them takes the place of
// the short one. A schema that the live classes do not fit into goes before them.
void Session::addLiveClasses() {
  const QORString nameSpace(_options.nameSpace);
  LinuxSchemaSink sink(_manager.sink());
  try {
    MofLoader(sink, nameSpace).loadText(linuxSchemaMof(), "live classes");
    registerLinuxProviders(_manager, nameSpace);
  } catch (const QoriBaseException& error) {
    const std::string_view message = error.getMessage().view();
    _warnings.push_back("Without live classes, which do not fit the MOF files: " +
                        printableText(message.substr(0, message.find('\n'))));
  }
}
