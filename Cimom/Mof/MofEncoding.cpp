// Two units that form a surrogate pair are one character; a unit of a pair that
// stands alone is none.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofEncoding.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "Cimom/Mof/MofLiterals.h"

namespace {

constexpr std::size_t kMarkSize = 2;

class Units {
 public:
  Units(std::string_view bytes, bool isBigEndian) : _bytes(bytes), _high(isBigEndian ? 0 : 1) {}

  std::size_t count() const noexcept { return _bytes.size() / 2; }
  QORuint32 at(std::size_t index) const noexcept { return byte(2 * index + _high) << 8 | byte(2 * index + 1 - _high); }

 private:
  QORuint32 byte(std::size_t offset) const noexcept { return static_cast<unsigned char>(_bytes[offset]); }

  std::string_view _bytes;
  std::size_t _high;  // place of the high byte in a unit
};

bool isSurrogate(QORuint32 unit) { return unit >= 0xD800 && unit < 0xE000; }
bool isHigh(QORuint32 unit) { return unit >= 0xD800 && unit < 0xDC00; }

// False at half of a character; `out` then ends before it.
bool appendUnits(const Units& units, std::string& out) {
  for (std::size_t i = 0; i < units.count(); ++i) {
    QORuint32 code = units.at(i);
    if (isSurrogate(code)) {
      const QORuint32 low = i + 1 < units.count() ? units.at(i + 1) : 0;
      if (!isHigh(code) || !isSurrogate(low) || isHigh(low)) return false;
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
      ++i;
    }
    appendUtf8(code, out);
  }
  return true;
}

}  // namespace

bool decodeMofText(std::string& text) {
  const std::string_view bytes(text);
  const bool isBigEndian = bytes.starts_with("\xFE\xFF");
  if (!isBigEndian && !bytes.starts_with("\xFF\xFE")) return true;
  std::string decoded;
  decoded.reserve(bytes.size() / 2);
  const bool isWhole = appendUnits(Units(bytes.substr(kMarkSize), isBigEndian), decoded) && bytes.size() % 2 == 0;
  text = std::move(decoded);
  return isWhole;
}
