// Passes questions on.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/GatewaySource.h"

#include <set>
#include <utility>

#include "Cimom/Server/InteropModel.h"
#include "Cimom/Server/QueryMonitor.h"
#include "cimom/CQoriProviderException.h"

namespace {

constexpr std::chrono::seconds kRemembered{2};
constexpr std::chrono::milliseconds kPatience{50};
constexpr std::size_t kMostAskers = 16;
constexpr std::size_t kMostLists = 1000;  // of namespaces that clients have asked for

// THROWS CQoriProviderException when the operation that this thread answers is to end.
void requireGoing() {
  if (!isCallStopped()) return;
  throw CQoriProviderException("GatewaySource", "the call was stopped", 1);
}

// What is declared stays as it is: whoever runs this server is to know.
void tellOfLost(const std::string& nameSpace, const std::vector<QORString>& before, const std::vector<QORString>& now) {
  std::set<std::string> left;
  for (const QORString& name : now) left.emplace(QORString::toUpperCase(name).view());
  for (const QORString& name : before) {
    if (left.contains(std::string(QORString::toUpperCase(name).view()))) continue;
    const std::string what = nameSpace.empty() ? "namespace " : "class " + nameSpace + ":";
    QORLog::log("GatewaySource",
                QORString(what + std::string(name.view()) +
                          " is on none of the other servers any more: what is known of it stays until everything is "
                          "read anew"),
                QoriTraceLog::kWarning, QoriTraceLog::kNormal, 0, QORLog::CIMOMLOG);
  }
}

// Clients that look for the interop namespace under its other name would take an outer server's for this one's.
bool isOwn(const QORString& nameSpace) noexcept {
  return nameSpace.isEqualCaseInsensitive(kInteropNameSpace) || nameSpace.isEqualCaseInsensitive("interop");
}

}  // namespace

GatewaySource::GatewaySource(std::shared_ptr<OuterSource> source, std::chrono::milliseconds listsRemembered)
    : _source(std::move(source)), _listsRemembered(listsRemembered) {
  _askers.push_back(std::make_unique<Asker>(_source));
}

GatewaySource::Turn::~Turn() {
  {
    const std::lock_guard<std::mutex> lock(_gateway._mutex);
    _asker.isBusy = false;
  }
  _gateway._isFree.notify_one();
}

// The first ones are asked most, so that their connections stay.
GatewaySource::Asker* GatewaySource::freeAsker() {
  for (const std::unique_ptr<Asker>& asker : _askers) {
    if (!asker->isBusy) return asker.get();
  }
  if (_askers.size() == kMostAskers) return nullptr;
  std::shared_ptr<OuterSource> another = _source->another();
  if (another == nullptr) return nullptr;
  return _askers.emplace_back(std::make_unique<Asker>(std::move(another))).get();
}

GatewaySource::Asker& GatewaySource::takeAsker() {
  std::unique_lock<std::mutex> lock(_mutex);
  Asker* asker = freeAsker();
  for (; asker == nullptr; asker = freeAsker()) {
    _isFree.wait_for(lock, kPatience);
    lock.unlock();
    requireGoing();
    lock.lock();
  }
  asker->isBusy = true;
  return *asker;
}

GatewaySource::Turn::Turn(GatewaySource& gateway) : Turn(gateway, gateway.takeAsker()) {
  const Clock::time_point now = Clock::now();
  if (now - _asker.begun <= kRemembered) return;
  _asker.source->beginStatement();
  _asker.begun = now;
}

bool GatewaySource::mayHave(const QORString& nameSpace, const QORString& className) const {
  return !isOwn(nameSpace) && _source->mayHave(nameSpace, className);
}

bool GatewaySource::isNeedless(const Request& request) const { return !mayHave(request.nameSpace, request.className); }

// A class that is there is found without waiting for those who ask servers.
bool GatewaySource::provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) {
  if (!sink.findClass(nameSpace, className).IsNull()) return true;
  if (isOwn(nameSpace)) return false;
  const Turn turn(*this);
  return turn->provideClass(sink, nameSpace, className);
}

void GatewaySource::provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) {
  if (isOwn(nameSpace)) return;
  const Turn turn(*this);
  turn->provideQualifiers(sink, nameSpace);
}

std::vector<QORString> GatewaySource::list(const std::string& key, const Ask& ask) {
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    const auto known = _lists.find(key);
    if (known != _lists.end() && Clock::now() < known->second.end) return known->second.names;
  }
  const Turn turn(*this);
  turn->forgetLists();
  return keep(key, ask(turn.source()));
}

std::vector<QORString> GatewaySource::keep(const std::string& key, std::vector<QORString> names) {
  Known before;
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_lists.size() >= kMostLists) _lists.clear();
    before = std::exchange(_lists[key], {names, Clock::now() + _listsRemembered});
  }
  tellOfLost(key, before.names, names);
  return names;
}

std::vector<QORString> GatewaySource::nameSpaces() {
  return list({}, [](OuterSource& source) { return source.nameSpaces(); });
}

std::vector<QORString> GatewaySource::classNames(const QORString& nameSpace) {
  if (nameSpace.isEmpty() || isOwn(nameSpace)) return {};
  return list(std::string(QORString::toUpperCase(nameSpace).view()),
              [&nameSpace](OuterSource& source) { return source.classNames(nameSpace); });
}

OuterSource::Objects GatewaySource::instances(CimDeclarationSink& sink, const Request& request) {
  if (isNeedless(request)) return {};
  const Turn turn(*this);
  return turn->instances(sink, request);
}

QORSmrPtr<IQoriObject> GatewaySource::instance(CimDeclarationSink& sink, const Request& request,
                                               const IQoriInstanceName& name) {
  if (isNeedless(request)) return {};
  const Turn turn(*this);
  turn->beginStatement();
  return turn->instance(sink, request, name);
}

OuterSource::Associations GatewaySource::associations(CimDeclarationSink& sink, const Request& request) {
  if (isNeedless(request)) return {};
  const Turn turn(*this);
  return turn->associations(sink, request);
}

OuterSource::Objects GatewaySource::references(CimDeclarationSink& sink, const Request& request,
                                               const IQoriInstanceName& source) {
  if (isNeedless(request)) return {};
  const Turn turn(*this);
  return turn->references(sink, request, source);
}
