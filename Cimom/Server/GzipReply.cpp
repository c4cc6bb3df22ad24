// Compresses for speed: most of what is said twice in CIM-XML is said close by.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/GzipReply.h"

#include <zlib.h>

#include <new>
#include <utility>

#include "cmpbase.h"

namespace {

constexpr int kGzipWindow = 15 + 16;  // what zlib takes for gzip's own form
constexpr int kMemory = 8;

class GzipReply : public ServerReply {
 public:
  explicit GzipReply(std::unique_ptr<ServerReply> reply) : _reply(std::move(reply)) {
    if (deflateInit2(&_stream, Z_BEST_SPEED, Z_DEFLATED, kGzipWindow, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  GzipReply(const GzipReply&) = delete;
  GzipReply& operator=(const GzipReply&) = delete;
  ~GzipReply() override { deflateEnd(&_stream); }

  void append(std::string& out, std::size_t about) override {
    const std::size_t before = out.size();
    while (out.size() == before && !_isEnded) {
      _plain.clear();
      _reply->append(_plain, about);
      compress(out, _plain.empty() ? Z_FINISH : Z_NO_FLUSH);
      _isEnded = _plain.empty();
    }
  }

 private:
  void compress(std::string& out, int flush) {
    char buffer[16384];
    _stream.next_in = reinterpret_cast<Bytef*>(_plain.data());
    _stream.avail_in = static_cast<uInt>(_plain.size());
    do {
      _stream.next_out = reinterpret_cast<Bytef*>(buffer);
      _stream.avail_out = sizeof buffer;
      deflate(&_stream, flush);
      out.append(buffer, sizeof buffer - _stream.avail_out);
    } while (_stream.avail_out == 0);
  }

  const std::unique_ptr<ServerReply> _reply;
  z_stream _stream{};
  std::string _plain;
  bool _isEnded = false;
};

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// "q=0", "q=0.0".
bool isZeroWeight(std::string_view parameter) {
  const bool isWeight = parameter.starts_with("q=") || parameter.starts_with("Q=");
  return isWeight && parameter.substr(2).find_first_not_of("0.") == std::string_view::npos;
}

}  // namespace

bool acceptsGzip(std::string_view header) {
  while (!header.empty()) {
    const std::string_view one = trimmed(header.substr(0, header.find(',')));
    header.remove_prefix(
        std::min(header.size(), header.find(',') == header.npos ? header.size() : header.find(',') + 1));
    const std::size_t semicolon = one.find(';');
    const std::string_view name = trimmed(one.substr(0, semicolon));
    const std::string_view parameter = semicolon == one.npos ? std::string_view() : trimmed(one.substr(semicolon + 1));
    if (QORString::equalIgnoringCase(name, "gzip")) return !isZeroWeight(parameter);
  }
  return false;
}

std::unique_ptr<ServerReply> gzipped(std::unique_ptr<ServerReply> reply) {
  return std::make_unique<GzipReply>(std::move(reply));
}
