// Servers as a source of classes and instances for the object manager.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTESOURCE_H
#define QORQL_REMOTE_REMOTESOURCE_H

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Cimom/Embedded/OuterSource.h"
#include "Cimom/Remote/RemoteClasses.h"
#include "Cimom/Remote/RemoteIndex.h"
#include "Cimom/Remote/RemoteParallel.h"
#include "Cimom/Remote/RemoteServer.h"
#include "Cimom/Remote/RemoteServers.h"
#include "Cimom/Remote/RemoteWatch.h"

// Puts each question to all servers at the same time, on threads of its own.
class RemoteSource final : public RemoteServers {
 public:
  explicit RemoteSource(const RemoteSourceOptions& options);
  RemoteSource(const RemoteSource&) = delete;
  RemoteSource& operator=(const RemoteSource&) = delete;
  ~RemoteSource() override;

  // Has connections of its own to the same servers; what is known of the servers is known to both.
  std::shared_ptr<OuterSource> another() const override;
  bool mayHave(const QORString& nameSpace, const QORString& className) const override;
  bool provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) override;
  void provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) override;
  std::vector<QORString> classNames(const QORString& nameSpace) override;
  Objects instances(CimDeclarationSink& sink, const Request& request) override;
  QORSmrPtr<IQoriObject> instance(CimDeclarationSink& sink, const Request& request,
                                  const IQoriInstanceName& name) override;
  Associations associations(CimDeclarationSink& sink, const Request& request) override;
  Objects references(CimDeclarationSink& sink, const Request& request, const IQoriInstanceName& source) override;

  std::vector<std::string> serverNames() const override;
  std::vector<QORString> nameSpaces() override;

  void setStopRequest(const StopRequest& request) override {
    _stopRequest = request;
    _parallel.setStopRequest(request);
  }
  void beginStatement() override;
  void forgetLists() override;
  bool forgetIncompleteClasses() override { return _classes.forgetIncomplete(); }
  std::vector<std::string> takeFailures() override;
  std::vector<RemoteCall> takeCalls() override { return _calls.take(); }
  void askOnly(const QORString& className, std::set<std::string> servers) override;
  void askWith(const QORString& className, const std::string& condition) override;

 private:
  // What servers did, by their numbers; null for success.
  using Failures = std::map<std::size_t, std::exception_ptr>;
  // The single instances of a class that a statement asks for.
  struct Singles {
    std::size_t calls = 0;
    RemoteIndex all;  // of the class, once there were many calls
  };
  // Servers that tell the instances of associations for each source alone, which is what they are like: what one of
  // several sources has learned, the others know.
  struct Unlisted {
    std::mutex mutex;
    std::map<std::string, std::set<std::size_t>> servers;  // by namespace and class in upper case
  };
  using Work = std::function<void(RemoteServer& server, std::size_t number)>;

  RemoteSource(const RemoteSourceOptions& options, std::shared_ptr<RemoteWatch> watch,
               std::shared_ptr<Unlisted> unlisted);
  void learnListing(const Request& request, std::size_t server, bool isListing);
  // Of these, those that do not list.
  std::vector<std::size_t> unlisting(const Request& request, std::vector<std::size_t> servers) const;

  void askEach(const std::vector<std::size_t>& servers, const Work& work);
  void askOne(std::size_t server, std::size_t number, const Work& work);
  bool isLacking(std::size_t server, const QORString& nameSpace, const QORString& className) const;
  std::vector<std::size_t> serversWith(const QORString& nameSpace, const QORString& className) const;
  void settle(const std::vector<std::size_t>& asked, const Failures& failures);
  std::vector<std::size_t> serversFor(const QORString& className) const;
  std::vector<std::size_t> serversOf(const IQoriInstanceName& name, std::vector<std::size_t> servers) const;
  bool isOfNone(const IQoriInstanceName& name) const;
  RemoteClasses::Fetched fetchClass(const QORString& nameSpace, const QORString& className);
  bool wantsAllClasses(const QORString& nameSpace);
  void askServer(std::size_t number, CimDeclarationSink& sink, const Request& request, Objects& objects);
  QORSmrPtr<IQoriObject> askForInstance(CimDeclarationSink& sink, const Request& request,
                                        const IQoriInstanceName& name);
  bool askWithQuery(RemoteServer& server, CimDeclarationSink& sink, const Request& request,
                    const RemoteServer::Taker& taker);
  CIMApi::PropertyNames namesFor(const RemoteServer& server, const CIMApi::PropertyNames& names) const;

  const RemoteSourceOptions _options;
  const std::shared_ptr<RemoteWatch> _watch;  // null: each question asks
  const std::shared_ptr<Unlisted> _unlisted;
  StopRequest _stopRequest;
  RemoteCallLog _calls;
  RemoteParallel _parallel;
  std::vector<std::unique_ptr<RemoteServer>> _servers;
  RemoteClasses _classes;

  mutable std::mutex _mutex;                     // guards what follows
  std::map<std::size_t, std::string> _failures;  // of servers that are left out
  std::vector<std::string> _untold;
  std::optional<std::vector<QORString>> _nameSpaces;     // once all servers told them
  std::map<std::string, std::vector<QORString>> _names;  // of classes, by namespace in upper case
  std::map<std::string, std::size_t> _classCalls;        // by namespace in upper case, since its names are known
  std::map<std::string, Singles> _singles;               // by class and properties
  std::map<std::string, std::set<std::string>> _only;    // by class in upper case
  std::map<std::string, std::string> _conditions;        // by class in upper case
};

#endif
