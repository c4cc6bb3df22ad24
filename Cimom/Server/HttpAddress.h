// Addresses to listen at.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPADDRESS_H
#define QORQL_SERVER_HTTPADDRESS_H

#include <string>
#include <string_view>
#include <vector>

struct sockaddr;

// A socket that listens. OWNS it.
class ListeningSocket {
 public:
  explicit ListeningSocket(int file) noexcept : _file(file) {}
  ListeningSocket(ListeningSocket&& other) noexcept : _file(other.release()) {}
  ListeningSocket(const ListeningSocket&) = delete;
  ListeningSocket& operator=(const ListeningSocket&) = delete;
  ListeningSocket& operator=(ListeningSocket&&) = delete;
  ~ListeningSocket();

  int file() const noexcept { return _file; }
  // The caller OWNS it.
  int release() noexcept;
  // "127.0.0.1:5988", "[::1]:5988": with the port that the system gave in place of 0.
  std::string address() const;
  // Whether nobody outside of this machine can reach it.
  bool isLoopback() const;

 private:
  int _file;
};

// "127.0.0.1:5988", "[::1]:5989", "localhost:0": a name may have several addresses. THROWS std::runtime_error naming
// what is wrong, or which cannot be had.
std::vector<ListeningSocket> listenAt(const std::string& address);

// What is wrong with the spelling of an address; nothing for a good one.
std::string faultOfAddress(std::string_view address);

// "127.0.0.1", without the port.
std::string hostOf(const sockaddr* address);

#endif
