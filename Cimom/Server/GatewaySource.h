// The outer servers of a server, asked by many threads.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_GATEWAYSOURCE_H
#define QORQL_SERVER_GATEWAYSOURCE_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Cimom/Embedded/OuterSource.h"

// Asks several questions at a time, each of a source of its own where there is another one; what is known without
// asking waits for nobody. A question that waits for its turn is given up when the thread's monitor asks for that. What
// a source remembers is forgotten after two seconds, and before each single instance, so that clients see what the
// servers have now; the lists of classes and namespaces are remembered for longer, also that there is nothing in a
// namespace. The interop namespaces are this server's own, of which others are not asked. Any number of threads may
// ask.
class GatewaySource final : public OuterSource {
 public:
  explicit GatewaySource(std::shared_ptr<OuterSource> source,
                         std::chrono::milliseconds listsRemembered = std::chrono::seconds(30));

  bool mayHave(const QORString& nameSpace, const QORString& className) const override;

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

  // What one question at a time is asked of.
  struct Asker {
    explicit Asker(std::shared_ptr<OuterSource> asked) : source(std::move(asked)) {}

    const std::shared_ptr<OuterSource> source;
    Clock::time_point begun;
    bool isBusy = false;
  };
  // The turn of one question, until it is destroyed.
  class Turn {
   public:
    // Waits for it. THROWS CQoriProviderException when it is given up.
    explicit Turn(GatewaySource& gateway);
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn();
    OuterSource* operator->() const noexcept { return _asker.source.get(); }
    OuterSource& source() const noexcept { return *_asker.source; }

   private:
    Turn(GatewaySource& gateway, Asker& asker) noexcept : _gateway(gateway), _asker(asker) {}

    GatewaySource& _gateway;
    Asker& _asker;
  };

  // A list as it was told.
  struct Known {
    std::vector<QORString> names;
    Clock::time_point end{};
  };
  using Ask = std::function<std::vector<QORString>(OuterSource& source)>;

  std::vector<QORString> list(const std::string& key, const Ask& ask);
  std::vector<QORString> keep(const std::string& key, std::vector<QORString> names);
  bool isNeedless(const Request& request) const;
  Asker& takeAsker();
  // Null when all are busy. REQUIRES the lock.
  Asker* freeAsker();

  const std::shared_ptr<OuterSource> _source;  // of the first asker
  const std::chrono::milliseconds _listsRemembered;
  std::mutex _mutex;  // guards what follows
  std::condition_variable _isFree;
  std::vector<std::unique_ptr<Asker>> _askers;
  std::map<std::string, Known> _lists;  // of classes by namespace in upper case; of namespaces by no name
};

#endif
