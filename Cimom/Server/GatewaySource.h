// The outer servers of a server, asked by many threads.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_GATEWAYSOURCE_H
#define QORQL_SERVER_GATEWAYSOURCE_H

#include <chrono>
#include <memory>
#include <mutex>

#include "Cimom/Embedded/OuterSource.h"

// Asks one question after the other. What the source remembers is forgotten after two seconds, and before each single
// instance, so that clients see what the servers have now. The interop namespaces are this server's own, of which
// others are not asked. Any number of threads may ask.
class GatewaySource final : public OuterSource {
 public:
  explicit GatewaySource(std::shared_ptr<OuterSource> source) : _source(std::move(source)) {}

  std::vector<std::string> serverNames() const override { return _source->serverNames(); }
  std::vector<QORString> nameSpaces() override;
  bool provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) override;
  void provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) override;
  std::vector<QORString> classNames(const QORString& nameSpace) override;
  Objects instances(CimDeclarationSink& sink, const Request& request) override;
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink& sink, const Request& request,
                                  const IQoriInstanceName& name) override;
  Associations associations(CimDeclarationSink& sink, const Request& request) override;
  Objects references(CimDeclarationSink& sink, const Request& request, const IQoriInstanceName& source) override;

 private:
  using Clock = std::chrono::steady_clock;

  std::unique_lock<std::mutex> begin();

  const std::shared_ptr<OuterSource> _source;
  std::mutex _mutex;  // guards the source and what follows
  Clock::time_point _begun;
};

#endif
