// Ends the connections whose time is over. Deadlines mostly move away while a connection is
// used, so the thread looks when the nearest one that it has seen is over, and learns the next.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpConnections.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <utility>

HttpConnections::HttpConnections() : _watch([this] { watch(); }) {}

HttpConnections::~HttpConnections() {
  {
    const std::lock_guard lock(_mutex);
    _isEnding = true;
  }
  _isEarlier.notify_all();
  _watch.join();
}

HttpConnections::Handle HttpConnections::add(int socket, std::string address, Clock::time_point deadline) {
  const std::lock_guard lock(_mutex);
  const std::size_t number = _connections.size() + 1;
  _connections.push_back({socket, std::move(address), number, deadline});
  if (deadline < _nextLook) _isEarlier.notify_all();
  return std::prev(_connections.end());
}

void HttpConnections::remove(Handle connection) {
  const std::lock_guard lock(_mutex);
  _connections.erase(connection);
  _isLess.notify_all();
}

void HttpConnections::setDeadline(Handle connection, Clock::time_point deadline, bool isIdle) {
  const std::lock_guard lock(_mutex);
  connection->deadline = deadline;
  if (isIdle && !connection->isIdle) _isLess.notify_all();
  connection->isIdle = isIdle;
  if (deadline < _nextLook) _isEarlier.notify_all();
}

std::size_t HttpConnections::count() const {
  const std::lock_guard lock(_mutex);
  return _connections.size();
}

void HttpConnections::endIdle() {
  const std::lock_guard lock(_mutex);
  for (const Connection& each : _connections) {
    if (each.isIdle) shutdown(each.socket, SHUT_RDWR);
  }
}

void HttpConnections::endAll() {
  const std::lock_guard lock(_mutex);
  for (const Connection& each : _connections) shutdown(each.socket, SHUT_RDWR);
}

bool HttpConnections::waitUntilIdle(Clock::time_point deadline) {
  std::unique_lock lock(_mutex);
  return _isLess.wait_until(lock, deadline, [this] {
    return std::all_of(_connections.begin(), _connections.end(), [](const Connection& each) { return each.isIdle; });
  });
}

void HttpConnections::watch() {
  std::unique_lock lock(_mutex);
  while (!_isEnding) {
    const Clock::time_point now = Clock::now();
    _nextLook = kNever;
    for (Connection& each : _connections) {
      if (each.deadline > now) {
        _nextLook = std::min(_nextLook, each.deadline);
      } else {
        shutdown(each.socket, SHUT_RDWR);
        each.deadline = kNever;
      }
    }
    // A wait for the end of time is one that some C libraries take for one in the past.
    const Clock::time_point until = std::min(_nextLook, now + std::chrono::hours(1));
    _nextLook = until;
    _isEarlier.wait_until(lock, until);
  }
}

PeerState peerState(int socket) noexcept {
  pollfd watched{socket, POLLRDHUP, 0};
  if (poll(&watched, 1, 0) <= 0) return PeerState::There;
  if ((watched.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) return PeerState::Gone;
  return (watched.revents & POLLRDHUP) != 0 ? PeerState::SendsNoMore : PeerState::There;
}

bool takesMore(int socket) noexcept {
  pollfd watched{socket, POLLOUT, 0};
  return poll(&watched, 1, 0) > 0 && (watched.revents & POLLOUT) != 0;
}

bool sendNow(int socket, std::string_view text) noexcept {
  const ssize_t sent = ::send(socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  return sent >= 0 && static_cast<std::size_t>(sent) == text.size();
}
