// The limits are a table, so that each has an option, a key of the configuration and a line in the help.
// SPDX-License-Identifier: Apache-2.0
#include "ServeOptions.h"

#include <ini.h>
#include <strings.h>

#include <algorithm>
#include <charconv>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "OptionDeclarations.h"
#include "ServerAddress.h"

namespace {

constexpr const char* kSection = "server";
constexpr const char* kEngineSection = "ZEMO";
constexpr const char* kDefaultAddress = "127.0.0.1:5988";

struct Limit {
  std::uint64_t otherwise;
  std::uint64_t most;
};

constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kDay = 86400;

// In the order of the help, each with what holds otherwise.
const std::map<std::string, Limit> kLimits = {
    {"body", {16 * kMegabyte, 4096 * kMegabyte}},
    {"connections", {128, 10000}},
    {"contexts", {64, 100000}},
    {"drain", {30, kDay}},
    {"failures", {10, 1000000}},
    {"failure-wait", {60, kDay}},
    {"idle", {60, kDay}},
    {"memory", {1024 * kMegabyte, kMegabyte* kMegabyte}},
    {"query", {300, 7 * kDay}},
};

std::string namesOfLimits() {
  std::string names;
  for (const auto& limit : kLimits) names += (names.empty() ? "" : ", ") + limit.first;
  return names;
}

// "16M"; 0 for what is no such number.
std::uint64_t settingNumber(std::string_view text) {
  std::uint64_t unit = 1;
  if (text.ends_with('K')) unit = std::uint64_t{1} << 10;
  if (text.ends_with('M')) unit = kMegabyte;
  if (text.ends_with('G')) unit = kMegabyte << 10;
  if (unit != 1) text.remove_suffix(1);
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isGood = error == std::errc() && end == text.data() + text.size() && number <= UINT64_MAX / unit;
  return isGood ? number * unit : 0;
}

// What is wrong with a limit.
std::string faultOfLimit(const std::string& name, const std::string& value) {
  const auto known = kLimits.find(name);
  if (known == kLimits.end()) return "'" + name + "' is not one of " + namesOfLimits();
  const std::uint64_t number = settingNumber(value);
  if (number >= 1 && number <= known->second.most) return {};
  return "'" + value + "' is not a whole number from 1 to " + std::to_string(known->second.most);
}

std::pair<std::string, std::string> limitIn(const std::string& given) {
  const std::size_t equals = std::min(given.find('='), given.size());
  return {given.substr(0, equals), given.substr(std::min(equals + 1, given.size()))};
}

bool flagOf(const std::string& value) {
  if (value == "yes" || value == "true") return true;
  if (value == "no" || value == "false") return false;
  throw std::runtime_error("'" + value + "' is not yes or no");
}

std::string checkInterval(const std::string& given) {
  constexpr double kShortest = 0.01;
  const double seconds = parseSeconds(given);
  const bool isInRange = seconds >= kShortest && seconds <= static_cast<double>(kDay);
  return isInRange ? "" : "'" + given + "' is not a number from 0.01 to 86400";
}

// What the keys of the section say, where the command line has not spoken.
class Section {
 public:
  // BORROWS both.
  Section(const ServeOptions& given, ServeOptions& out) : _given(given), _out(out) {}

  // THROWS std::runtime_error.
  void take(const std::string& key, const std::string& value) {
    if (kLimits.contains(key)) return takeLimit(key, value);
    if (key == "listen") return add(_given.addresses, _out.addresses, value);
    if (key == "mof") return add(_given.session.mofPaths, _out.session.mofPaths, value);
    if (key == "server") return addServer(value);
    if (key == "namespace") return takeNamespace(value);
    if (key == "tls-cert") return set(_given.certificate.file, _out.certificate.file, value);
    if (key == "tls-key") return set(_given.certificate.keyFile, _out.certificate.keyFile, value);
    if (key == "users") return set(_given.usersFile, _out.usersFile, value);
    if (key == "store") return set(_given.storeFile, _out.storeFile, value);
    if (key == "listener-ca") return set(_given.listeners.caFile, _out.listeners.caFile, value);
    if (key == "interval") return takeInterval(value);
    if (key == "writable") return void(_out.isWritable = _given.isWritable || flagOf(value));
    if (key == "live") return void(_out.session.hasNoLiveClasses = _given.session.hasNoLiveClasses || !flagOf(value));
    throw std::runtime_error(
        "there is no such key; there are interval, listen, listener-ca, live, mof, namespace, server, store, "
        "tls-cert, tls-key, users, writable, " +
        namesOfLimits());
  }

 private:
  void takeLimit(const std::string& key, const std::string& value) {
    const std::string fault = faultOfLimit(key, value);
    if (!fault.empty()) throw std::runtime_error(fault);
    if (!_given.limits.contains(key)) _out.limits.insert_or_assign(key, settingNumber(value));
  }
  void takeInterval(const std::string& value) {
    const std::string fault = checkInterval(value);
    if (!fault.empty()) throw std::runtime_error(fault);
    if (!_given.interval) _out.interval = parseSeconds(value);
  }
  static void add(const std::vector<std::string>& given, std::vector<std::string>& out, const std::string& value) {
    if (given.empty()) out.push_back(value);
  }
  static void set(const std::string& given, std::string& out, const std::string& value) {
    if (given.empty()) out = value;
  }
  void addServer(const std::string& value) {
    if (_given.session.servers.servers.empty()) _out.session.servers.servers.push_back(readServerAddress(value));
  }
  void takeNamespace(const std::string& value) {
    if (!_given.session.isNamespaceGiven) _out.session.nameSpace = value;
  }

  const ServeOptions& _given;
  ServeOptions& _out;
};

// One reading of a file.
struct Reading {
  Section& section;
  std::string fault{};
};

// A forgotten letter would otherwise be a server without users.
std::string faultOfSection(const char* section) {
  if (strcasecmp(section, kEngineSection) == 0) return {};
  return std::string("there is no section [") + section + "]; there are " + kSection + " and " + kEngineSection;
}

int takeKey(void* given, const char* section, const char* key, const char* value) {
  Reading& reading = *static_cast<Reading*>(given);
  if (!reading.fault.empty()) return 1;
  if (std::string_view(section) != kSection) {
    reading.fault = faultOfSection(section);
    return 1;
  }
  try {
    reading.section.take(key, value);
  } catch (const std::runtime_error& refusal) {
    reading.fault = std::string("[") + kSection + "] " + key + ": " + refusal.what();
  }
  return 1;
}

void requireCertificate(const ServeOptions& options) {
  if (options.certificate.file.empty() == options.certificate.keyFile.empty()) return;
  throw std::runtime_error("--tls-cert and --tls-key go together");
}

// Which would be noticed by the first indication only.
void requireListenerCa(const std::string& path) {
  if (path.empty() || std::ifstream(path).peek() != std::ifstream::traits_type::eof()) return;
  throw std::runtime_error("there are no certificates of listeners in " + path);
}

}  // namespace

void declareServeOptions(CLI::App& app, ServeOptions& options) {
  declareValue(app, {.names = "--listen",
                     .type = "ADDRESS:PORT",
                     .description = "Listen here (repeatable; default: 127.0.0.1:5988; port 0: any that is free)",
                     .take = keepIn(options.addresses),
                     .isRepeatable = true});
  declareValue(app, {.names = "--tls-cert",
                     .type = "FILE",
                     .description = "Speak TLS, with the certificates of this file (PEM)",
                     .take = keepIn(options.certificate.file),
                     .check = checkFile});
  declareValue(app, {.names = "--tls-key",
                     .type = "FILE",
                     .description = "The private key of the certificate (PEM)",
                     .take = keepIn(options.certificate.keyFile),
                     .check = checkFile});
  declareValue(app, {.names = "--users",
                     .type = "FILE",
                     .description = "Answer these users alone, whom qorql passwd writes into the file",
                     .take = keepIn(options.usersFile),
                     .check = checkFile});
  declareFlag(app, "--writable", options.isWritable, "Let clients create, modify and delete stored instances");
  declareValue(app, {.names = "--store",
                     .type = "FILE",
                     .description = "Keep what clients write, and indications that wait, in this file",
                     .take = keepIn(options.storeFile)});
  declareValue(app, {.names = "--interval",
                     .type = "SECONDS",
                     .description = "Seconds between two looks at live classes for subscriptions (default: 5)",
                     .take = [&options](const std::string& given) { options.interval = parseSeconds(given); },
                     .check = checkInterval});
  declareValue(app, {.names = "--listener-ca",
                     .type = "FILE",
                     .description = "Know listeners of https by these certificates (PEM), not by the system's",
                     .take = keepIn(options.listeners.caFile),
                     .check = checkFile});
  declareValue(app, {.names = "--limit",
                     .type = "NAME=NUMBER",
                     .description = "Set a limit, as in body=16M (repeatable)",
                     .take =
                         [&options](const std::string& given) {
                           const auto [name, value] = limitIn(given);
                           options.limits.insert_or_assign(name, settingNumber(value));
                         },
                     .check =
                         [](const std::string& given) {
                           const auto [name, value] = limitIn(given);
                           return faultOfLimit(name, value);
                         },
                     .isRepeatable = true});
}

ServeOptions withConfiguration(const ServeOptions& given) {
  ServeOptions out = given;
  Section section(given, out);
  Reading reading{section};
  const std::string& file = given.session.configuration;
  const int line = file.empty() ? 0 : ini_parse(file.c_str(), &takeKey, &reading);
  if (line < 0) throw std::runtime_error("cannot read " + file);
  if (line > 0) throw std::runtime_error(file + ':' + std::to_string(line) + ": this is no line of a configuration");
  if (!reading.fault.empty()) throw std::runtime_error(file + ": " + reading.fault);
  for (const Setting& setting : given.session.settings) {
    takeKey(&reading, setting.section.c_str(), setting.key.c_str(), setting.value.c_str());
  }
  if (!reading.fault.empty()) throw std::runtime_error("--set " + reading.fault);
  requireCertificate(out);
  requireListenerCa(out.listeners.caFile);
  if (out.addresses.empty()) out.addresses.emplace_back(kDefaultAddress);
  return out;
}

std::vector<std::string> keptSettings(const ServeOptions& started, const ServeOptions& now) {
  const std::pair<const char*, bool> settings[] = {
      {"listen", started.addresses != now.addresses},
      {"store", started.storeFile != now.storeFile},
      {"tls-cert", started.certificate.file != now.certificate.file},
      {"tls-key", started.certificate.keyFile != now.certificate.keyFile},
      {"users", started.usersFile != now.usersFile},
      {"writable", started.isWritable != now.isWritable},
  };
  std::vector<std::string> kept;
  for (const auto& [name, isOther] : settings) {
    if (isOther) kept.emplace_back(name);
  }
  return kept;
}

std::uint64_t limitOf(const ServeOptions& options, const std::string& name) {
  const auto given = options.limits.find(name);
  return given == options.limits.end() ? kLimits.at(name).otherwise : given->second;
}

HttpOptions httpOptionsOf(const ServeOptions& options) {
  const auto number = [&options](const char* name) { return static_cast<unsigned>(limitOf(options, name)); };
  HttpOptions http;
  http.addresses = options.addresses;
  http.certificate = options.certificate;
  http.usersFile = options.usersFile;
  http.limits.bodyBytes = limitOf(options, "body");
  http.limits.connections = number("connections");
  http.limits.idleSeconds = number("idle");
  http.limits.failures = number("failures");
  http.limits.failureSeconds = number("failure-wait");
  http.logsRequests = !options.session.isQuiet;
  return http;
}

ServerLimits serverLimitsOf(const ServeOptions& options) {
  ServerLimits limits;
  limits.query = std::chrono::seconds(limitOf(options, "query"));
  limits.enumerations = limitOf(options, "contexts");
  limits.memory = limitOf(options, "memory");
  return limits;
}
