// A request is refused by its head where that is possible; a refusal of a short body is told when the body has been
// read, so that the connection can go on.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/HttpExchange.h"

#include <gnutls/gnutls.h>
#include <sys/socket.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <functional>
#include <string_view>
#include <utility>

#include "Cimom/Server/GzipReply.h"
#include "Cimom/Server/StatusCodes.h"

namespace {

using Clock = HttpConnections::Clock;

constexpr std::size_t kPiece = std::size_t{64} << 10;
constexpr std::uint64_t kSlowestBytes = std::uint64_t{16} << 10;   // of a body in a second, after the idle time
constexpr std::uint64_t kSkippedBytes = std::uint64_t{256} << 10;  // that are read of a body which nobody wants
constexpr std::chrono::seconds kLinger{2};
constexpr std::uint64_t kLingerBytes = std::uint64_t{1} << 20;
constexpr std::uint64_t kCompressedFrom = 1024;  // shorter replies leave as they are

constexpr std::chrono::seconds kProbeInterval{5};

using namespace httpstatus;

constexpr const char* kChallenge = "Basic realm=\"qorql\", charset=\"UTF-8\"";
constexpr const char* kAllowed = "POST, M-POST, OPTIONS";

bool isEqual(std::string_view one, std::string_view other) { return QORString::equalIgnoringCase(one, other); }

struct Headers {
  HttpRequest& request;
  bool& hasFolded;
};

// The library leaves names and values where they came in, each value behind its name; but a line that goes on with the
// one before is put behind the name, in a copy of it.
MHD_Result addHeader(void* given, MHD_ValueKind /*kind*/, const char* name, std::size_t nameSize, const char* value,
                     std::size_t valueSize) {
  const Headers& headers = *static_cast<const Headers*>(given);
  std::string_view content = value == nullptr ? std::string_view() : std::string_view(value, valueSize);
  content = content.substr(0, content.find_last_not_of(" \t") + 1);
  headers.hasFolded |= value != nullptr && !std::less<>()(name + nameSize, value);
  headers.request.headers.emplace_back(std::string(name, nameSize), std::string(content));
  return MHD_YES;
}

constexpr std::string_view kLettersAndDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";

// Whether it has no characters but letters, digits and these.
bool isMadeOf(std::string_view text, std::string_view others) noexcept {
  return std::all_of(text.begin(), text.end(), [others](char each) {
    return kLettersAndDigits.find(each) != std::string_view::npos || others.find(each) != std::string_view::npos;
  });
}

bool isHeaderName(std::string_view name) noexcept { return !name.empty() && isMadeOf(name, "!#$%&'*+-.^_`|~"); }
bool isHost(std::string_view host) noexcept { return isMadeOf(host, "-._~%!$&'()*+,;=:[]"); }

// How often a header is there.
std::size_t countOf(const HttpRequest& request, std::string_view name) {
  std::size_t count = 0;
  for (const auto& header : request.headers) count += isEqual(header.first, name) ? 1 : 0;
  return count;
}

// Of a reply that leaves piece by piece.
struct Outgoing {
  HttpConnections& connections;
  HttpConnections::Handle place;
  std::chrono::seconds patience;
  RequestRecord& record;
  std::shared_ptr<HttpService> service;  // outlives the body
  std::unique_ptr<ServerReply> body;
  std::string piece{};
  std::size_t sent = 0;  // of the piece
  bool isEnded = false;  // nothing comes after the piece

  // Makes the first piece. Returns whether that is all. THROWS what the reply throws.
  bool begin() {
    while (piece.size() < kPiece && !isEnded) {
      const std::size_t before = piece.size();
      body->append(piece, kPiece);
      isEnded = piece.size() == before;
    }
    return isEnded;
  }

  // The next bytes; 0 at the end. THROWS what the reply throws.
  std::size_t take(char* buffer, std::size_t capacity) {
    connections.setDeadline(place, HttpConnections::kNever, false);
    if (sent == piece.size() && !isEnded) {
      piece.clear();
      sent = 0;
      body->append(piece, kPiece);
    }
    const std::size_t count = std::min(capacity, piece.size() - sent);
    piece.copy(buffer, count, sent);
    sent += count;
    record.bytes += count;
    connections.setDeadline(place, Clock::now() + patience, false);
    return count;
  }
};

ssize_t takePiece(void* outgoing, std::uint64_t /*position*/, char* buffer, std::size_t capacity) {
  try {
    const std::size_t count = static_cast<Outgoing*>(outgoing)->take(buffer, capacity);
    return count == 0 ? ssize_t{MHD_CONTENT_READER_END_OF_STREAM} : static_cast<ssize_t>(count);
  } catch (const std::exception&) {
    return MHD_CONTENT_READER_END_WITH_ERROR;
  }
}

void forget(void* outgoing) { delete static_cast<Outgoing*>(outgoing); }

// What the client still sends is read for a moment, or closing the connection would take the reply from it.
void readOut(int socket) {
  shutdown(socket, SHUT_WR);
  const timeval wait{kLinger.count(), 0};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
  const Clock::time_point end = Clock::now() + kLinger;
  char buffer[4096];
  for (std::uint64_t count = 0; count < kLingerBytes && Clock::now() < end;) {
    const ssize_t got = recv(socket, buffer, sizeof buffer, 0);
    if (got <= 0) return;
    count += static_cast<std::uint64_t>(got);
  }
}

// Past the library, which queues no reply in the middle of a body. Returns whether all of it has been sent.
bool sendAtOnce(MHD_Connection* connection, int socket, std::string_view text) {
  const MHD_ConnectionInfo* const tls = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_GNUTLS_SESSION);
  if (tls == nullptr || tls->tls_session == nullptr) return sendNow(socket, text);
  const ssize_t sent = gnutls_record_send(static_cast<gnutls_session_t>(tls->tls_session), text.data(), text.size());
  return sent >= 0 && static_cast<std::size_t>(sent) == text.size();
}

}  // namespace

HttpExchange::HttpExchange(HttpShared& shared, HttpConnections::Handle place, MHD_Connection* connection,
                           const char* path, const char* method, std::string_view version)
    : _shared(shared),
      _place(place),
      _connection(connection),
      _limits(shared.limitsNow()),
      _service(shared.serviceNow()),
      _interruptions(shared.interruptions),
      _takesInterim(version == "HTTP/1.1") {
  _request.method = method;
  _request.path = path;
  _request.client.address = place->address;
  _request.client.stopReason = [this] { return stopReason(); };
  _record.client = place->address;
  readHeaders();
}

void HttpExchange::readHeaders() {
  Headers headers{_request, _hasFoldedHeader};
  MHD_get_connection_values_n(_connection, MHD_HEADER_KIND, &addHeader, &headers);
}

StopReason HttpExchange::stopReason() {
  if (_shared.interruptions != _interruptions) return StopReason::ShuttingDown;
  return isClientGone() ? StopReason::ClientGone : StopReason::None;
}

// A client that has gone and one that only sends nothing more look alike, until it is sent something. The second kind
// skips an interim reply; versions before 1.1 of HTTP do not know any, so there such a client is waited for.
bool HttpExchange::isClientGone() {
  const PeerState state = peerState(_place->socket);
  if (state != PeerState::SendsNoMore) return state == PeerState::Gone;
  const Clock::time_point now = Clock::now();
  if (!_takesInterim || now < _nextProbe || !takesMore(_place->socket)) return false;
  _nextProbe = now + kProbeInterval;
  if (sendAtOnce(_connection, _place->socket, "HTTP/1.1 100 Continue\r\n\r\n")) return false;
  // The client would read a reply as the rest of what was sent in part.
  shutdown(_place->socket, SHUT_RDWR);
  return true;
}

HttpExchange::Refusal HttpExchange::faultOfHead() {
  if (_shared.isDraining) return {kUnavailable, "the server is shutting down", true};
  if (_place->number > _limits->connections) return {kUnavailable, "there are too many connections", true};
  for (const Refusal& fault : {faultOfHeaders(), faultOfLength()}) {
    if (fault.status != 0) return fault;
  }
  // No client of CIM sends it, but every browser for a page that is not to talk to this server.
  if (_request.header("Origin") != nullptr) return {kForbidden, "pages of browsers may not ask this server"};
  if (_request.method == "GET" || _request.method == "HEAD") return {kMethodNotAllowed, "operations come by POST"};
  if (_request.method == "OPTIONS") return {kOk, ""};
  if (_request.method != "POST" && _request.method != "M-POST") return {kNotImplemented, "there is no such method"};
  const std::string* const encoding = _request.header("Content-Encoding");
  if (encoding != nullptr && !isEqual(*encoding, "identity")) {
    return {kUnsupportedMedia, "a request's body is taken as it is, without an encoding"};
  }
  return faultOfUser();
}

HttpExchange::Refusal HttpExchange::faultOfUser() {
  if (_shared.users == nullptr) return {};
  const std::chrono::seconds wait(_limits->failureSeconds);
  const HttpUsers::Verdict verdict = _shared.users->judge(_place->address, _request.header("Authorization"),
                                                          _limits->failures, wait, _request.client.user);
  _record.user = _request.client.user;
  std::erase_if(_request.headers, [](const auto& header) { return isEqual(header.first, "Authorization"); });
  if (verdict == HttpUsers::Verdict::Right) return {};
  if (verdict == HttpUsers::Verdict::Wrong) return {kUnauthorized, "user and password are asked for"};
  return {kTooManyFailures, "too many wrong passwords came from here: try again later", true};
}

// Somebody between might read such a head in another way.
HttpExchange::Refusal HttpExchange::faultOfHeaders() const {
  if (_hasFoldedHeader) return {kBadRequest, "a header goes on in the next line", true};
  const bool areNamed = std::all_of(_request.headers.begin(), _request.headers.end(),
                                    [](const auto& header) { return isHeaderName(header.first); });
  if (!areNamed) return {kBadRequest, "the name of a header is none", true};
  const std::string* const host = _request.header("Host");
  if (host == nullptr) return _takesInterim ? Refusal{kBadRequest, "Host is missing", true} : Refusal{};
  if (countOf(_request, "Host") > 1) return {kBadRequest, "Host is given twice", true};
  if (!isHost(*host)) return {kBadRequest, "Host is none", true};
  return {};
}

// Where the length of the body can be read in two ways, somebody between might read it in the other.
HttpExchange::Refusal HttpExchange::faultOfLength() {
  const std::string* const length = _request.header("Content-Length");
  const std::string* const transfer = _request.header("Transfer-Encoding");
  if (length != nullptr && transfer != nullptr) {
    return {kBadRequest, "Content-Length and Transfer-Encoding exclude each other", true};
  }
  if (countOf(_request, "Content-Length") > 1 || countOf(_request, "Transfer-Encoding") > 1) {
    return {kBadRequest, "the length of the body is given twice", true};
  }
  if (transfer != nullptr && !isEqual(*transfer, "chunked")) {
    return {kNotImplemented, "no Transfer-Encoding but chunked is known", true};
  }
  if (length == nullptr) {
    const bool lacksBody = transfer == nullptr && (_request.method == "POST" || _request.method == "M-POST");
    return lacksBody ? Refusal{kLengthRequired, "Content-Length is missing", true} : Refusal{};
  }
  const auto [end, error] = std::from_chars(length->data(), length->data() + length->size(), _declared);
  if (error == std::errc::invalid_argument || end != length->data() + length->size()) {
    return {kBadRequest, "Content-Length is no number", true};
  }
  if (error != std::errc() || _declared > _limits->bodyBytes) return {kTooLarge, "the request is too large", true};
  return {};
}

MHD_Result HttpExchange::begin() {
  _shared.connections.setDeadline(_place, _begin + std::chrono::seconds(_limits->idleSeconds), false);
  _refusal = faultOfHead();
  _refusal.endsConnection |= _refusal.status != 0 && _declared > kSkippedBytes;
  return _refusal.endsConnection ? refuse(_refusal) : MHD_YES;
}

MHD_Result HttpExchange::take(const char* bytes, std::size_t count) {
  _received += count;
  const std::chrono::seconds allowed(_limits->idleSeconds + _received / kSlowestBytes);
  _shared.connections.setDeadline(_place, _begin + allowed, false);
  if (_refusal.status != 0) return _received <= kSkippedBytes ? MHD_YES : abandon();
  if (_received > _limits->bodyBytes) {
    _refusal = {kTooLarge, "the request is too large", true};
    return abandon();
  }
  _request.body.append(bytes, count);
  return MHD_YES;
}

// Only a body in chunks comes to be too long.
MHD_Result HttpExchange::abandon() {
  const std::string status = std::to_string(_refusal.status);
  sendAtOnce(_connection, _place->socket,
             "HTTP/1.1 " + status + " Refused\r\nConnection: close\r\nContent-Length: 0\r\n\r\n");
  _record.http = _refusal.status;
  _record.note.statusText = _refusal.reason;
  _wasCut = true;
  return MHD_NO;
}

MHD_Result HttpExchange::answer() {
  _shared.connections.setDeadline(_place, HttpConnections::kNever, false);
  if (_refusal.status != 0) return refuse(_refusal);
  try {
    return send(serve());
  } catch (const std::exception& failure) {
    _shared.requestLog.complain(failure.what());
    return refuse({kServerError, "the server has failed"});
  }
}

HttpReply HttpExchange::serve() {
  HttpReply reply = _service->serve(_request);
  if (reply.body == nullptr) throw std::runtime_error("there is no reply");
  return reply;
}

MHD_Result HttpExchange::refuse(const Refusal& refusal) {
  HttpReply reply;
  reply.status = refusal.status;
  reply.note = _record.note;  // of a reply that failed when it was to begin
  reply.note.statusText = refusal.reason;
  if (refusal.status == kOk || refusal.status == kMethodNotAllowed) reply.headers.emplace_back("Allow", kAllowed);
  if (refusal.status == kUnavailable) reply.headers.emplace_back("Retry-After", "1");
  if (refusal.status == kUnauthorized) reply.headers.emplace_back("WWW-Authenticate", kChallenge);
  if (refusal.status == kTooManyFailures) {
    reply.headers.emplace_back("Retry-After", std::to_string(_limits->failureSeconds));
  }
  if (refusal.endsConnection) reply.headers.emplace_back("Connection", "close");
  if (*refusal.reason != '\0') reply.headers.emplace_back("Content-Type", "text/plain; charset=utf-8");
  const std::string text = *refusal.reason == '\0' ? "" : std::string(refusal.reason) + '\n';
  reply.body = std::make_unique<WholeReply>(text);
  _wasCut = refusal.endsConnection;
  return send(std::move(reply));
}

// Where the client takes it and there is enough of it.
void HttpExchange::compress(HttpReply& reply) const {
  const std::string* const accepted = _request.header("Accept-Encoding");
  if (accepted == nullptr || !acceptsGzip(*accepted)) return;
  const auto* const whole = dynamic_cast<const WholeReply*>(reply.body.get());
  if (whole != nullptr && whole->size() < kCompressedFrom) return;
  reply.body = gzipped(std::move(reply.body));
  reply.headers.emplace_back("Content-Encoding", "gzip");
}

MHD_Result HttpExchange::send(HttpReply reply) {
  compress(reply);
  _record.note = std::move(reply.note);
  const std::chrono::seconds patience(_limits->idleSeconds);
  auto outgoing = std::make_unique<Outgoing>(
      Outgoing{_shared.connections, _place, patience, _record, _service, std::move(reply.body)});
  const std::uint64_t size = outgoing->begin() ? outgoing->piece.size() : MHD_SIZE_UNKNOWN;
  _record.http = reply.status;
  MHD_Response* const response = MHD_create_response_from_callback(size, kPiece, &takePiece, outgoing.get(), &forget);
  if (response == nullptr) return MHD_NO;
  static_cast<void>(outgoing.release());
  _nextProbe = HttpConnections::kNever;
  // Who listens with another certificate by now takes the place of those by whom it came.
  if (_place->listeners != _shared.listeners) MHD_add_response_header(response, "Connection", "close");
  // The library takes no empty value; a blank is one to whoever reads it.
  for (const auto& [name, value] : reply.headers) {
    MHD_add_response_header(response, name.c_str(), value.empty() ? " " : value.c_str());
  }
  const MHD_Result isQueued = MHD_queue_response(_connection, _record.http, response);
  MHD_destroy_response(response);
  _shared.connections.setDeadline(_place, Clock::now() + patience, false);
  return isQueued;
}

void HttpExchange::end(MHD_RequestTerminationCode how) {
  _record.isWhole = how == MHD_REQUEST_TERMINATED_COMPLETED_OK;
  _record.milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - _begin).count();
  _shared.requestLog.tell(_record);
  if (_wasCut) readOut(_place->socket);
  const auto deadline = Clock::now() + std::chrono::seconds(_limits->idleSeconds);
  _shared.connections.setDeadline(_place, deadline, true);
}
