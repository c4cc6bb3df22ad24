// Who asks: the users of a server and their passwords, as requests bring them.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPUSERS_H
#define QORQL_SERVER_HTTPUSERS_H

#include <array>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "Cimom/Server/UserFile.h"

// Wrong passwords of an address, of which there may be so many until it has to wait. Any thread may call.
class FailureLimit {
 public:
  using Clock = std::chrono::steady_clock;

  // Whether the address has to wait. Addresses of the sixth version count by their first 64 bits, which is what one
  // holder has at least.
  bool mustWait(const std::string& address, Clock::time_point now);
  void note(const std::string& address, const std::string& user, unsigned allowed, std::chrono::seconds wait,
            Clock::time_point now);
  // Those of the user alone: who has one password may not try another one's without end.
  void forgive(const std::string& address, const std::string& user);

 private:
  struct Failures {
    unsigned count = 0;
    std::unordered_map<std::size_t, unsigned> ofUsers{};  // by the hash of the name, of what counts
    bool isBlocked = false;
    Clock::time_point end{};  // they are forgotten then
  };

  std::mutex _mutex;
  std::map<std::string, Failures> _failures;
};

// Any thread may call.
class HttpUsers {
 public:
  enum class Verdict { Right, Wrong, MustWait };

  explicit HttpUsers(UserFile users);
  HttpUsers(const HttpUsers&) = delete;
  HttpUsers& operator=(const HttpUsers&) = delete;

  // Other users from now on.
  void replace(UserFile users);

  // Judges the Authorization header; null: there is none, which is wrong and counts for nothing. Sets the user of a
  // right one. A password that was right once is known again without the cost of its hash.
  Verdict judge(const std::string& address, const std::string* authorization, unsigned allowedFailures,
                std::chrono::seconds wait, std::string& user);

 private:
  using Digest = std::array<unsigned char, 32>;

  Digest digestOf(const std::string& user, const std::string& password) const;
  bool isKnown(const std::string& user, const Digest& digest);
  void remember(const std::string& user, const Digest& digest, const std::shared_ptr<const UserFile>& users);
  std::shared_ptr<const UserFile> users();

  Digest _key;  // of the digests, which are worth nothing outside of this process
  FailureLimit _failures;
  std::mutex _mutex;
  std::shared_ptr<const UserFile> _users;
  std::map<std::string, Digest> _known;
  std::mutex _hashing;  // one password at a time is hashed
};

#endif
