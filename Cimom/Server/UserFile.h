// The users of a server and their hashed passwords: a file of lines USER:HASH.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_USERFILE_H
#define QORQL_SERVER_USERFILE_H

#include <map>
#include <string>
#include <string_view>

// Not changed after it was read: threads may share it.
class UserFile {
 public:
  // THROWS std::runtime_error naming file and line: it cannot be read, others than its owner may write to it, or a line
  // is no user with a hash.
  static UserFile read(const std::string& path);

  // Whether there is such a user with this password. Takes the same time for a user who is not there. Costs a hash,
  // which is made to take long.
  bool isRight(const std::string& user, const std::string& password) const;
  bool isEmpty() const noexcept { return _hashes.empty(); }
  // What whoever runs the server should know: everybody may read the file. Empty when all is well.
  const std::string& warning() const noexcept { return _warning; }

 private:
  std::map<std::string, std::string, std::less<>> _hashes;
  std::string _warning;
  std::string _nobody;  // the hash that a user's password is compared with who is not there
};

// What is wrong with the name of a user, or with a password; nothing for a good one.
std::string faultOfUser(std::string_view user);
std::string faultOfPassword(std::string_view password);

// A new hash of a password. THROWS std::runtime_error where the system cannot make one.
std::string hashPassword(const std::string& password);

// Gives a user a password, or takes the user out; the file is made when there is none, and is then for its owner alone.
// It is replaced as a whole: whoever reads it meanwhile sees it as it was before or as it is afterwards. Its other
// lines stay, and must be users or remarks: a file that is none of users is not changed. Others who change it at the
// same time wait. A symbolic link stays one. THROWS std::runtime_error: what is wrong with the arguments, there is no
// such user to take out, another line is no user, which is named by file and line, or the file cannot be written.
void setPassword(const std::string& path, const std::string& user, const std::string& password);
void removeUser(const std::string& path, const std::string& user);

#endif
