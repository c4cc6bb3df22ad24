// Listeners that tests play, and a service that delivers to them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_UNIT_SERVER_PLAYEDLISTENERS_H
#define QORQL_TESTS_UNIT_SERVER_PLAYEDLISTENERS_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/ExportMessages.h"
#include "Cimom/Server/ExportTransport.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/IndicationService.h"
#include "tests/unit/Embedded/EmbeddedFixture.h"

namespace servertest {

// The text between two others; empty when they are not there.
inline std::string between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t from = text.find(begin);
  if (from == std::string::npos) return "";
  const std::size_t to = text.find(end, from + begin.size());
  return text.substr(from + begin.size(), to - from - begin.size());
}

// What one property of an exported indication holds.
inline std::string valueIn(const std::string& message, const std::string& property) {
  return between(between(message, "NAME=\"" + property + "\"", "</PROPERTY>"), "<VALUE>", "</VALUE>");
}

// All listeners of a test, by their URLs.
class PlayedListeners {
 public:
  // What a listener answers to a message; what it throws is a failure of the connection.
  using Answer = std::function<std::string(const std::string& message, const std::string& id)>;

  static std::string take(const std::string& /*message*/, const std::string& id) { return exportResponse(id); }

  // Those of other URLs take everything.
  void answer(const std::string& url, Answer answer) {
    const std::lock_guard lock(_mutex);
    _answers[url] = std::move(answer);
  }
  ExportTransportMaker maker() {
    return [this](const std::string& url, const std::atomic<bool>& isStopped) {
      return std::make_unique<Way>(*this, url, isStopped);
    };
  }
  // The messages that were answered, whatever with; waits for so many of them.
  std::vector<std::string> messages(const std::string& url, std::size_t count) {
    std::unique_lock lock(_mutex);
    _changed.wait_for(lock, std::chrono::seconds(20), [&] { return _messages[url].size() >= count; });
    return _messages[url];
  }
  std::vector<std::string> numbers(const std::string& url, std::size_t count) {
    std::vector<std::string> found;
    for (const std::string& message : messages(url, count)) found.push_back(valueIn(message, "SequenceNumber"));
    return found;
  }

 private:
  class Way final : public ExportTransport {
   public:
    Way(PlayedListeners& listeners, std::string url, const std::atomic<bool>& isStopped)
        : _listeners(listeners), _url(std::move(url)), _isStopped(isStopped) {}
    std::string post(const std::string& message) override {
      if (_isStopped) throw std::runtime_error("stopped");
      const Answer answer = _listeners.answerOf(_url);
      _listeners.note(_url, message);
      return answer(message, between(message, "<MESSAGE ID=\"", "\""));
    }

   private:
    PlayedListeners& _listeners;
    const std::string _url;
    const std::atomic<bool>& _isStopped;
  };

  Answer answerOf(const std::string& url) {
    const std::lock_guard lock(_mutex);
    const auto found = _answers.find(url);
    return found == _answers.end() ? Answer(take) : found->second;
  }
  void note(const std::string& url, const std::string& message) {
    const std::lock_guard lock(_mutex);
    _messages[url].push_back(message);
    _changed.notify_all();
  }

  std::mutex _mutex;
  std::condition_variable _changed;
  std::map<std::string, Answer> _answers;
  std::map<std::string, std::vector<std::string>> _messages;
};

// Waits until something is so; false when it takes too long.
inline bool comesTrue(const std::function<bool()>& is) {
  for (int looks = 0; looks < 1000; ++looks) {
    if (is()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

inline QORuint32 statusOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const QoriBaseException& refusal) {
    return refusal.getCode();
  }
  return 0;
}

// The indications of a short schema, and a class of disks whose changes make some.
inline void declareDisks(EmbeddedObjectManager& manager) {
  using namespace embeddedtest;
  const char* const space = EmbeddedObjectManager::kDefaultNamespace;
  const auto add = [&](const CimClassDeclaration& declaration) { manager.sink().declareClass(space, declaration); };
  const auto object = [](const char* name) { return property(name, CQoriType::string, {flag("EmbeddedObject")}); };
  add(classOf("CIM_Indication", "",
              {property("IndicationIdentifier", CQoriType::string), property("IndicationTime", CQoriType::datetime),
               property("IndicationFilterName", CQoriType::string), property("SequenceContext", CQoriType::string),
               property("SequenceNumber", CQoriType::sint64)}));
  add(classOf("CIM_InstIndication", "CIM_Indication",
              {object("SourceInstance"), property("SourceInstanceModelPath", CQoriType::string),
               property("SourceInstanceHost", CQoriType::string)}));
  add(classOf("CIM_InstCreation", "CIM_InstIndication", {}));
  add(classOf("CIM_InstDeletion", "CIM_InstIndication", {}));
  add(classOf("CIM_InstModification", "CIM_InstIndication", {object("PreviousInstance")}));
  add(classOf("CIM_AlertIndication", "CIM_Indication",
              {property("Message", CQoriType::string), property("EventID", CQoriType::string)}));
  add(classOf("Disk", "", {property("Name", CQoriType::string, {flag("Key")}), property("Size", CQoriType::uint64)}));
}

// A server's part for indications, which may be left and made again over the same file.
class Server {
 public:
  Server(PlayedListeners& listeners, const std::string& file, IndicationOptions options = {})
      : store(file), service(store, complete(std::move(options), listeners)) {
    manager = std::make_shared<EmbeddedObjectManager>();
    declareDisks(*manager);
    manager->makeCurrent();
    service.prepare(*manager);
    service.attach(manager);
  }

  QORSmrPtr<IQoriInstanceName> create(const char* nameSpace, const CimInstanceDeclaration& declaration) {
    return service.writer().create(*manager, nameSpace, declaration);
  }
  QORSmrPtr<IQoriInstanceName> createFilter(const char* name, const char* query) {
    return create(kSubscriptionSpace,
                  embeddedtest::instanceOf(kFilterClass, {{"Name", embeddedtest::text(name)},
                                                          {"Query", embeddedtest::text(query)},
                                                          {"QueryLanguage", embeddedtest::text("DMTF:CQL")}}));
  }
  QORSmrPtr<IQoriInstanceName> createHandler(const char* name, const char* url) {
    return create(kSubscriptionSpace,
                  embeddedtest::instanceOf(
                      kHandlerClass, {{"Name", embeddedtest::text(name)}, {"Destination", embeddedtest::text(url)}}));
  }
  QORSmrPtr<IQoriInstanceName> subscribe(const QORSmrPtr<IQoriInstanceName>& filter,
                                         const QORSmrPtr<IQoriInstanceName>& handler,
                                         std::vector<CimInstanceProperty> more = {}) {
    CimInstanceDeclaration declaration = embeddedtest::instanceOf(
        kSubscriptionClass,
        {{"Filter", embeddedtest::reference(filter)}, {"Handler", embeddedtest::reference(handler)}});
    for (CimInstanceProperty& each : more) declaration.properties.push_back(std::move(each));
    return create(kSubscriptionSpace, declaration);
  }
  QORSmrPtr<IQoriInstanceName> subscribe(const char* query, const char* url,
                                         std::vector<CimInstanceProperty> more = {}) {
    return subscribe(createFilter(query, query), createHandler(url, url), std::move(more));
  }
  QORSmrPtr<IQoriInstanceName> createDisk(const char* name, QORuint64 size = 1) {
    using namespace embeddedtest;
    return create(EmbeddedObjectManager::kDefaultNamespace,
                  instanceOf("Disk", {{"Name", text(name)}, {"Size", number(size)}}));
  }
  QORSmrPtr<IQoriObject> alert(const std::string& message, const char* event = "e") {
    using namespace embeddedtest;
    return manager->sink().makeObject(
        EmbeddedObjectManager::kDefaultNamespace,
        instanceOf("CIM_AlertIndication", {{"Message", text(message.c_str())}, {"EventID", text(event)}}));
  }
  void publish(const QORSmrPtr<IQoriObject>& indication) {
    service.publish({indication}, EmbeddedObjectManager::kDefaultNamespace);
  }
  void setRetry(unsigned attempts, unsigned interval) {
    using namespace embeddedtest;
    const auto services = manager->ownInstances(kSubscriptionSpace, kIndicationServiceClass, {});
    service.writer().modify(*manager, services->first()->getInstanceName(),
                            {{"DeliveryRetryAttempts", number(attempts, CQoriType::uint16)},
                             {"DeliveryRetryInterval", number(interval, CQoriType::uint32)}});
  }
  // A property of the only queue.
  std::string queueValue(const char* property) const {
    const auto queues = manager->ownInstances(kSubscriptionSpace, kQueueClass, {});
    if (queues->entries() != 1) return "there are " + std::to_string(queues->entries());
    const QORSmrPtr<IQoriValue> value(queues->first()->getProperty(property, true)->getValue());
    return value.IsNull() ? "NULL" : value->toString().c_str();
  }
  std::size_t countOf(const char* className) const {
    return manager->ownInstances(kSubscriptionSpace, className, {})->entries();
  }

  ServerStore store;
  std::shared_ptr<EmbeddedObjectManager> manager;
  IndicationService service;

 private:
  static IndicationOptions complete(IndicationOptions options, PlayedListeners& listeners) {
    static std::atomic<int> processes{0};
    options.origin = {
        "host",
        [] { return embeddedtest::Value(new CQoriValue(QORString("20260101000000.000000+000"), CQoriType::datetime)); },
        "test-" + std::to_string(++processes) + "-"};
    options.makeTransport = listeners.maker();
    options.intervalUnit = std::chrono::milliseconds(1);
    return options;
  }
};

}  // namespace servertest

#endif
