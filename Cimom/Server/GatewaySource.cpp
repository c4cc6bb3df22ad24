// Passes questions on.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/GatewaySource.h"

#include "Cimom/Server/InteropModel.h"

namespace {

constexpr std::chrono::seconds kRemembered{2};

// Clients that look for the interop namespace under its other name would take an outer server's for this one's.
bool isOwn(const QORString& nameSpace) noexcept {
  return nameSpace.isEqualCaseInsensitive(kInteropNameSpace) || nameSpace.isEqualCaseInsensitive("interop");
}

}  // namespace

std::unique_lock<std::mutex> GatewaySource::begin() {
  std::unique_lock<std::mutex> lock(_mutex);
  const Clock::time_point now = Clock::now();
  if (now - _begun > kRemembered) {
    _source->beginStatement();
    _begun = now;
  }
  return lock;
}

// A class that is there is found without waiting for those who ask servers.
bool GatewaySource::provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) {
  if (!sink.findClass(nameSpace, className).IsNull()) return true;
  if (isOwn(nameSpace)) return false;
  const auto lock = begin();
  return _source->provideClass(sink, nameSpace, className);
}

void GatewaySource::provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) {
  if (isOwn(nameSpace)) return;
  const auto lock = begin();
  _source->provideQualifiers(sink, nameSpace);
}

std::vector<QORString> GatewaySource::nameSpaces() {
  const auto lock = begin();
  return _source->nameSpaces();
}

std::vector<QORString> GatewaySource::classNames(const QORString& nameSpace) {
  if (isOwn(nameSpace)) return {};
  const auto lock = begin();
  return _source->classNames(nameSpace);
}

OuterSource::Objects GatewaySource::instances(CimDeclarationSink& sink, const Request& request) {
  if (isOwn(request.nameSpace)) return {};
  const auto lock = begin();
  return _source->instances(sink, request);
}

QORSmrPtr<IQoriObject> GatewaySource::instance(CimDeclarationSink& sink, const Request& request,
                                               const IQoriInstanceName& name) {
  if (isOwn(request.nameSpace)) return {};
  const auto lock = begin();
  _source->beginStatement();
  return _source->instance(sink, request, name);
}

OuterSource::Associations GatewaySource::associations(CimDeclarationSink& sink, const Request& request) {
  if (isOwn(request.nameSpace)) return {};
  const auto lock = begin();
  return _source->associations(sink, request);
}

OuterSource::Objects GatewaySource::references(CimDeclarationSink& sink, const Request& request,
                                               const IQoriInstanceName& source) {
  if (isOwn(request.nameSpace)) return {};
  const auto lock = begin();
  return _source->references(sink, request, source);
}
