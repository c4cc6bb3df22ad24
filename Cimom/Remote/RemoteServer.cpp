// Calls as documents of CIM-XML over a transport.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteServer.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Remote/RemoteBatches.h"
#include "Cimom/Remote/RemoteNames.h"

namespace {

using Clock = std::chrono::steady_clock;
using Item = CimXmlReply::Item;

enum Status : QORuint32 {
  kFailed = 1,
  kAccessDenied = 2,
  kInvalidNameSpace = 3,
  kInvalidClass = 5,
  kNotFound = 6,
  kNotSupported = 7,
  kLanguageNotSupported = 14,
  kLimitsExceeded = 27
};

// Each server has one of them.
constexpr const char* kInteropNameSpaces[] = {"root/interop", "interop"};

// Of queries, in the order in which they are tried.
constexpr const char* kLanguages[] = {"DMTF:CQL", "CQL", "WQL"};

// A namespace as the value of a header.
std::string percentEncoded(std::string_view text) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
                         c == '-' || c == '.' || c == '~';
    if (isPlain) {
      encoded += c;
      continue;
    }
    const auto byte = static_cast<unsigned char>(c);
    encoded.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
  }
  return encoded;
}

bool isInterop(const QORString& nameSpace) {
  return std::any_of(std::begin(kInteropNameSpaces), std::end(kInteropNameSpaces),
                     [&](const char* interop) { return nameSpace.isEqualCaseInsensitive(interop); });
}

void addPropertyList(CimXmlCall& call, const CIMApi::PropertyNames& names) {
  if (names.IsNull()) return;
  std::vector<QORString> list;
  QORValSlistIterator<QORString> each(*names);
  while (++each) list.push_back(each.key());
  call.addTexts("PropertyList", list);
}

void askForDeclarations(CimXmlCall& call) {
  call.addFlag("LocalOnly", true);
  call.addFlag("IncludeQualifiers", true);
  call.addFlag("IncludeClassOrigin", true);
}

std::string classKey(const QORString& nameSpace, const QORString& className) {
  return std::string((QORString::toUpperCase(nameSpace) + ":" + QORString::toUpperCase(className)).view());
}

// What a reply in batches says besides its instances.
struct Batch {
  std::string context;
  bool isLast = false;
  bool saysWhetherLast = false;
};

void noteOutput(const CimXmlReply& reply, Batch& batch) {
  const QORString name(reply.outputName());
  if (name.isEqualCaseInsensitive("EnumerationContext")) batch.context = reply.outputText();
  if (!name.isEqualCaseInsensitive("EndOfSequence")) return;
  batch.saysWhetherLast = true;
  batch.isLast = QORString::equalIgnoringCase(reply.outputText(), "TRUE");
}

void readInstances(CimXmlReply& reply, RemoteCall& record, const RemoteServer::Taker& taker, Batch& batch) {
  reply.setMakeClassObject(taker.makeClassObject);
  for (Item item = reply.next(); item != Item::End; item = reply.next()) {
    if (item == Item::Output) noteOutput(reply, batch);
    if (item != Item::Instance) continue;
    ++record.items;
    taker.take(reply.takeInstance());
  }
}

// Reads a reply that nothing but instances belong to.
auto readAllTo(const RemoteServer::Taker& taker) {
  return [&taker](CimXmlReply& reply, RemoteCall& record) {
    Batch batch;
    readInstances(reply, record, taker, batch);
  };
}

void requireSound(const Batch& batch) {
  if (!batch.saysWhetherLast) throw std::runtime_error("the reply does not say whether it is the last one");
  if (!batch.isLast && batch.context.empty()) throw std::runtime_error("the reply has no EnumerationContext");
}

}  // namespace

RemoteServer::RemoteServer(RemoteServerOptions options, RemoteCallLog& log, const std::atomic<bool>& isStopped)
    : _options(std::move(options)), _log(log), _isStopped(isStopped) {}

// What the caller's own code throws has its message already.
void RemoteServer::call(Line& line, const char* operation, const QORString& nameSpace, const QORString& subject,
                        const Fill& fill, const Read& read) {
  RemoteCall record{_options.name, operation, std::string(subject.view()), {}, 0, 0, 0, true};
  const QORString& asked = nameSpaceFor(nameSpace);
  const QORString who(_options.name);
  const Clock::time_point start = Clock::now();
  const auto note = [&] {
    record.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    _log.add(record);
  };
  const auto describe = [&](std::string_view message) {
    note();
    return QORString(RemoteServer::describe(record, asked, message));
  };
  try {
    exchange(line, asked, fill, read, record);
    record.hasFailed = false;
    note();
  } catch (const CQoriProviderException&) {
    note();
    throw;
  } catch (const CimStatusException& status) {
    const QORString message = describe(status.getMessage().view());
    const bool isOfNameSpace = status.getCode() == kInvalidNameSpace && &asked == &nameSpace;
    if (isOfNameSpace) throw RemoteNameSpaceException(who, message, kInvalidNameSpace);
    throw RemoteStatusException(who, message, status.getCode());
  } catch (const RemoteUnknownOperation& refusal) {
    throw RemoteStatusException(who, describe(refusal.what()), kNotSupported);
  } catch (const QoriBaseException& error) {
    throw RemoteReplyException(who, describe(error.getMessage().view()), kFailed);
  } catch (const RemoteEndlessBatches& error) {
    throw RemoteReplyException(who, describe(error.what()), kFailed);
  } catch (const RemoteSilence& silence) {
    throw RemoteSilentException(who, describe(silence.what()), kFailed);
  } catch (const std::runtime_error& error) {
    throw CQoriProviderException(who, describe(error.what()), kFailed);
  }
}

void RemoteServer::exchange(Line& line, const QORString& nameSpace, const Fill& fill, const Read& read,
                            RemoteCall& record) {
  if (line.transport == nullptr) line.transport = makeRemoteTransport(_options.endpoint, _options.limits, _isStopped);
  const std::string id = std::to_string(++_lastId);
  CimXmlCall call(id, record.operation, nameSpace);
  fill(call);
  RemotePost post{
      {"CIMOperation: MethodCall", "CIMMethod: " + record.operation, "CIMObject: " + percentEncoded(nameSpace.view())},
      call.finish()};
  const std::unique_ptr<RemoteExchange> exchange = line.transport->post(std::move(post));
  try {
    const auto source = [&](char* buffer, std::size_t capacity) {
      const std::size_t count = exchange->read(buffer, capacity);
      record.replyBytes += count;
      return count;
    };
    CimXmlReply reply(source, record.operation, id, nameSpace);
    read(reply, record);
  } catch (...) {
    record.traffic = exchange->traffic();
    throw;
  }
  record.traffic = exchange->traffic();
}

std::string RemoteServer::describe(const RemoteCall& record, const QORString& nameSpace, std::string_view message) {
  std::string text = record.server + ": " + record.operation;
  if (!record.subject.empty()) text += " of " + record.subject;
  return text + " in " + std::string(nameSpace.view()) + ": " + std::string(message);
}

std::optional<CimClassDeclaration> RemoteServer::getClass(const QORString& nameSpace, const QORString& className) {
  std::optional<CimClassDeclaration> found;
  if (auto known = _fetched.extract(classKey(nameSpace, className)); !known.empty()) return std::move(known.mapped());
  const auto fill = [&className](CimXmlCall& call) {
    call.addClassName("ClassName", className);
    askForDeclarations(call);
  };
  const auto read = [&found](CimXmlReply& reply, RemoteCall& record) {
    for (Item item = reply.next(); item != Item::End; item = reply.next()) {
      if (item != Item::Class) continue;
      ++record.items;
      found = reply.classDeclaration();
    }
    if (!found) throw std::runtime_error("the reply holds no class");
  };
  try {
    call(_declarations, "GetClass", nameSpace, className, fill, read);
  } catch (const RemoteStatusException& status) {
    if (status.getCode() != kInvalidClass && status.getCode() != kNotFound) throw;
    return std::nullopt;
  }
  return found;
}

void RemoteServer::fetchClasses(const QORString& nameSpace) {
  const auto fill = [](CimXmlCall& call) {
    call.addFlag("DeepInheritance", true);
    askForDeclarations(call);
  };
  const auto read = [&](CimXmlReply& reply, RemoteCall& record) {
    for (Item item = reply.next(); item != Item::End; item = reply.next()) {
      if (item != Item::Class) continue;
      ++record.items;
      const CimClassDeclaration& declaration = reply.classDeclaration();
      _fetched.insert_or_assign(classKey(nameSpace, declaration.name), declaration);
    }
  };
  try {
    call(_declarations, "EnumerateClasses", nameSpace, {}, fill, read);
  } catch (const RemoteStatusException&) {
    return;
  } catch (const RemoteReplyException&) {
    return;
  }
}

std::vector<QORString> RemoteServer::classNames(const QORString& nameSpace) {
  std::vector<QORString> names;
  call(
      _declarations, "EnumerateClassNames", nameSpace, {},
      [](CimXmlCall& call) { call.addFlag("DeepInheritance", true); },
      [&names](CimXmlReply& reply, RemoteCall& record) {
        for (Item item = reply.next(); item != Item::End; item = reply.next()) {
          if (item != Item::Name) continue;
          ++record.items;
          names.push_back(reply.name()->getClassName());
        }
      });
  return names;
}

// Of the instances the names alone are of use; their class need not be declared here.
std::vector<QORString> RemoteServer::nameSpacesIn(const QORString& interop) {
  std::vector<QORString> names;
  const CIMApi::PropertyNames wanted(new QORValSlist<QORString>);
  wanted->append("Name");
  const auto take = [&](CimXmlInstance& instance) {
    for (const CimXmlProperty& property : instance.properties()) {
      if (property.value.IsNull() || !property.name.isEqualCaseInsensitive("Name")) continue;
      const QORString name = property.value->toString();
      if (!isInterop(name)) names.push_back(name);
    }
  };
  enumerateInstances(interop, "CIM_Namespace", wanted, {take, {}});
  return names;
}

std::vector<QORString> RemoteServer::nameSpaces() {
  for (const char* const interop : kInteropNameSpaces) {
    try {
      std::vector<QORString> names = nameSpacesIn(interop);
      if (!names.empty()) return names;
    } catch (const RemoteNameSpaceException&) {
      continue;
    } catch (const RemoteStatusException& status) {
      if (status.getCode() != kAccessDenied && status.getCode() != kNotSupported) throw;
    }
  }
  return {};
}

std::vector<CimQualifierDeclaration> RemoteServer::qualifiers(const QORString& nameSpace) {
  std::vector<CimQualifierDeclaration> found;
  call(
      _declarations, "EnumerateQualifiers", nameSpace, {}, [](CimXmlCall&) {},
      [&found](CimXmlReply& reply, RemoteCall& record) {
        for (Item item = reply.next(); item != Item::End; item = reply.next()) {
          if (item != Item::Qualifier) continue;
          ++record.items;
          found.push_back(reply.qualifierDeclaration());
        }
      });
  return found;
}

bool RemoteServer::enumerateInstances(const QORString& nameSpace, const QORString& className,
                                      const CIMApi::PropertyNames& names, const Taker& taker) {
  if (!_pulls) return enumerateAtOnce(nameSpace, className, names, taker);
  const Opening opening = pullInstances(nameSpace, className, names, taker);
  if (opening != Opening::UnknownOperation) return opening == Opening::Open;
  const bool isThere = enumerateAtOnce(nameSpace, className, names, taker);
  _pulls = false;
  return isThere;
}

RemoteServer::Opening RemoteServer::openEnumeration(const QORString& nameSpace, const QORString& className,
                                                    const Fill& fill, const Read& read) {
  try {
    call(_instances, "OpenEnumerateInstances", nameSpace, className, fill, read);
  } catch (const RemoteStatusException& status) {
    if (status.getCode() == kInvalidClass) return Opening::NoSuchClass;
    if (status.getCode() != kNotSupported && status.getCode() != kFailed) throw;
    return Opening::UnknownOperation;
  }
  return Opening::Open;
}

// A status in the place of a later batch is a failure, whichever it is: the instances that came are not all, even where
// the namespace is there no more.
RemoteServer::Opening RemoteServer::pullInstances(const QORString& nameSpace, const QORString& className,
                                                  const CIMApi::PropertyNames& names, const Taker& taker) {
  Batch batch;
  RemoteBatches batches(_options.limits.enumerationBytes);
  const auto noteAndTake = [&](CimXmlInstance& instance) {
    batches.addInstance(instance.name);
    taker.take(instance);
  };
  const Taker noting{noteAndTake, taker.makeClassObject};
  const auto read = [&](CimXmlReply& reply, RemoteCall& record) {
    batch = Batch();
    readInstances(reply, record, noting, batch);
    requireSound(batch);
    if (!batch.isLast) batches.note(record.replyBytes);
  };
  const auto open = [&](CimXmlCall& call) {
    call.addClassName("ClassName", className);
    call.addFlag("DeepInheritance", true);
    call.addFlag("IncludeClassOrigin", false);
    addPropertyList(call, names);
    call.addNumber("MaxObjectCount", _options.batch);
  };
  const auto pull = [&](CimXmlCall& call) {
    call.addText("EnumerationContext", batch.context);
    call.addNumber("MaxObjectCount", _options.batch);
  };
  const Opening opening = openEnumeration(nameSpace, className, open, read);
  if (opening != Opening::Open) return opening;
  while (!batch.isLast) {
    const std::string context = batch.context;
    try {
      call(_instances, "PullInstancesWithPath", nameSpace, className, pull, read);
    } catch (const RemoteReplyException&) {
      closeEnumeration(nameSpace, className, context);
      throw;
    } catch (const RemoteNameSpaceException& status) {
      throw CQoriProviderException(status.getWho(), status.getMessage(), kFailed);
    }
  }
  return Opening::Open;
}

// So that the server need not keep what nobody will ask for. One that does not answer is not kept waiting for: it
// forgets by itself.
void RemoteServer::closeEnumeration(const QORString& nameSpace, const QORString& className,
                                    const std::string& context) noexcept {
  if (_isStopped) return;
  try {
    call(
        _instances, "CloseEnumeration", nameSpace, className,
        [&context](CimXmlCall& call) { call.addText("EnumerationContext", context); },
        [](CimXmlReply& reply, RemoteCall&) { reply.next(); });
  } catch (const std::exception&) {
    return;
  }
}

bool RemoteServer::enumerateAtOnce(const QORString& nameSpace, const QORString& className,
                                   const CIMApi::PropertyNames& names, const Taker& taker) {
  const auto fill = [&](CimXmlCall& call) {
    call.addClassName("ClassName", className);
    call.addFlag("LocalOnly", false);
    call.addFlag("DeepInheritance", true);
    call.addFlag("IncludeQualifiers", false);
    call.addFlag("IncludeClassOrigin", false);
    addPropertyList(call, names);
  };
  try {
    call(_instances, "EnumerateInstances", nameSpace, className, fill, readAllTo(taker));
  } catch (const RemoteStatusException& status) {
    if (status.getCode() != kInvalidClass) throw;
    return false;
  }
  return true;
}

void RemoteServer::askQuery(const QORString& nameSpace, const QORString& className, const char* language,
                            const std::string& query, const Taker& taker) {
  const auto fill = [&](CimXmlCall& call) {
    call.addText("QueryLanguage", language);
    call.addText("Query", query);
  };
  call(_instances, "ExecQuery", nameSpace, className, fill, readAllTo(taker));
}

// A server that knows no language is not asked again.
bool RemoteServer::execQuery(const QORString& nameSpace, const QORString& className, const std::string& query,
                             const Taker& taker) {
  while (_language < std::size(kLanguages)) {
    try {
      askQuery(nameSpace, className, kLanguages[_language], query, taker);
      return true;
    } catch (const RemoteStatusException& status) {
      if (status.getCode() == kNotSupported) _language = std::size(kLanguages);
      if (status.getCode() != kLanguageNotSupported) return false;
      ++_language;
    }
  }
  return false;
}

bool RemoteServer::getInstance(const QORString& nameSpace, const IQoriInstanceName& name,
                               const CIMApi::PropertyNames& names, const Taker& taker) {
  bool isThere = false;
  const QORSmrPtr<IQoriInstanceName> there = remote::nameThere(name, nameSpace, nameSpaceFor(nameSpace));
  const auto fill = [&](CimXmlCall& call) {
    call.addInstanceName("InstanceName", *there);
    call.addFlag("LocalOnly", false);
    call.addFlag("IncludeQualifiers", false);
    call.addFlag("IncludeClassOrigin", false);
    addPropertyList(call, names);
  };
  const auto read = [&](CimXmlReply& reply, RemoteCall& record) {
    reply.setMakeClassObject(taker.makeClassObject);
    for (Item item = reply.next(); item != Item::End; item = reply.next()) {
      if (item != Item::Instance || isThere) continue;
      ++record.items;
      isThere = true;
      taker.take(reply.takeInstance());
    }
  };
  try {
    call(_instances, "GetInstance", nameSpace, name.getClassName(), fill, read);
  } catch (const RemoteStatusException& status) {
    if (status.getCode() != kInvalidClass && status.getCode() != kNotFound) throw;
    return false;
  }
  return isThere;
}

void RemoteServer::references(const QORString& nameSpace, const IQoriInstanceName& source,
                              const QORString& associationClass, const CIMApi::PropertyNames& names,
                              const Taker& taker) {
  const QORSmrPtr<IQoriInstanceName> there = remote::nameThere(source, nameSpace, nameSpaceFor(nameSpace));
  const auto fill = [&](CimXmlCall& call) {
    call.addInstanceName("ObjectName", *there);
    if (!associationClass.isEmpty()) call.addClassName("ResultClass", associationClass);
    call.addFlag("IncludeQualifiers", false);
    call.addFlag("IncludeClassOrigin", false);
    addPropertyList(call, names);
  };
  try {
    call(_instances, "References", nameSpace, associationClass, fill, readAllTo(taker));
  } catch (const RemoteStatusException& status) {
    if (status.getCode() != kInvalidClass && status.getCode() != kNotFound) throw;
  }
}

bool RemoteServer::isUnwillingToList(const RemoteStatusException& status) {
  return status.getCode() == kFailed || status.getCode() == kNotSupported || status.getCode() == kLimitsExceeded;
}
