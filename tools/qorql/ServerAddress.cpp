// URLs are taken apart here, so that what is wrong with one is said in words that help, and a password is never shown.
// SPDX-License-Identifier: Apache-2.0
#include "ServerAddress.h"

#include <ini.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "TextInput.h"
#include "cmpbase.h"

namespace {

constexpr std::string_view kMark = "://";

[[noreturn]] void refuse(const std::string& message) { throw std::runtime_error(message); }

bool isHostNameCharacter(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '-' || c == '.';
}

bool isName(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), isHostNameCharacter);
}

int digitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string percentDecoded(std::string_view text) {
  std::string decoded;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == '%' && i + 2 < text.size() && digitOf(text[i + 1]) >= 0 && digitOf(text[i + 2]) >= 0;
    if (isCode) {
      decoded += static_cast<char>(digitOf(text[i + 1]) * 16 + digitOf(text[i + 2]));
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

// The user before the host's @, which is taken off.
std::string takeUser(std::string_view& authority) {
  const std::size_t at = authority.rfind('@');
  if (at == std::string_view::npos) return {};
  const std::string_view user = authority.substr(0, at);
  authority.remove_prefix(at + 1);
  if (user.find(':') != std::string_view::npos) {
    refuse(
        "a password does not belong into a URL, where others can read it: leave it out, and give --password-file "
        "FILE or an entry in ~/.netrc, or type it when you are asked");
  }
  return percentDecoded(user);
}

// What follows the host's colon; nothing where there is none.
std::optional<std::string_view> portOf(std::string_view host) {
  const std::size_t bracket = host.rfind(']');
  const std::size_t colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
  if (colon == std::string_view::npos) return std::nullopt;
  return host.substr(colon + 1);
}

bool isPort(std::string_view text) {
  unsigned number = 0;
  const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), number);
  return read.ec == std::errc() && read.ptr == text.data() + text.size() && number >= 1 && number <= 65535;
}

// A password with / ? or # ends what a URL says about its host, and the rest of it stands where nobody looks for a
// password. What is wrong is not shown, since it may be one.
void requireHost(std::string_view authority, std::string_view rest) {
  if (rest.find('@') != std::string_view::npos) {
    refuse(
        "the URL of a server has an @ behind its host; the signs / ? # @ of a user are written as %2F %3F %23 %40, and "
        "a password does not belong into a URL");
  }
  if (authority.empty() || authority.front() == ':') refuse("the URL of a server names no host");
  const std::optional<std::string_view> port = portOf(authority);
  if (port && !isPort(*port)) {
    refuse("what follows the host's colon in the URL of a server is not a port, a number from 1 to 65535");
  }
}

// Without a port the one that the protocol has for servers of CIM; without a path the usual one.
void readUrl(std::string_view text, ServerAddress& out) {
  const std::size_t mark = text.find(kMark);
  const std::string_view scheme = text.substr(0, mark);
  const bool isSecure = QORString::equalIgnoringCase(scheme, "https");
  if (!isSecure && !QORString::equalIgnoringCase(scheme, "http")) {
    refuse("a server's URL begins with https:// or http://, not with " + std::string(scheme) + std::string(kMark));
  }
  text.remove_prefix(mark + kMark.size());
  const std::size_t slash = std::min(text.find_first_of("/?#"), text.size());
  const std::string_view rest = text.substr(slash);
  std::string_view authority = text.substr(0, slash);
  const std::string user = takeUser(authority);
  if (!user.empty()) out.user = user;
  requireHost(authority, rest);
  const std::string path = rest.empty() || rest == "/" ? "/cimom" : std::string(rest);
  const std::string port = portOf(authority) ? "" : isSecure ? ":5989" : ":5988";
  out.url = std::string(isSecure ? "https" : "http") + std::string(kMark) + std::string(authority) + port + path;
  if (out.name.empty()) out.name = std::string(authority);
}

struct ProfileSearch {
  std::string wanted;
  ServerAddress found;
  std::string url;
  bool isFound = false;
  std::string wrong;
  std::string known;  // the names of all profiles
  std::string lastSection;
};

bool readFlag(const std::string& text) {
  if (QORString::equalIgnoringCase(text, "true")) return true;
  if (QORString::equalIgnoringCase(text, "false")) return false;
  refuse("insecure is true or false, not " + text);
}

void takeKey(ProfileSearch& search, const std::string& key, const std::string& value) {
  ServerAddress& found = search.found;
  if (key == "url") {
    search.url = value;
  } else if (key == "user") {
    found.user = value;
  } else if (key == "password-file") {
    found.passwordFile = value;
  } else if (key == "ca-file") {
    found.caFile = value;
  } else if (key == "namespace") {
    found.nameSpace = value;
  } else if (key == "insecure") {
    found.isInsecure = readFlag(value);
  } else if (key == "password") {
    refuse(
        "a password does not belong into a profile: put it into a file that only you can read, and name that with "
        "password-file");
  } else {
    refuse("there is no key " + key +
           "; those of a profile are url, user, password-file, ca-file, namespace and "
           "insecure");
  }
}

extern "C" int takeProfileLine(void* self, const char* section, const char* key, const char* value) {
  ProfileSearch& search = *static_cast<ProfileSearch*>(self);
  if (search.lastSection != section) {
    search.lastSection = section;
    search.known += (search.known.empty() ? "" : ", ") + search.lastSection;
  }
  if (search.wanted != section) return 1;
  search.isFound = true;
  try {
    takeKey(search, key, value);
  } catch (const std::exception& error) {
    search.wrong = error.what();
    return 0;
  }
  return 1;
}

// Files of a profile that are not absolute lie beside it.
void resolveFile(std::string& file, const std::string& profiles) {
  if (file.empty()) return;
  if (file.starts_with("~/") && std::getenv("HOME") != nullptr) file = std::getenv("HOME") + file.substr(1);
  file = (std::filesystem::path(profiles).parent_path() / file).string();
}

ServerAddress readProfile(const std::string& name) {
  const std::string file = profileFile();
  if (file.empty() || !std::filesystem::exists(file)) {
    refuse("'" + name + "' is neither a URL (https://HOST) nor a profile: there is no file " + file);
  }
  ProfileSearch search;
  search.wanted = name;
  const int line = ini_parse(file.c_str(), takeProfileLine, &search);
  if (line < 0) refuse("the file " + file + " cannot be read");
  if (line > 0) {
    refuse(file + ":" + std::to_string(line) + ": " +
           (search.wrong.empty() ? "this is neither [NAME] nor KEY = VALUE" : search.wrong));
  }
  if (!search.isFound) {
    refuse("there is no profile " + name + " in " + file + (search.known.empty() ? "" : ", which has " + search.known));
  }
  if (search.url.empty()) refuse("the profile " + name + " in " + file + " has no url");
  search.found.name = name;
  search.found.hasGivenName = true;
  readUrl(search.url, search.found);
  resolveFile(search.found.passwordFile, file);
  resolveFile(search.found.caFile, file);
  return search.found;
}

}  // namespace

ServerAddress readServerAddress(std::string_view text) {
  const std::size_t mark = text.find(kMark);
  const std::size_t equals = text.find('=');
  ServerAddress address;
  if (equals < mark) {
    address.name = std::string(text.substr(0, equals));
    address.hasGivenName = true;
    if (!isName(address.name)) refuse("the name of a server is made of letters, digits, '.', '-' and '_'");
    if (mark == std::string_view::npos) refuse("after NAME= there is a URL, as in array1=https://array1.example.org");
    text.remove_prefix(equals + 1);
  }
  if (mark == std::string_view::npos) {
    if (!isName(text)) refuse("'" + std::string(text) + "' is neither a URL (https://HOST) nor the name of a profile");
    return readProfile(std::string(text));
  }
  readUrl(text, address);
  return address;
}

std::vector<ServerAddress> readServerFile(const std::string& path) {
  std::istringstream lines(readTextFile(path));
  std::vector<ServerAddress> servers;
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    line.resize(std::min(line.find('#'), line.size()));
    line.erase(0, std::min(line.find_first_not_of(" \t\r"), line.size()));
    line.resize(line.find_last_not_of(" \t\r") + 1);
    if (line.empty()) continue;
    try {
      servers.push_back(readServerAddress(line));
    } catch (const std::runtime_error& error) {
      refuse(path + ":" + std::to_string(number) + ": " + error.what());
    }
  }
  if (servers.empty()) refuse("the file " + path + " names no server");
  return servers;
}

std::string profileFile() {
  const char* const named = std::getenv("XDG_CONFIG_HOME");
  if (named != nullptr && *named == '/') return std::string(named) + "/qorql/servers.ini";
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? std::string(home) + "/.config/qorql/servers.ini" : "";
}
