// Entries of cron's tables: five fields of time or a word such as @daily, in the
// tables of the system the user, and the command.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxCronEntry.h"

#include <dirent.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <memory>
#include <sstream>
#include <string_view>

#include "Cimom/Providers/LinuxProperty.h"

const char* const LinuxCronEntry::kClassName = "Linux_CronEntry";

namespace {

// The entry that is being read.
struct Entry {
  std::string file;
  QORuint32 line = 0;
  std::string schedule{};
  std::string user{};
  std::string command{};

  std::string name() const { return file + ':' + std::to_string(line); }
};

LinuxValue readName(Entry& entry) { return textValue(entry.name()); }
LinuxValue readFile(Entry& entry) { return textValue(entry.file); }
LinuxValue readLineNumber(Entry& entry) { return uint32Value(entry.line); }
LinuxValue readSchedule(Entry& entry) { return textValue(entry.schedule); }
LinuxValue readOwner(Entry& entry) { return textValue(entry.user); }
LinuxValue readCommand(Entry& entry) { return textValue(entry.command); }

// The keys that tie it to its system.
LinuxValue readClassName(Entry&) { return textValue(LinuxCronEntry::kClassName); }
LinuxValue readSystemClassName(Entry&) { return textValue(kLinuxComputerSystem); }
LinuxValue readSystemName(Entry&) { return textValue(hostName()); }

constexpr LinuxProperty<Entry> kCronEntryProperties[] = {
    {"Name", readName},
    {"Caption", readName},
    {"ElementName", readName},
    {"FileName", readFile},
    {"LineNumber", readLineNumber},
    {"Schedule", readSchedule},
    {"Owner", readOwner},
    {"Command", readCommand},
    {"CreationClassName", readClassName},
    {"SystemCreationClassName", readSystemClassName},
    {"SystemName", readSystemName},
};

// Takes the next word off the front; empty at the end.
std::string_view takeWord(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
  const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
  rest.remove_prefix(word.size());
  return word;
}

// Takes the name of a variable off the front: what stands before "=" or a blank, or what is in quotes. False where
// there is none.
bool takeVariable(std::string_view& rest) {
  const bool isQuoted = rest.starts_with('"') || rest.starts_with('\'');
  const std::size_t end = isQuoted ? rest.find(rest.front(), 1) : rest.find_first_of("= \t");
  if (end == std::string_view::npos || end == 0) return false;
  rest.remove_prefix(isQuoted ? end + 1 : end);
  return true;
}

// "NAME = value", "'A NAME' = value".
bool setsVariable(std::string_view line) {
  const bool isTime =
      line.starts_with('@') || line.starts_with('*') || std::isdigit(static_cast<unsigned char>(line.front())) != 0;
  if (isTime || !takeVariable(line)) return false;
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  return line.starts_with('=');
}

// False where something lacks. A user is given where the table is that user's own.
bool parse(std::string_view line, const std::string& user, Entry& entry) {
  const std::size_t fields = line.starts_with('@') ? 1 : 5;
  for (std::size_t i = 0; i < fields; ++i) {
    const std::string_view field = takeWord(line);
    if (field.empty()) return false;
    entry.schedule.append(i == 0 ? "" : " ").append(field);
  }
  entry.user = user.empty() ? std::string(takeWord(line)) : user;
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  entry.command = std::string(line);
  return !entry.user.empty() && !entry.command.empty();
}

using Take = std::function<void(Entry&)>;

// Belongs to one enumeration.
class Tables {
 public:
  explicit Tables(const Take& take) : _take(take) {}

  // The name of the user whose own table it is; empty for one of the system. Returns false where there is no such file.
  bool readTable(const std::string& path, const std::string& user) {
    const std::string content = readSmallFile(path);
    if (errno != 0) return note(path, errno);
    std::istringstream lines(content);
    QORuint32 number = 0;
    for (std::string line; std::getline(lines, line);) readEntry(line, {path, ++number}, user);
    return true;
  }

  // The tables of a folder, by their names. Returns false where there is no such folder.
  bool readFolder(const std::string& path, bool isOfUsers) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    if (folder == nullptr) return note(path, errno);
    std::vector<std::string> names;
    while (const dirent* entry = readdir(folder.get())) names.emplace_back(entry->d_name);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
      const bool isTable = isOfUsers ? !name.starts_with('.') : isTableOfPackage(name);
      if (isTable) readTable(path + '/' + name, isOfUsers ? name : "");
    }
    return true;
  }

  void noteAbsence(const std::string& path) { _unreadable.note(path, ENOENT); }

 private:
  // Other names are those of files that a package put aside, which cron leaves out, too.
  static bool isTableOfPackage(const std::string& name) {
    return std::all_of(name.begin(), name.end(), [](unsigned char letter) {
      return std::isalnum(letter) != 0 || letter == '_' || letter == '-';
    });
  }

  bool note(const std::string& path, int error) {
    if (error == ENOENT) return false;
    _unreadable.note(path, error);
    return true;
  }

  void readEntry(std::string_view line, Entry entry, const std::string& user) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (line.empty() || line.starts_with('#') || setsVariable(line)) return;
    if (parse(line, user, entry)) return _take(entry);
    _unreadable.note(entry.name(), EINVAL);
  }

  const Take& _take;
  UnreadableParts _unreadable;
};

}  // namespace

void LinuxCronEntry::enumerate(const Request& request, const Emit& emit) {
  const auto properties = bindProperties<LinuxProperty<Entry>>(request, kCronEntryProperties);
  const QORString wanted = wantedKey(request, "Name");
  const Take take = [&](Entry& entry) {
    if (wanted.isNull() || wanted == entry.name().c_str()) emitInstance(entry, properties, emit);
  };
  Tables tables(take);
  const bool hasSystem = tables.readTable(_sources.system, "");
  const bool hasPackages = tables.readFolder(_sources.packages, false);
  const bool hasUsers = tables.readFolder(_sources.users, true);
  // A machine may do without any of them; one that has none has no cron.
  if (!hasSystem && !hasPackages && !hasUsers) tables.noteAbsence(_sources.system);
}
