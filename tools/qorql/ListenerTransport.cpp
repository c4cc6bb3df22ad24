// Sends each message as one request, in the plain form that old listeners understand.
// SPDX-License-Identifier: Apache-2.0
#include "ListenerTransport.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "Cimom/Remote/RemoteTransport.h"
#include "RemoteLibrary.h"

namespace {

// A listener has nothing to do but to take a message.
constexpr long kConnectSeconds = 10;
constexpr long kSilentSeconds = 20;
constexpr long kTotalSeconds = 60;
constexpr std::uint64_t kReplyBytes = std::uint64_t{1} << 20;

class ListenerTransport final : public ExportTransport {
 public:
  // BORROWS isStopped.
  ListenerTransport(std::string url, std::shared_ptr<const CurrentTrust> trust, const std::atomic<bool>& isStopped)
      : _url(std::move(url)), _trust(std::move(trust)), _isStopped(isStopped) {}

  std::string post(const std::string& message) override {
    const CurrentTrust::State now = _trust->get();
    if (_transport == nullptr || now.version != _version) connectAnew(now);
    const std::unique_ptr<RemoteExchange> exchange =
        _transport->post({{"CIMExport: MethodRequest", "CIMExportMethod: ExportIndication"}, message, true});
    std::string reply;
    std::array<char, 4096> piece{};
    while (const std::size_t count = exchange->read(piece.data(), piece.size())) reply.append(piece.data(), count);
    return reply;
  }

 private:
  // Connections that there are were made by the trust before.
  void connectAnew(const CurrentTrust::State& now) {
    RemoteEndpoint endpoint;
    endpoint.url = _url;
    endpoint.caFile = now.trust.caFile;
    endpoint.isInsecure = now.trust.isInsecure;
    endpoint.credentials = std::make_shared<RemoteCredentials>("", std::nullopt, nullptr);
    RemoteLimits limits;
    limits.connectSeconds = kConnectSeconds;
    limits.slowSeconds = kSilentSeconds;
    limits.totalSeconds = kTotalSeconds;
    limits.replyBytes = kReplyBytes;
    _transport = remoteLibrary().makeTransport(endpoint, limits, _isStopped);
    _version = now.version;
  }

  const std::string _url;
  const std::shared_ptr<const CurrentTrust> _trust;
  const std::atomic<bool>& _isStopped;
  std::unique_ptr<RemoteTransport> _transport;
  std::uint64_t _version = 0;
};

}  // namespace

ExportTransportMaker listenerTransports(std::shared_ptr<const CurrentTrust> trust) {
  return [trust = std::move(trust)](const std::string& url, const std::atomic<bool>& isStopped) {
    return std::make_unique<ListenerTransport>(url, trust, isStopped);
  };
}
