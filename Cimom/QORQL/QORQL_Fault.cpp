// What an error of the engine is about, and where in the statement's text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_Fault.h"

#include <algorithm>

#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_ParseException.h"

const QORQL_Fault* QORQL_faultOf(const QoriBaseException& error) noexcept {
  if (const auto* parsing = dynamic_cast<const QORQL_ParseException*>(&error)) return &parsing->getFault();
  if (const auto* const running = dynamic_cast<const QORQL_Exception*>(&error)) return &running->getFault();
  const auto* const comparing = dynamic_cast<const QORQL_ValueException*>(&error);
  return comparing == nullptr ? nullptr : &comparing->getFault();
}

QORQL_Place QORQL_placeOf(std::string_view text, std::size_t offset) noexcept {
  const std::string_view before = text.substr(0, std::min(offset, text.size()));
  const std::size_t newline = before.rfind('\n');
  const std::string_view line = newline == std::string_view::npos ? before : before.substr(newline + 1);
  QORQL_Place place;
  place.line += static_cast<QORuint32>(std::count(before.begin(), before.end(), '\n'));
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool goesOn = (static_cast<unsigned char>(line[i]) & 0xC0U) == 0x80U && i > 0 &&
                        (static_cast<unsigned char>(line[i - 1]) & 0x80U) != 0;
    if (!goesOn) ++place.column;
  }
  return place;
}
