// Each question goes to all servers at the same time; the answers keep the servers' order.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteSource.h"

#include <algorithm>
#include <utility>

#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Embedded/Restrictor.h"
#include "Cimom/Remote/RemoteNames.h"
#include "Cimom/Remote/RemoteObjects.h"
#include "cimom/CQoriInstanceName.h"

namespace {

// Calls for single classes of a namespace that is being walked through before all of them are fetched.
constexpr std::size_t kFewClasses = 10;

// Calls for single instances of a class before all of them are fetched.
constexpr std::size_t kFewSingles = 3;

std::string fold(const QORString& name) { return std::string(QORString::toUpperCase(name).view()); }

std::string messageOf(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const QoriBaseException& error) {
    return std::string(error.getMessage().view());
  } catch (const std::exception& error) {
    return error.what();
  }
}

// What a server selects comes without its name: the keys are asked for as properties.
std::string queryOf(const CQoriClass& model, const CIMApi::PropertyNames& names, const std::string& condition) {
  std::string list;
  std::set<std::string> met;
  const auto add = [&](const QORString& name) {
    if (met.insert(fold(name)).second) list.append(list.empty() ? "" : ", ").append(name.view());
  };
  if (names.IsNull()) {
    list = "*";
  } else {
    for (const QORuint32 position : model.keyPositions()) add(model.shape()->layout->getName(position));
    QORValSlistIterator<QORString> each(*names);
    while (++each) {
      const QORsint32 position = model.position(each.key());
      if (position >= 0) add(model.shape()->layout->getName(static_cast<QORuint32>(position)));
    }
  }
  return "SELECT " + list + " FROM " + std::string(model.getClassName().view()) + " WHERE " + condition;
}

// Each once.
std::vector<QORString> joinedNames(const std::vector<std::vector<QORString>>& found) {
  std::vector<QORString> names;
  std::set<std::string> met;
  for (const std::vector<QORString>& ofOne : found) {
    for (const QORString& name : ofOne) {
      if (met.insert(fold(name)).second) names.push_back(name);
    }
  }
  return names;
}

OuterSource::Objects joined(std::vector<OuterSource::Objects>&& found) {
  OuterSource::Objects all = found.empty() ? OuterSource::Objects() : std::move(found.front());
  for (std::size_t i = 1; i < found.size(); ++i) {
    all.insert(all.end(), std::make_move_iterator(found[i].begin()), std::make_move_iterator(found[i].end()));
  }
  return all;
}

}  // namespace

RemoteSource::RemoteSource(const RemoteSourceOptions& options)
    : RemoteSource(options, options.isWatched ? std::make_shared<RemoteWatch>(options.servers) : nullptr,
                   std::make_shared<Unlisted>()) {}

RemoteSource::RemoteSource(const RemoteSourceOptions& options, std::shared_ptr<RemoteWatch> watch,
                           std::shared_ptr<Unlisted> unlisted)
    : _options(options),
      _watch(std::move(watch)),
      _unlisted(std::move(unlisted)),
      _parallel(_options.parallel),
      _classes(
          [this](const QORString& nameSpace, const QORString& className) { return fetchClass(nameSpace, className); },
          _options.servers.front().hasGivenName) {
  for (const RemoteServerOptions& server : _options.servers) {
    _servers.push_back(std::make_unique<RemoteServer>(server, _calls, _parallel.isStopped()));
  }
}

RemoteSource::~RemoteSource() = default;

std::shared_ptr<OuterSource> RemoteSource::another() const {
  const std::shared_ptr<RemoteSource> other(new RemoteSource(_options, _watch, _unlisted));
  other->setStopRequest(_stopRequest);
  return other;
}

bool RemoteSource::isLacking(std::size_t server, const QORString& nameSpace, const QORString& className) const {
  return _watch != nullptr && _watch->isLacking(server, nameSpace, className);
}

bool RemoteSource::mayHave(const QORString& nameSpace, const QORString& className) const {
  bool isLackingOnAll = true;
  for (std::size_t i = 0; i < _servers.size(); ++i) {
    isLackingOnAll = isLacking(i, nameSpace, className) && isLackingOnAll;
  }
  return !isLackingOnAll;
}

bool RemoteSource::provideClass(CimDeclarationSink& sink, const QORString& nameSpace, const QORString& className) {
  return _classes.provide(sink, nameSpace, className);
}

std::vector<std::string> RemoteSource::serverNames() const {
  std::vector<std::string> names;
  for (const auto& server : _servers) names.push_back(server->name());
  return names;
}

// What stops a call is told by whoever asked for it; of several servers the first that failed is told.
void RemoteSource::askEach(const std::vector<std::size_t>& servers, const Work& work) {
  std::mutex mutex;
  Failures failures;
  const bool isComplete = _parallel.run(servers.size(), [&](std::size_t i) {
    const auto note = [&] {
      const std::lock_guard lock(mutex);
      failures.emplace(servers[i], std::current_exception());
    };
    try {
      askOne(servers[i], i, work);
    } catch (const RemoteNameSpaceException&) {
      if (!_options.mayLackNameSpaces) note();
    } catch (...) {
      note();
    }
  });
  if (failures.empty()) return;
  if (!isComplete) std::rethrow_exception(failures.begin()->second);
  settle(servers, failures);
}

void RemoteSource::askOne(std::size_t server, std::size_t number, const Work& work) {
  if (_watch != nullptr) _watch->requireAnswers(server);
  try {
    work(*_servers[server], number);
  } catch (const RemoteSilentException&) {
    if (_watch != nullptr) _watch->noteSilence(server, std::current_exception());
    throw;
  }
}

void RemoteSource::settle(const std::vector<std::size_t>& asked, const Failures& failures) {
  const bool isFatal = _options.requiresAll || failures.size() == asked.size();
  if (isFatal) std::rethrow_exception(failures.begin()->second);
  const std::lock_guard lock(_mutex);
  for (const auto& [server, failure] : failures) {
    const std::string message = messageOf(failure);
    if (_failures.emplace(server, message).second) _untold.push_back(message);
  }
}

std::vector<std::size_t> RemoteSource::serversFor(const QORString& className) const {
  const std::lock_guard lock(_mutex);
  const auto only = _only.find(fold(className));
  std::vector<std::size_t> servers;
  for (std::size_t i = 0; i < _servers.size(); ++i) {
    const bool isWanted = only == _only.end() || only->second.contains(_servers[i]->name());
    if (isWanted && !_failures.contains(i)) servers.push_back(i);
  }
  return servers;
}

std::vector<std::size_t> RemoteSource::serversWith(const QORString& nameSpace, const QORString& className) const {
  std::vector<std::size_t> servers = serversFor(className);
  std::erase_if(servers, [&](std::size_t server) { return isLacking(server, nameSpace, className); });
  return servers;
}

// Whoever asks for one class after the other, having asked for their names, wants all of them.
bool RemoteSource::wantsAllClasses(const QORString& nameSpace) {
  const std::string key = fold(nameSpace);
  const std::lock_guard lock(_mutex);
  const auto names = _names.find(key);
  return names != _names.end() && names->second.size() > kFewClasses && _classCalls[key]++ == kFewClasses;
}

RemoteClasses::Fetched RemoteSource::fetchClass(const QORString& nameSpace, const QORString& className) {
  if (wantsAllClasses(nameSpace)) {
    askEach(serversFor({}), [&](RemoteServer& server, std::size_t) { server.fetchClasses(nameSpace); });
  }
  const std::vector<std::size_t> servers = serversFor({});
  std::vector<std::optional<CimClassDeclaration>> found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) { found[i] = server.getClass(nameSpace, className); });
  RemoteClasses::Fetched fetched;
  for (std::optional<CimClassDeclaration>& one : found) {
    if (one.has_value()) fetched.declarations.push_back(std::move(*one));
  }
  const std::lock_guard lock(_mutex);
  fetched.isComplete = _failures.empty();
  return fetched;
}

// Qualifiers are of use where classes are shown; a server that does not tell them is no failure.
void RemoteSource::provideQualifiers(CimDeclarationSink& sink, const QORString& nameSpace) {
  const std::vector<std::size_t> servers = serversFor({});
  std::vector<std::vector<CimQualifierDeclaration>> found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) {
    try {
      found[i] = server.qualifiers(nameSpace);
    } catch (const RemoteStatusException&) {
      found[i].clear();
    }
  });
  for (const std::vector<CimQualifierDeclaration>& declarations : found) {
    for (const CimQualifierDeclaration& declaration : declarations) {
      CimQualifierDeclaration known;
      if (!sink.describeQualifier(nameSpace, declaration.name, known)) sink.declareQualifier(nameSpace, declaration);
    }
  }
}

std::vector<QORString> RemoteSource::classNames(const QORString& nameSpace) {
  const std::string key = fold(nameSpace);
  {
    const std::lock_guard lock(_mutex);
    if (const auto known = _names.find(key); known != _names.end()) return known->second;
  }
  const std::vector<std::size_t> servers = serversFor({});
  std::vector<std::vector<QORString>> found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) { found[i] = server.classNames(nameSpace); });
  std::vector<QORString> names = joinedNames(found);
  const std::lock_guard lock(_mutex);
  if (_failures.empty() && !names.empty()) _names[key] = names;
  return names;
}

std::vector<QORString> RemoteSource::nameSpaces() {
  {
    const std::lock_guard lock(_mutex);
    if (_nameSpaces) return *_nameSpaces;
  }
  const std::vector<std::size_t> servers = serversFor({});
  std::vector<std::vector<QORString>> found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) { found[i] = server.nameSpaces(); });
  std::vector<QORString> names = joinedNames(found);
  const std::lock_guard lock(_mutex);
  if (_failures.empty()) _nameSpaces = names;
  return names;
}

OuterSource::Objects RemoteSource::instances(CimDeclarationSink& sink, const Request& request) {
  const QORSmrPtr<IQoriClass> declared = sink.findClass(request.nameSpace, request.className);
  if (declared.IsNull()) return {};
  const Request spelled{request.nameSpace, declared->getClassName(), request.names};
  const std::vector<std::size_t> servers = serversWith(spelled.nameSpace, spelled.className);
  std::vector<Objects> found(servers.size());
  askEach(servers, [&](RemoteServer&, std::size_t i) {
    Objects objects;
    askServer(servers[i], sink, spelled, objects);
    found[i] = std::move(objects);
  });
  return joined(std::move(found));
}

void RemoteSource::askServer(std::size_t number, CimDeclarationSink& sink, const Request& request, Objects& objects) {
  RemoteServer& server = *_servers[number];
  RemoteObjects maker(server, _classes, sink, request.nameSpace, request.className);
  const RemoteServer::Taker taker =
      maker.taker([&](CimXmlInstance& instance) { objects.push_back(maker.make(instance)); });
  const Request own{request.nameSpace, request.className, namesFor(server, request.names)};
  if (askWithQuery(server, sink, own, taker)) return;
  objects.clear();
  const bool hasClass = server.enumerateInstances(own.nameSpace, own.className, own.names, taker);
  if (!hasClass && _watch != nullptr) _watch->noteLack(number, own.nameSpace, own.className);
}

// False when there is no query, and when the server does not understand it: then everything is asked for.
bool RemoteSource::askWithQuery(RemoteServer& server, CimDeclarationSink& sink, const Request& request,
                                const RemoteServer::Taker& taker) {
  std::string condition;
  {
    const std::lock_guard lock(_mutex);
    const auto found = _conditions.find(fold(request.className));
    if (found == _conditions.end()) return false;
    condition = found->second;
  }
  const QORSmrPtr<IQoriClass> declared = sink.findClass(request.nameSpace, request.className);
  const std::string query = queryOf(static_cast<const CQoriClass&>(*declared), request.names, condition);
  return server.execQuery(request.nameSpace, request.className, query, taker);
}

// The server does not know the property that was added here.
CIMApi::PropertyNames RemoteSource::namesFor(const RemoteServer& server, const CIMApi::PropertyNames& names) const {
  if (names.IsNull() || !server.hasGivenName()) return names;
  CIMApi::PropertyNames own(new QORValSlist<QORString>);
  QORValSlistIterator<QORString> each(*names);
  while (++each) {
    if (!each.key().isEqualCaseInsensitive(kRemoteServerProperty)) own->append(each.key());
  }
  return own;
}

// A statement that asks for one instance after the other has the whole class instead, whose instances have the names
// of their servers in their paths.
QORSmrPtr<IQoriObject> RemoteSource::instance(CimDeclarationSink& sink, const Request& request,
                                              const IQoriInstanceName& name) {
  if (isOfNone(name)) return askForInstance(sink, request, name);
  Singles* singles = nullptr;
  {
    const std::lock_guard lock(_mutex);
    singles = &_singles[fold(request.className) + '\n' + embedded::propertyNamesKey(request.names)];
  }
  if (++singles->calls <= kFewSingles) return askForInstance(sink, request, name);
  if (singles->calls == kFewSingles + 1) {
    for (const QORSmrPtr<IQoriObject>& object : instances(sink, request)) singles->all.add(object);
  }
  const RemoteIndex::Found found = singles->all.find(name);
  return found.isUncertain ? askForInstance(sink, request, name) : found.object;
}

QORSmrPtr<IQoriObject> RemoteSource::askForInstance(CimDeclarationSink& sink, const Request& request,
                                                    const IQoriInstanceName& name) {
  const std::vector<std::size_t> servers = serversOf(name, serversWith(request.nameSpace, name.getClassName()));
  const QORSmrPtr<IQoriInstanceName> given(
      new CQoriInstanceName(name.getClassName(), name.getKeys(), name.getNameSpacePath()));
  Objects found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) {
    RemoteObjects maker(server, _classes, sink, request.nameSpace, request.className);
    const auto take = [&](CimXmlInstance& instance) {
      instance.name = given;
      found[i] = maker.make(instance);
    };
    server.getInstance(request.nameSpace, name, namesFor(server, request.names), maker.taker(take));
  });
  std::vector<std::size_t> holders;
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (!found[i].IsNull()) holders.push_back(i);
  }
  if (holders.size() > 1) {
    std::string names;
    for (const std::size_t i : holders) names += (names.empty() ? "" : ", ") + _servers[servers[i]]->name();
    throw CQoriProviderException(QORString(names),
                                 name.toString() + " is there on several servers: " + QORString(names),
                                 static_cast<QORuint32>(embedded::CimStatus::Failed));
  }
  return holders.empty() ? QORSmrPtr<IQoriObject>() : found[holders.front()];
}

// Whether a path tells nothing of a server, though paths of their instances begin with their names.
bool RemoteSource::isOfNone(const IQoriInstanceName& name) const {
  const QORString& nameSpace = name.getNameSpacePath()->getNameSpace();
  return _servers.front()->hasGivenName() && remote::serverOf(nameSpace.view()).empty();
}

// Of these, the one that a path names; all of them where it names none.
std::vector<std::size_t> RemoteSource::serversOf(const IQoriInstanceName& name,
                                                 std::vector<std::size_t> servers) const {
  const QORString& nameSpace = name.getNameSpacePath()->getNameSpace();
  const std::string_view wanted = remote::serverOf(nameSpace.view());
  std::erase_if(servers, [&](std::size_t i) { return !wanted.empty() && _servers[i]->name() != wanted; });
  return servers;
}

// A server that does not list an association's instances may tell those of each source.
OuterSource::Associations RemoteSource::associations(CimDeclarationSink& sink, const Request& request) {
  const std::vector<std::size_t> servers = serversWith(request.nameSpace, request.className);
  std::vector<Objects> found(servers.size());
  askEach(servers, [&](RemoteServer&, std::size_t i) {
    try {
      askServer(servers[i], sink, request, found[i]);
      learnListing(request, servers[i], true);
    } catch (const RemoteStatusException& status) {
      if (!RemoteServer::isUnwillingToList(status)) throw;
      found[i].clear();
      learnListing(request, servers[i], false);
    }
  });
  return {joined(std::move(found)), unlisting(request, servers).empty()};
}

void RemoteSource::learnListing(const Request& request, std::size_t server, bool isListing) {
  const std::lock_guard lock(_unlisted->mutex);
  std::set<std::size_t>& servers = _unlisted->servers[fold(request.nameSpace) + ':' + fold(request.className)];
  isListing ? static_cast<void>(servers.erase(server)) : static_cast<void>(servers.insert(server));
}

std::vector<std::size_t> RemoteSource::unlisting(const Request& request, std::vector<std::size_t> servers) const {
  const std::lock_guard lock(_unlisted->mutex);
  const auto found = _unlisted->servers.find(fold(request.nameSpace) + ':' + fold(request.className));
  if (found == _unlisted->servers.end()) return {};
  std::erase_if(servers, [&](std::size_t i) { return !found->second.contains(i); });
  return servers;
}

OuterSource::Objects RemoteSource::references(CimDeclarationSink& sink, const Request& request,
                                              const IQoriInstanceName& source) {
  std::vector<std::size_t> servers = serversOf(source, serversWith(request.nameSpace, request.className));
  if (request.className.isEmpty()) {
    // A path without a server's name is none of an instance that a named one has.
    if (isOfNone(source)) return {};
  } else {
    servers = unlisting(request, std::move(servers));
  }
  std::vector<Objects> found(servers.size());
  askEach(servers, [&](RemoteServer& server, std::size_t i) {
    RemoteObjects maker(server, _classes, sink, request.nameSpace, request.className);
    server.references(request.nameSpace, source, request.className, namesFor(server, request.names),
                      maker.taker([&](CimXmlInstance& instance) { found[i].push_back(maker.make(instance)); }));
  });
  return joined(std::move(found));
}

void RemoteSource::beginStatement() {
  _classes.forgetMissing();
  static_cast<void>(_calls.take());
  const std::lock_guard lock(_mutex);
  _failures.clear();
  _untold.clear();
  _singles.clear();
  _only.clear();
  _conditions.clear();
}

void RemoteSource::forgetLists() {
  const std::lock_guard lock(_mutex);
  _names.clear();
  _nameSpaces.reset();
}

std::vector<std::string> RemoteSource::takeFailures() {
  const std::lock_guard lock(_mutex);
  return std::exchange(_untold, {});
}

void RemoteSource::askOnly(const QORString& className, std::set<std::string> servers) {
  const std::lock_guard lock(_mutex);
  _only[fold(className)] = std::move(servers);
}

void RemoteSource::askWith(const QORString& className, const std::string& condition) {
  const std::lock_guard lock(_mutex);
  _conditions[fold(className)] = condition;
}
