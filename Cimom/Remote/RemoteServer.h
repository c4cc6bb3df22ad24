// One server: the operations that are asked of it.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTESERVER_H
#define QORQL_REMOTE_REMOTESERVER_H

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/Remote/RemoteServers.h"
#include "Cimom/Remote/RemoteTransport.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriProviderException.h"

// Collects the calls of all servers. Any thread.
class RemoteCallLog {
 public:
  void add(RemoteCall call) {
    const std::lock_guard lock(_mutex);
    _calls.push_back(std::move(call));
  }
  // Those since it was asked last.
  std::vector<RemoteCall> take() {
    const std::lock_guard lock(_mutex);
    return std::exchange(_calls, {});
  }

 private:
  std::mutex _mutex;
  std::vector<RemoteCall> _calls;
};

// The server answered with a status in the place of a result, which is the code.
class RemoteStatusException : public CQoriProviderException {
  using CQoriProviderException::CQoriProviderException;
};

// There is no such namespace, which is the one that was asked for.
class RemoteNameSpaceException : public RemoteStatusException {
  using RemoteStatusException::RemoteStatusException;
};

// The server cannot be reached, or sends nothing.
class RemoteSilentException : public CQoriProviderException {
  using CQoriProviderException::CQoriProviderException;
};

// A reply came and could not be read.
class RemoteReplyException : public CQoriProviderException {
  using CQoriProviderException::CQoriProviderException;
};

// Failures THROW CQoriProviderException with server, operation, class and
// namespace in the message, and the server's status as code. Instances and
// declarations go over connections of their own, so that two threads may use
// it at the same time, one for each.
class RemoteServer {
 public:
  // BORROWS log and flag.
  RemoteServer(RemoteServerOptions options, RemoteCallLog& log, const std::atomic<bool>& isStopped);
  RemoteServer(const RemoteServer&) = delete;
  RemoteServer& operator=(const RemoteServer&) = delete;

  const std::string& name() const noexcept { return _options.name; }
  bool hasGivenName() const noexcept { return _options.hasGivenName; }
  // The namespace that is asked on the server for this one.
  const QORString& nameSpaceFor(const QORString& nameSpace) const noexcept {
    const bool hasOther = !_options.nameSpace.isNull() &&
                          (_options.standsFor.isNull() || _options.standsFor.isEqualCaseInsensitive(nameSpace));
    return hasOther ? _options.nameSpace : nameSpace;
  }

  // Declarations. None where the server has no such class.
  std::optional<CimClassDeclaration> getClass(const QORString& nameSpace, const QORString& className);
  // Fetches all classes of the namespace, which getClass() then hands out; a server that does not tell them like this
  // is asked for each as before.
  void fetchClasses(const QORString& nameSpace);
  std::vector<QORString> classNames(const QORString& nameSpace);
  // Those that its interop namespace tells, interop namespaces excepted; none where it does not tell them.
  std::vector<QORString> nameSpaces();
  std::vector<CimQualifierDeclaration> qualifiers(const QORString& nameSpace);

  struct Taker {
    std::function<void(CimXmlInstance& instance)> take;  // what has been read; it may be changed
    CimXmlReply::MakeClassObject makeClassObject;        // of a class that is a value; null: refused
  };
  // The instances of the class and those derived from it, with the properties
  // that are named (null: all). False where the server has no such class. Which
  // operations the server knows is remembered.
  bool enumerateInstances(const QORString& nameSpace, const QORString& className, const CIMApi::PropertyNames& names,
                          const Taker& taker);
  // The instances that a query selects. False where the server knows none of the languages that it may be in, or
  // does not understand it: some may have been handed over then.
  bool execQuery(const QORString& nameSpace, const QORString& className, const std::string& query, const Taker& taker);
  // Returns whether there is such an instance.
  bool getInstance(const QORString& nameSpace, const IQoriInstanceName& name, const CIMApi::PropertyNames& names,
                   const Taker& taker);
  // The instances of an association that refer to a source; with an empty class, of all associations.
  void references(const QORString& nameSpace, const IQoriInstanceName& source, const QORString& associationClass,
                  const CIMApi::PropertyNames& names, const Taker& taker);
  // A status that says of a class of associations that its instances are not listed.
  static bool isUnwillingToList(const RemoteStatusException& status);

  // Whether instances are asked for in batches, as far as is known; for explanations.
  bool pullsInstances() const noexcept { return _pulls; }

 private:
  // One connection, made when it is first used.
  struct Line {
    std::unique_ptr<RemoteTransport> transport;
  };
  using Fill = std::function<void(CimXmlCall& call)>;
  using Read = std::function<void(CimXmlReply& reply, RemoteCall& record)>;

  void call(Line& line, const char* operation, const QORString& nameSpace, const QORString& subject, const Fill& fill,
            const Read& read);
  void exchange(Line& line, const QORString& nameSpace, const Fill& fill, const Read& read, RemoteCall& record);
  static std::string describe(const RemoteCall& record, const QORString& nameSpace, std::string_view message);
  enum class Opening { Open, NoSuchClass, UnknownOperation };
  Opening openEnumeration(const QORString& nameSpace, const QORString& className, const Fill& fill, const Read& read);
  Opening pullInstances(const QORString& nameSpace, const QORString& className, const CIMApi::PropertyNames& names,
                        const Taker& taker);
  bool enumerateAtOnce(const QORString& nameSpace, const QORString& className, const CIMApi::PropertyNames& names,
                       const Taker& taker);
  std::vector<QORString> nameSpacesIn(const QORString& interop);
  void askQuery(const QORString& nameSpace, const QORString& className, const char* language, const std::string& query,
                const Taker& taker);
  void closeEnumeration(const QORString& nameSpace, const QORString& className, const std::string& context) noexcept;

  const RemoteServerOptions _options;
  RemoteCallLog& _log;
  const std::atomic<bool>& _isStopped;
  Line _declarations;
  Line _instances;
  std::map<std::string, CimClassDeclaration> _fetched;  // not handed out yet, by namespace and class in upper case
  std::atomic<std::size_t> _language{0};                // of queries, the first that was not refused
  std::atomic<bool> _pulls{true};                       // until the server refuses it
  std::atomic<QORuint64> _lastId{0};
};

#endif
