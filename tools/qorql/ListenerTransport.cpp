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
  explicit ListenerTransport(std::unique_ptr<RemoteTransport> transport) : _transport(std::move(transport)) {}

  std::string post(const std::string& message) override {
    const std::unique_ptr<RemoteExchange> exchange =
        _transport->post({{"CIMExport: MethodRequest", "CIMExportMethod: ExportIndication"}, message, true});
    std::string reply;
    std::array<char, 4096> piece{};
    while (const std::size_t count = exchange->read(piece.data(), piece.size())) reply.append(piece.data(), count);
    return reply;
  }

 private:
  const std::unique_ptr<RemoteTransport> _transport;
};

}  // namespace

ExportTransportMaker listenerTransports(const ListenerTrust& trust) {
  return [trust](const std::string& url, const std::atomic<bool>& isStopped) {
    RemoteEndpoint endpoint;
    endpoint.url = url;
    endpoint.caFile = trust.caFile;
    endpoint.isInsecure = trust.isInsecure;
    endpoint.credentials = std::make_shared<RemoteCredentials>("", std::nullopt, nullptr);
    RemoteLimits limits;
    limits.connectSeconds = kConnectSeconds;
    limits.slowSeconds = kSilentSeconds;
    limits.totalSeconds = kTotalSeconds;
    limits.replyBytes = kReplyBytes;
    return std::make_unique<ListenerTransport>(remoteLibrary().makeTransport(endpoint, limits, isStopped));
  };
}
