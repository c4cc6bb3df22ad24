// Passwords that were right are remembered by a keyed digest: a hash of a password costs more than most requests.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpUsers.h"

#include <arpa/inet.h>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <strings.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t kMostAddresses = 10000;
constexpr std::string_view kScheme = "Basic ";

struct Login {
  std::string user;
  std::string password;
};

// Nothing where the header is no such login.
std::optional<Login> loginOf(std::string_view authorization) {
  if (authorization.size() < kScheme.size()) return std::nullopt;
  if (strncasecmp(authorization.data(), kScheme.data(), kScheme.size()) != 0) return std::nullopt;
  authorization.remove_prefix(kScheme.size());
  std::string coded(authorization);
  const gnutls_datum_t from{reinterpret_cast<unsigned char*>(coded.data()), static_cast<unsigned>(coded.size())};
  gnutls_datum_t decoded{};
  if (coded.empty() || gnutls_base64_decode2(&from, &decoded) != GNUTLS_E_SUCCESS) return std::nullopt;
  const std::string text(reinterpret_cast<const char*>(decoded.data), decoded.size);
  explicit_bzero(decoded.data, decoded.size);
  gnutls_free(decoded.data);
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return std::nullopt;
  return Login{text.substr(0, colon), text.substr(colon + 1)};
}

// What an address counts as.
std::string holderOf(const std::string& address) {
  in6_addr six{};
  if (inet_pton(AF_INET6, address.c_str(), &six) != 1) return address;
  return {reinterpret_cast<const char*>(&six), sizeof six / 2};
}

}  // namespace

bool FailureLimit::mustWait(const std::string& address, Clock::time_point now) {
  const std::lock_guard lock(_mutex);
  const auto found = _failures.find(holderOf(address));
  return found != _failures.end() && found->second.isBlocked && found->second.end > now;
}

void FailureLimit::note(const std::string& address, const std::string& user, unsigned allowed,
                        std::chrono::seconds wait, Clock::time_point now) {
  const std::lock_guard lock(_mutex);
  std::erase_if(_failures, [now](const auto& each) { return each.second.end <= now; });
  if (_failures.size() >= kMostAddresses) _failures.clear();
  Failures& failures = _failures[holderOf(address)];
  ++failures.ofUsers[std::hash<std::string>()(user)];
  failures.isBlocked = ++failures.count >= allowed;
  failures.end = now + wait;
}

void FailureLimit::forgive(const std::string& address, const std::string& user) {
  const std::lock_guard lock(_mutex);
  const auto found = _failures.find(holderOf(address));
  if (found == _failures.end()) return;
  const auto ofUser = found->second.ofUsers.find(std::hash<std::string>()(user));
  if (ofUser == found->second.ofUsers.end()) return;
  found->second.count -= ofUser->second;
  found->second.ofUsers.erase(ofUser);
  if (found->second.count == 0) _failures.erase(found);
}

HttpUsers::HttpUsers(UserFile users) : _key{}, _users(std::make_shared<const UserFile>(std::move(users))) {
  if (gnutls_rnd(GNUTLS_RND_KEY, _key.data(), _key.size()) != GNUTLS_E_SUCCESS) {
    throw std::runtime_error("the system has no random numbers");
  }
}

void HttpUsers::replace(UserFile users) {
  auto made = std::make_shared<const UserFile>(std::move(users));
  const std::lock_guard lock(_mutex);
  _users = std::move(made);
  _known.clear();
}

HttpUsers::Verdict HttpUsers::judge(const std::string& address, const std::string* authorization,
                                    unsigned allowedFailures, std::chrono::seconds wait, std::string& user) {
  using Clock = FailureLimit::Clock;
  if (_failures.mustWait(address, Clock::now())) return Verdict::MustWait;
  if (authorization == nullptr) return Verdict::Wrong;
  const std::optional<Login> login = loginOf(*authorization);
  if (!login) {
    _failures.note(address, "", allowedFailures, wait, Clock::now());
    return Verdict::Wrong;
  }
  const Digest digest = digestOf(login->user, login->password);
  if (!isKnown(login->user, digest)) {
    const std::lock_guard hashing(_hashing);
    // Others of the address may have failed while this one waited for its turn.
    if (_failures.mustWait(address, Clock::now())) return Verdict::MustWait;
    const std::shared_ptr<const UserFile> known = users();
    if (!known->isRight(login->user, login->password)) {
      _failures.note(address, login->user, allowedFailures, wait, Clock::now());
      return Verdict::Wrong;
    }
    remember(login->user, digest, known);
  }
  _failures.forgive(address, login->user);
  user = login->user;
  return Verdict::Right;
}

HttpUsers::Digest HttpUsers::digestOf(const std::string& user, const std::string& password) const {
  const std::string text = user + ':' + password;  // a name has no colon
  Digest digest{};
  if (gnutls_hmac_fast(GNUTLS_MAC_SHA256, _key.data(), _key.size(), text.data(), text.size(), digest.data()) != 0) {
    throw std::runtime_error("the system makes no digests");
  }
  return digest;
}

bool HttpUsers::isKnown(const std::string& user, const Digest& digest) {
  const std::lock_guard lock(_mutex);
  const auto found = _known.find(user);
  return found != _known.end() && gnutls_memcmp(found->second.data(), digest.data(), digest.size()) == 0;
}

std::shared_ptr<const UserFile> HttpUsers::users() {
  const std::lock_guard lock(_mutex);
  return _users;
}

void HttpUsers::remember(const std::string& user, const Digest& digest, const std::shared_ptr<const UserFile>& users) {
  const std::lock_guard lock(_mutex);
  if (users == _users) _known.insert_or_assign(user, digest);
}
