// A compressed reply is the reply, and clients that do not take it are told apart.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <zlib.h>

#include "Cimom/Server/GzipReply.h"

namespace {

constexpr int kGzipWindow = 15 + 16;

std::string unpacked(const std::string& packed, std::size_t size) {
  std::string text(size + 1, '\0');
  z_stream stream{};
  EXPECT_EQ(inflateInit2(&stream, kGzipWindow), Z_OK);
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
  stream.avail_in = static_cast<uInt>(packed.size());
  stream.next_out = reinterpret_cast<Bytef*>(text.data());
  stream.avail_out = static_cast<uInt>(text.size());
  EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END);
  text.resize(stream.total_out);
  inflateEnd(&stream);
  return text;
}

// All its pieces; one of nothing is the end.
std::string packed(const std::string& text, std::size_t about) {
  const std::unique_ptr<ServerReply> reply = gzipped(std::make_unique<WholeReply>(text));
  std::string out;
  for (std::size_t before = 1; before != out.size();) {
    before = out.size();
    reply->append(out, about);
  }
  return out;
}

TEST(GzipReply, ItIsTheReplyInFewerBytes) {
  std::string text;
  for (int i = 0; i < 50000; ++i) text += "<VALUE>" + std::to_string(i) + "</VALUE>";
  const std::string out = packed(text, 65536);
  EXPECT_LT(out.size(), text.size() / 3);
  EXPECT_EQ(unpacked(out, text.size()), text);
}

TEST(GzipReply, PiecesOfAnySizeGiveTheSame) {
  const std::string text(1000, 'x');
  for (const std::size_t about : {1U, 7U, 1000U, 5000U}) EXPECT_EQ(unpacked(packed(text, about), text.size()), text);
  EXPECT_EQ(unpacked(packed("", 100), 0), "");
}

TEST(GzipReply, ItIsForThoseWhoTakeIt) {
  for (const char* const header : {"gzip", "GZIP", "deflate, gzip", "gzip;q=0.5", "deflate;q=1 , gzip ; q=1"}) {
    EXPECT_TRUE(acceptsGzip(header)) << header;
  }
  for (const char* const header : {"", "identity", "gzip;q=0", "gzip; q=0.000", "x-gzipped", "*", ","}) {
    EXPECT_FALSE(acceptsGzip(header)) << header;
  }
}

}  // namespace
