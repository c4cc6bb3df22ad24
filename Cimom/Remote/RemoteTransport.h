// How documents are sent to a server and its replies are read while they arrive.
// Tested by tests/remote/tool_server_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTETRANSPORT_H
#define QORQL_REMOTE_REMOTETRANSPORT_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// Who asks. Threads share one: the transports of a server ask for a password once.
class RemoteCredentials {
 public:
  // Asks a person; nothing where nobody can be asked, and once nobody waits for the answer any more.
  using Ask = std::function<std::optional<std::string>(const std::atomic<bool>& isStopped)>;

  RemoteCredentials(std::string user, std::optional<std::string> password, Ask ask)
      : _user(std::move(user)), _password(std::move(password)), _ask(std::move(ask)) {}
  RemoteCredentials(const RemoteCredentials&) = delete;
  RemoteCredentials& operator=(const RemoteCredentials&) = delete;

  const std::string& user() const noexcept { return _user; }
  std::optional<std::string> password() const {
    const std::lock_guard lock(_mutex);
    return _password;
  }
  // Asks once, but again where the question was stopped; returns whether there is a password now that `used` was not.
  bool askInPlaceOf(const std::optional<std::string>& used, const std::atomic<bool>& isStopped) {
    const std::lock_guard lock(_mutex);
    if (_password != used) return true;
    if (_password.has_value() || _user.empty() || _ask == nullptr || _hasAsked) return false;
    _password = _ask(isStopped);
    _hasAsked = _password.has_value() || !isStopped;
    return _password.has_value();
  }

 private:
  const std::string _user;  // empty: nobody in particular
  mutable std::mutex _mutex;
  std::optional<std::string> _password;
  const Ask _ask;
  bool _hasAsked = false;
};

struct RemoteEndpoint {
  std::string url;     // without a user
  std::string caFile;  // PEM, in place of the system's certificates; empty: those
  bool isInsecure = false;
  std::shared_ptr<RemoteCredentials> credentials;
};

struct RemoteLimits {
  long connectSeconds = 30;
  long leastSpeed = 100;                                    // bytes a second
  long slowSeconds = 60;                                    // in which fewer come than at that speed
  std::uint64_t replyBytes = std::uint64_t{1} << 30;        // of one reply, uncompressed
  std::uint64_t enumerationBytes = std::uint64_t{1} << 32;  // of all replies to one enumeration, uncompressed
  long totalSeconds = 0;                                    // of one exchange; 0: without end
};

// Bytes on the wire of one exchange, without those of TLS.
struct RemoteTraffic {
  std::uint64_t sent = 0;
  std::uint64_t received = 0;
};

// The server does not know the operation.
class RemoteUnknownOperation : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The server cannot be reached, or sends nothing.
class RemoteSilence : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// One request and its reply. What goes wrong THROWS std::runtime_error with a
// message that neither names the server nor holds a password.
class RemoteExchange {
 public:
  virtual ~RemoteExchange() = default;
  // Fills at most `capacity` bytes of the uncompressed reply and says how many; 0 at its end.
  virtual std::size_t read(char* buffer, std::size_t capacity) = 0;
  virtual RemoteTraffic traffic() const = 0;
};

struct RemotePost {
  std::vector<std::string> headers;  // "Name: value"
  std::string body;
  bool isPlain = false;  // for those who understand neither compression nor several media types
};

// Keeps its connection from one exchange to the next. One thread and one exchange at a time.
class RemoteTransport {
 public:
  virtual ~RemoteTransport() = default;
  virtual std::unique_ptr<RemoteExchange> post(RemotePost post) = 0;
};

// Made by a library of its own, which is loaded when a server is asked, since
// what it needs would slow down every start. An exchange ends within moments
// with "the call was stopped" once `isStopped` is true. BORROWS that.
using RemoteTransportMaker = RemoteTransport* (*)(const RemoteEndpoint& endpoint, const RemoteLimits& limits,
                                                  const std::atomic<bool>& isStopped);

// It lies beside the library that asks servers.
inline constexpr const char* kRemoteHttpLibrary = "libqorqlhttp.so";
inline constexpr const char* kRemoteHttpFunction = "qorqlMakeTransport";

// THROWS std::runtime_error when the library cannot be loaded.
std::unique_ptr<RemoteTransport> makeRemoteTransport(const RemoteEndpoint& endpoint, const RemoteLimits& limits,
                                                     const std::atomic<bool>& isStopped);

#endif
