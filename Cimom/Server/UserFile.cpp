// Hashes are yescrypt's, which the C library's companion makes and knows; older ones that it knows are taken, too.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/UserFile.h"

#include <crypt.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace {

constexpr const char* kMethod = "$y$";
constexpr mode_t kUsersMode = S_IRUSR | S_IWUSR;
constexpr std::size_t kLongestUser = 256;

[[noreturn]] void fail(const std::string& what, const std::string& path) {
  throw std::runtime_error(what + ' ' + path + ": " + std::strerror(errno));
}

// A line without what an editor of another system puts at its end.
std::string_view withoutEnd(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  return line;
}

bool isRemark(std::string_view line) { return line.empty() || line.front() == '#'; }

std::string_view userOf(std::string_view line) {
  return isRemark(line) ? std::string_view() : line.substr(0, line.find(':'));
}

// The memory of a hash, which is large and must be zeroed.
struct Scratch {
  Scratch() : data(std::make_unique<crypt_data>()) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;
  ~Scratch() { explicit_bzero(data.get(), sizeof *data); }

  const std::unique_ptr<crypt_data> data;
};

// Nothing where the hash is of no kind that is known.
std::string hashAs(const std::string& password, const std::string& hash) {
  const Scratch scratch;
  const char* const made = crypt_rn(password.c_str(), hash.c_str(), scratch.data.get(), sizeof(crypt_data));
  return made == nullptr || *made == '*' ? "" : made;
}

// Takes as long wherever the texts differ.
bool isEqual(const std::string& one, const std::string& other) {
  unsigned difference = one.size() == other.size() ? 0 : 1;
  for (std::size_t i = 0; i < one.size() && i < other.size(); ++i) {
    difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
  }
  return difference == 0;
}

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  if (!file) fail("cannot read the users of", path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.emplace_back(withoutEnd(line));
  if (file.bad()) fail("cannot read the users of", path);
  return lines;
}

// Returns a warning where all may read it.
std::string refuseWhereOthersWrite(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) fail("cannot read the users of", path);
  if ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0) {
    const bool isReadByAll = (status.st_mode & S_IROTH) != 0;
    return isReadByAll ? "everybody may read " + path + ", and guess its passwords: chmod o-r " + path : "";
  }
  throw std::runtime_error("others than its owner may write to " + path + ": chmod 600 " + path);
}

// The folder of a file, which those who replace the file take turns at.
class LockedFolder {
 public:
  explicit LockedFolder(const std::filesystem::path& path)
      : _file(open(path.has_parent_path() ? path.parent_path().c_str() : ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const bool isLocked = _file >= 0 && flock(_file, LOCK_EX) == 0;
    if (isLocked) return;
    const int error = errno;
    if (_file >= 0) close(_file);
    errno = error;
    fail("cannot write", path);
  }
  LockedFolder(const LockedFolder&) = delete;
  LockedFolder& operator=(const LockedFolder&) = delete;
  ~LockedFolder() { close(_file); }

  // What was renamed in it survives a loss of power then.
  void keep() const { static_cast<void>(fsync(_file)); }

 private:
  const int _file;
};

// Where a symbolic link leads.
std::string targetOf(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const std::filesystem::path target = std::filesystem::canonical(path, error);
  return error ? path : target.string();
}

// A file that takes the place of another one, or goes away.
class Replacement {
 public:
  explicit Replacement(const std::string& path) : _path(path), _name(path + ".XXXXXX"), _file(mkstemp(_name.data())) {
    if (_file < 0) fail("cannot write", path);
  }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement() {
    close(_file);
    if (!_isDone) unlink(_name.c_str());
  }

  void write(const std::string& text) {
    const bool isWritten = ::write(_file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (!isWritten) fail("cannot write", _path);
  }
  // With the owner of the file before, where there was one and this process may give files away, and its group's right
  // to read it: a server that is no user of its own reads it so.
  void finish() {
    struct stat before {};
    const bool isThere = stat(_path.c_str(), &before) == 0;
    if (isThere && fchown(_file, before.st_uid, before.st_gid) != 0 && errno != EPERM) fail("cannot write", _path);
    const mode_t mode = isThere ? kUsersMode | (before.st_mode & S_IRGRP) : kUsersMode;
    const bool isDone = fchmod(_file, mode) == 0 && fsync(_file) == 0 && rename(_name.c_str(), _path.c_str()) == 0;
    if (!isDone) fail("cannot write", _path);
    _isDone = true;
  }

 private:
  const std::string _path;
  std::string _name;
  const int _file;
  bool _isDone = false;
};

void writeLines(const std::string& path, const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  Replacement replacement(path);
  replacement.write(text);
  replacement.finish();
}

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

bool isUserWithHash(const std::string& line) {
  const std::size_t colon = line.find(':');
  const bool isHash = colon != std::string::npos && crypt_checksalt(line.c_str() + colon + 1) == CRYPT_SALT_OK;
  return isHash && faultOfUser(userOf(line)).empty();
}

// Those of `user`, who gets another line or none, may be anything. Another file than one of users is seen by its lines.
void refuseOtherLines(const std::string& path, const std::vector<std::string>& lines, std::string_view user) {
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool isReplaced = !user.empty() && userOf(lines[i]) == user;
    if (isReplaced || isRemark(lines[i]) || isUserWithHash(lines[i])) continue;
    throw std::runtime_error(path + ':' + std::to_string(i + 1) + ": this is no user with a hashed password");
  }
}

void refuseFault(const std::string& fault) {
  if (!fault.empty()) throw std::invalid_argument(fault);
}

}  // namespace

UserFile UserFile::read(const std::string& path) {
  UserFile users;
  users._warning = refuseWhereOthersWrite(path);
  const std::vector<std::string> lines = linesOf(path);
  refuseOtherLines(path, lines, {});
  for (const std::string& line : lines) {
    const std::size_t colon = line.find(':');
    if (!isRemark(line)) users._hashes.insert_or_assign(line.substr(0, colon), line.substr(colon + 1));
  }
  users._nobody = users._hashes.empty() ? hashPassword("nobody") : users._hashes.begin()->second;
  return users;
}

bool UserFile::isRight(const std::string& user, const std::string& password) const {
  const auto found = _hashes.find(user);
  const std::string& hash = found == _hashes.end() ? _nobody : found->second;
  if (!faultOfPassword(password).empty()) return false;
  const bool isSame = isEqual(hashAs(password, hash), hash);
  return isSame && found != _hashes.end();
}

std::string faultOfUser(std::string_view user) {
  if (user.empty()) return "the name of a user is not empty";
  if (user.size() > kLongestUser) return "the name of a user has no more than 256 bytes";
  for (const char c : user) {
    const bool isControl = static_cast<unsigned char>(c) < ' ' || c == 0x7F;
    if (c == ':' || isControl) return "the name of a user has no colon and no control characters";
  }
  const bool isOdd = user.front() == '#' || user.front() == ' ' || user.back() == ' ';
  return isOdd ? "the name of a user does not begin with # and has no space at its ends" : "";
}

std::string faultOfPassword(std::string_view password) {
  if (password.empty()) return "a password is not empty";
  if (password.size() >= CRYPT_MAX_PASSPHRASE_SIZE) return "a password has no more than 511 bytes";
  return password.find('\0') == std::string_view::npos ? "" : "a password has no zero byte";
}

std::string hashPassword(const std::string& password) {
  char setting[CRYPT_GENSALT_OUTPUT_SIZE] = "";
  const bool isMade = crypt_gensalt_rn(kMethod, 0, nullptr, 0, setting, sizeof setting) != nullptr;
  std::string hash = isMade ? hashAs(password, setting) : "";
  if (hash.empty()) throw std::runtime_error("the system cannot hash passwords with yescrypt");
  return hash;
}

void setPassword(const std::string& given, const std::string& user, const std::string& password) {
  refuseFault(faultOfUser(user));
  refuseFault(faultOfPassword(password));
  const std::string path = targetOf(given);
  const LockedFolder folder(path);
  std::vector<std::string> lines;
  if (exists(path)) lines = linesOf(path);
  refuseOtherLines(path, lines, user);
  const std::string entry = user + ':' + hashPassword(password);
  bool isThere = false;
  for (std::string& line : lines) {
    if (userOf(line) != user) continue;
    line = entry;
    isThere = true;
  }
  if (!isThere) lines.push_back(entry);
  writeLines(path, lines);
  folder.keep();
}

void removeUser(const std::string& given, const std::string& user) {
  const std::string path = targetOf(given);
  const LockedFolder folder(path);
  std::vector<std::string> lines = linesOf(path);
  refuseOtherLines(path, lines, user);
  if (std::erase_if(lines, [&](const std::string& line) { return userOf(line) == user; }) == 0) {
    throw std::invalid_argument("there is no user " + user + " in " + path);
  }
  writeLines(path, lines);
  folder.keep();
}
