// The connections of a server, and the times at which they end.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_HTTPCONNECTIONS_H
#define QORQL_SERVER_HTTPCONNECTIONS_H

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

// A thread of its own shuts down what is late: a socket that is shut down wakes whoever waits for it. Any thread may
// call.
class HttpConnections {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr Clock::time_point kNever = Clock::time_point::max();

  struct Connection {
    int socket = -1;
    std::string address;  // of the client, without the port
    std::size_t number;   // how many there were with it when it began
    Clock::time_point deadline = kNever;
    bool isIdle = true;      // no request of it is being answered
    unsigned listeners = 0;  // which ones it came by; its own thread's
  };
  // Stays where it is until it is taken out.
  using Handle = std::list<Connection>::iterator;

  HttpConnections();
  HttpConnections(const HttpConnections&) = delete;
  HttpConnections& operator=(const HttpConnections&) = delete;
  ~HttpConnections();

  Handle add(int socket, std::string address, Clock::time_point deadline);
  // Before its socket is closed.
  void remove(Handle connection);
  void setDeadline(Handle connection, Clock::time_point deadline, bool isIdle);

  std::size_t count() const;
  void endIdle();
  void endAll();
  // Returns whether no request is being answered any more.
  bool waitUntilIdle(Clock::time_point deadline);

 private:
  void watch();

  mutable std::mutex _mutex;
  std::condition_variable _isEarlier;  // a deadline comes before the next look
  std::condition_variable _isLess;     // a connection has become idle or has gone
  std::list<Connection> _connections;
  Clock::time_point _nextLook = kNever;
  bool _isEnding = false;
  std::thread _watch;
};

// The other end of a socket. One that sends no more may take what it is sent or not: where it does not, it is gone a
// moment after something was sent.
enum class PeerState { There, SendsNoMore, Gone };
PeerState peerState(int socket) noexcept;

// Whether the socket takes some dozens of bytes at once.
bool takesMore(int socket) noexcept;
// Sends without waiting. Returns whether all of it has been sent; else a part may have been.
bool sendNow(int socket, std::string_view text) noexcept;

#endif
