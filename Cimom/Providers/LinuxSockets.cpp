// The kernel's tables of sockets name an inode for each; the open files of a
// process are links to "socket:[inode]".
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxSockets.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <unordered_set>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxProcessFiles.h"
#include "Cimom/Providers/LinuxValues.h"
#include "cimom/CQoriProviderException.h"

namespace {

// The kernel's numbers of states, which UDP shares as far as it needs them.
constexpr int kEstablished = 1;
constexpr int kClosed = 7;
constexpr int kListening = 10;

// The words of a line, which blanks separate.
std::vector<std::string_view> wordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  while (!line.empty()) {
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos) break;
    const std::size_t end = std::min(line.find_first_of(" \t", start), line.size());
    words.push_back(line.substr(start, end - start));
    line.remove_prefix(end);
  }
  return words;
}

template <class Number>
bool readNumber(std::string_view text, Number& number, int base) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc() && end == text.data() + text.size();
}

// The kernel prints each 4 bytes of an address as one number of its own byte order.
bool readAddress(std::string_view digits, bool isVersion6, std::string& address) {
  std::array<QORuint32, 4> words{};
  const std::size_t count = isVersion6 ? 4 : 1;
  if (digits.size() != count * 8) return false;
  for (std::size_t i = 0; i < count; ++i) {
    if (!readNumber(digits.substr(i * 8, 8), words[i], 16)) return false;
  }
  std::array<char, INET6_ADDRSTRLEN> text{};
  if (inet_ntop(isVersion6 ? AF_INET6 : AF_INET, words.data(), text.data(), text.size()) == nullptr) return false;
  address = text.data();
  return true;
}

bool readEnd(std::string_view text, bool isVersion6, LinuxSocketEnd& end) {
  const std::size_t colon = text.find(':');
  return colon != std::string_view::npos && readAddress(text.substr(0, colon), isVersion6, end.address) &&
         readNumber(text.substr(colon + 1), end.port, 16);
}

// Columns: number, local end, remote end, state, queues, timer, retransmissions, user, timeout, inode.
bool readEntry(std::string_view line, LinuxSocketEntry& socket) {
  const std::vector<std::string_view> words = wordsOf(line);
  return words.size() >= 10 && readNumber(words[3], socket.state, 16) &&
         readEnd(words[1], socket.isVersion6, socket.local) && readEnd(words[2], socket.isVersion6, socket.remote) &&
         readNumber(words[7], socket.user, 10) && readNumber(words[9], socket.inode, 10);
}

bool isTcp(const LinuxSocketEntry& socket) { return std::strcmp(socket.protocol, "tcp") == 0; }

std::string textOf(const LinuxSocketEnd& end, bool isVersion6) {
  return (isVersion6 ? '[' + end.address + ']' : end.address) + ':' + std::to_string(end.port);
}

// What is read of one table after another: no two sockets have one name. The kernel writes a table in pieces, and what
// moves in between may stand in it more than once: of entries with one name and one inode the first counts.
class SocketCollector {
 public:
  SocketCollector(LinuxSocketChoice choice, LinuxSocketEntries& out) : _choice(choice), _out(out) {
    for (const LinuxSocketEntry& known : out) {
      _names.insert(known.name);
      _names.insert(withInode(known.name, known));
    }
  }

  void add(LinuxSocketEntry socket) {
    if (_choice == LinuxSocketChoice::Waiting && !socket.isWaiting()) return;
    socket.name = std::string(socket.protocol) + ':' + textOf(socket.local, socket.isVersion6);
    if (!socket.isWaiting()) socket.name += '-' + textOf(socket.remote, socket.isVersion6);
    std::string numbered = withInode(socket.name, socket);
    if (!_names.insert(numbered).second) return;
    if (!_names.insert(socket.name).second) socket.name = std::move(numbered);
    _out.push_back(std::move(socket));
  }

 private:
  static std::string withInode(const std::string& name, const LinuxSocketEntry& socket) {
    return name + '#' + std::to_string(socket.inode);
  }

  LinuxSocketChoice _choice;
  LinuxSocketEntries& _out;
  std::unordered_set<std::string> _names;
};

struct CloseFolder {
  void operator()(DIR* folder) const noexcept { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

std::vector<int> readProcessIds() {
  std::vector<int> ids;
  const Folder proc(opendir("/proc"));
  while (const dirent* entry = proc == nullptr ? nullptr : readdir(proc.get())) {
    int id = 0;
    if (readNumber(std::string_view(entry->d_name), id, 10)) ids.push_back(id);
  }
  std::sort(ids.begin(), ids.end());
  return ids;
}

// The inode of a link to a socket; 0 for a link to something else, nothing for one that may not be read.
std::optional<QORuint64> socketBehind(const std::string& link) {
  constexpr std::string_view kSocket = "socket:[";
  std::array<char, 64> target{};
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  if (length < 0 && errno == EACCES) return std::nullopt;
  std::string_view text(target.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
  QORuint64 inode = 0;
  if (text.substr(0, kSocket.size()) != kSocket || text.back() != ']') return 0;
  text = text.substr(kSocket.size(), text.size() - kSocket.size() - 1);
  return readNumber(text, inode, 10) ? inode : 0;
}

// Adds a process to the holders of the sockets that its links lead to. Returns an errno where some of the links are
// hidden, else 0: a folder may be listed and its links be hidden all the same, from the superuser of a container too.
int addHolder(int pid, const std::string& path, std::unordered_map<QORuint64, std::vector<int>>& holders) {
  const Folder files(opendir(path.c_str()));
  // A process that has ended meanwhile holds nothing.
  if (files == nullptr) return errno == ENOENT || errno == ESRCH ? 0 : errno;
  int error = 0;
  while (const dirent* entry = readdir(files.get())) {
    const std::optional<QORuint64> inode = socketBehind(path + '/' + entry->d_name);
    if (!inode.has_value()) error = EACCES;
    const auto found = holders.find(inode.value_or(0));
    const bool isNew = found != holders.end() && (found->second.empty() || found->second.back() != pid);
    if (isNew && found->first != 0) found->second.push_back(pid);
  }
  return error;
}

}  // namespace

bool LinuxSocketEntry::isWaiting() const { return state == (isTcp(*this) ? kListening : kClosed); }

const char* LinuxSocketEntry::stateName() const {
  constexpr const char* kNames[] = {"Unknown",   "Established", "SynSent",    "SynReceived", "FinWait1",
                                    "FinWait2",  "TimeWait",    "Closed",     "CloseWait",   "LastAck",
                                    "Listening", "Closing",     "SynReceived"};
  static_assert(std::size(kNames) > kListening);
  if (!isTcp(*this)) return state == kEstablished ? "Established" : "Unconnected";
  return state > 0 && static_cast<std::size_t>(state) < std::size(kNames) ? kNames[state] : kNames[0];
}

void parseSocketTable(std::string_view table, const char* protocol, bool isVersion6, LinuxSocketChoice choice,
                      LinuxSocketEntries& out) {
  SocketCollector collector(choice, out);
  while (!table.empty()) {
    const std::size_t end = std::min(table.find('\n'), table.size());
    LinuxSocketEntry socket;
    socket.protocol = protocol;
    socket.isVersion6 = isVersion6;
    if (readEntry(table.substr(0, end), socket)) collector.add(std::move(socket));
    table.remove_prefix(std::min(end + 1, table.size()));
  }
}

LinuxSocketEntries readSockets(LinuxSocketChoice choice, const std::string& folder) {
  struct Table {
    const char* file;
    const char* protocol;
    bool isVersion6;
  };
  constexpr Table kTables[] = {
      {"/tcp", "tcp", false}, {"/tcp6", "tcp", true}, {"/udp", "udp", false}, {"/udp6", "udp", true}};
  LinuxSocketEntries sockets;
  bool hasTable = false;
  for (const Table& table : kTables) {
    const std::string path = folder + table.file;
    const std::string content = readKernelTable(path);
    // A kernel without IPv6 has no such table.
    if (content.empty() && errno != 0) {
      if (errno != ENOENT) warnUnreadable(path, errno);
      continue;
    }
    hasTable = true;
    parseSocketTable(content, table.protocol, table.isVersion6, choice, sockets);
  }
  if (!hasTable)
    throw CQoriProviderException("Linux sockets", "The tables of sockets cannot be read",
                                 InstanceProvider::kUnreadable);
  return sockets;
}

std::unordered_map<QORuint64, std::vector<int>> readSocketHolders(const LinuxSocketEntries& sockets) {
  std::unordered_map<QORuint64, std::vector<int>> holders;
  for (const LinuxSocketEntry& socket : sockets) holders.try_emplace(socket.inode);
  UnreadableParts unreadable;
  for (const int pid : readProcessIds()) {
    const std::string path = "/proc/" + std::to_string(pid) + "/fd";
    const int error = addHolder(pid, path, holders);
    if (error != 0) unreadable.note(path, error);
  }
  const bool lacksOne = std::any_of(holders.begin(), holders.end(),
                                    [](const auto& entry) { return entry.first != 0 && entry.second.empty(); });
  if (lacksOne) {
    warnOfHiddenProcesses();
  } else {
    unreadable.forget();
  }
  return holders;
}
