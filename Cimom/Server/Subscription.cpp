// Reads the instances, and refuses what the rules forbid.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/Subscription.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>
#include <string_view>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/IndicationClasses.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

[[noreturn]] void refuseValue(const std::string& message) {
  throw CimStatusException(cimstatus::kInvalidParameter, message);
}

std::string textOf(const IQoriObject& object, const char* property) {
  const QORSmrPtr<IQoriValue> value(valueOf(object, property));
  return value.IsNull() ? "" : value->toString().c_str();
}

QORuint64 numberOf(const IQoriObject& object, const char* property, QORuint64 otherwise) {
  const QORSmrPtr<IQoriValue> value(valueOf(object, property));
  return value.IsNull() ? otherwise : value->getUint64();
}

// A number from a range, which a message names.
QORuint64 choiceOf(const IQoriObject& object, const char* property, QORuint64 least, QORuint64 greatest) {
  const QORuint64 value = numberOf(object, property, least);
  if (value < least || value > greatest) {
    refuseValue(std::string(property) + " is " + std::to_string(value) + ", and here it can be " +
                std::to_string(least) + " to " + std::to_string(greatest));
  }
  return value;
}

std::vector<QORString> sourceSpaces(const IQoriObject& object) {
  std::vector<QORString> names;
  const QORSmrPtr<IQoriValue> listed(valueOf(object, "SourceNamespaces"));
  if (!listed.IsNull()) {
    const QORSmrPtr<IQoriValue::List> elements(listed->getArray());
    QORValSlistIterator<QORSmrPtr<IQoriValue>> each(*elements);
    while (++each) {
      if (each.key().IsNull()) continue;
      const QORString name = each.key()->toString();
      // Named twice it would have each indication twice.
      const bool isThere = std::any_of(names.begin(), names.end(),
                                       [&](const QORString& other) { return other.isEqualCaseInsensitive(name); });
      if (!isThere) names.push_back(name);
    }
  }
  const std::string single = textOf(object, "SourceNamespace");
  if (names.empty()) names.emplace_back(single.empty() ? EmbeddedObjectManager::kDefaultNamespace : single.c_str());
  return names;
}

// The engine has one name for the language that clients call by several.
QORString languageOf(const IQoriObject& object) {
  const QORString language(textOf(object, "QueryLanguage"));
  return language.isEmpty() || language.isEqualCaseInsensitive("CIM:CQL") ? QORString("DMTF:CQL") : language;
}

FilterStatement statementOf(const QORString& language, const QORString& query, const QORString& nameSpace) {
  const FilterStatement statement(new CQLQueryStatement(language, query, kSubscriptionSpace, nameSpace));
  switch (statement->validate()) {
    case QUERY_UNSUPPORTED_LANGUAGE:
      throw CimStatusException(
          cimstatus::kQueryLanguageNotSupported,
          "the query language " + std::string(language.view()) + " is not known: give DMTF:CQL, CIM:CQL, CQL or WQL");
    case QUERY_INVALID_QUERY:
      throw CimStatusException(cimstatus::kInvalidQuery, std::string(statement->getFault().message.view()) +
                                                             " (namespace " + std::string(nameSpace.view()) + ")");
    default:
      return statement;
  }
}

std::string referred(const IQoriObject& object, const char* property) {
  const QORSmrPtr<IQoriValue> value(valueOf(object, property));
  if (value.IsNull() || value->getReference().IsNull()) refuseValue(std::string(property) + " is missing");
  return value->getReference()->toString().c_str();
}

// Bounded, since clocks count in parts of seconds that overflow.
std::chrono::seconds secondsOf(const IQoriObject& object, const char* property) {
  constexpr QORuint64 kTenYears = QORuint64{10} * 366 * 24 * 3600;
  return std::chrono::seconds(std::min(numberOf(object, property, 0), kTenYears));
}

// What stands in the URL before the path, behind the scheme; nothing for another scheme.
std::string_view authorityOf(std::string_view url) {
  for (const std::string_view scheme : {"http://", "https://"}) {
    if (!QORString::equalIgnoringCase(url.substr(0, scheme.size()), scheme)) continue;
    const std::string_view rest = url.substr(scheme.size());
    return rest.substr(0, rest.find_first_of("/?#"));
  }
  return {};
}

// Nothing at all is the scheme's own port.
bool isPort(std::string_view text) {
  constexpr unsigned kMost = 65535;
  if (text.empty()) return true;
  if (text.front() != ':') return false;
  unsigned port = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data() + 1, end, port);
  return error == std::errc() && last == end && port >= 1 && port <= kMost;
}

bool isUrl(const std::string& text) {
  const bool isPlain =
      std::none_of(text.begin(), text.end(), [](char one) { return static_cast<unsigned char>(one) <= ' '; });
  std::string_view place = authorityOf(text);
  place.remove_prefix(place.rfind('@') == std::string_view::npos ? 0 : place.rfind('@') + 1);
  const bool isNumeric = !place.empty() && place.front() == '[';
  const std::size_t end = isNumeric ? place.find(']') : std::min(place.find(':'), place.size());
  if (!isPlain || end == std::string_view::npos || end <= (isNumeric ? 1U : 0U)) return false;
  if (!isNumeric) return isPort(place.substr(end));
  const std::string address(place.substr(1, end - 1));
  in6_addr read{};
  return inet_pton(AF_INET6, address.c_str(), &read) == 1 && isPort(place.substr(end + 1));
}

RepeatRule readRepeat(const IQoriObject& object) {
  RepeatRule rule;
  rule.policy = static_cast<RepeatRule::Policy>(choiceOf(object, "RepeatNotificationPolicy", 2, 4));
  rule.count = numberOf(object, "RepeatNotificationCount", 0);
  rule.interval = secondsOf(object, "RepeatNotificationInterval");
  rule.gap = secondsOf(object, "RepeatNotificationGap");
  if (rule.policy == RepeatRule::Policy::None) return rule;
  if (rule.interval.count() == 0) refuseValue("RepeatNotificationPolicy needs a RepeatNotificationInterval");
  if (valueOf(object, "RepeatNotificationCount").IsNull()) {
    refuseValue("RepeatNotificationPolicy needs a RepeatNotificationCount");
  }
  return rule;
}

}  // namespace

std::string urlWithoutPassword(const std::string& url) {
  const std::size_t scheme = url.find("://");
  const std::size_t begin = scheme == std::string::npos ? 0 : scheme + 3;
  const std::size_t at = url.rfind('@');
  return at == std::string::npos || at < begin ? url : url.substr(0, begin) + "***@" + url.substr(at + 1);
}

QORSmrPtr<IQoriValue> valueOf(const IQoriObject& object, const char* property) {
  const QORSmrPtr<IQoriProperty> found(object.getProperty(property, true));
  return found.IsNull() ? QORSmrPtr<IQoriValue>() : found->getValue();
}

SubscriptionFilter readFilter(const IQoriObject& object) {
  SubscriptionFilter filter;
  filter.path = pathOf(object);
  filter.name = QORString(textOf(object, "Name"));
  const QORString query(textOf(object, "Query"));
  if (query.isEmpty()) refuseValue("a filter needs a Query");
  const QORString language = languageOf(object);
  for (const QORString& nameSpace : sourceSpaces(object)) {
    filter.statements.push_back(statementOf(language, query, nameSpace));
  }
  return filter;
}

ListenerDestination readDestination(const IQoriObject& object) {
  ListenerDestination destination;
  destination.path = pathOf(object);
  destination.name = object.getInstanceName();
  destination.url = textOf(object, "Destination");
  if (!isUrl(destination.url)) {
    refuseValue("Destination is \"" + urlWithoutPassword(destination.url) + "\", and has to be a URL of http or https");
  }
  constexpr QORuint64 kTransient = 3;
  destination.isTransient = choiceOf(object, "PersistenceType", 2, kTransient) == kTransient;
  return destination;
}

Subscription readSubscription(const IQoriObject& object) {
  constexpr QORuint64 kEnabled = 2;
  constexpr QORuint64 kDisabled = 4;
  Subscription subscription;
  subscription.path = pathOf(object);
  subscription.name = object.getInstanceName();
  subscription.filter = referred(object, "Filter");
  subscription.handler = referred(object, "Handler");
  const QORuint64 state = numberOf(object, "SubscriptionState", kEnabled);
  if (state != kEnabled && state != kDisabled) {
    refuseValue("SubscriptionState is " + std::to_string(state) + ", and here it can be 2 or 4");
  }
  subscription.isEnabled = state == kEnabled;
  subscription.onFailure = static_cast<Subscription::OnFailure>(choiceOf(object, "OnFatalErrorPolicy", 2, 4));
  subscription.failureInterval = secondsOf(object, "FailureTriggerTimeInterval");
  if (!valueOf(object, "SubscriptionDuration").IsNull()) {
    refuseValue("SubscriptionDuration is not supported: a subscription lasts until it is deleted");
  }
  subscription.repeat = readRepeat(object);
  return subscription;
}
