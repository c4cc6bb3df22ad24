// The foundation's plain types.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORTYPES_H
#define QORQL_CMPBASE_QORTYPES_H

#include <cstdint>

using QORboolean = bool;
using QORuint8 = std::uint8_t;
using QORuint16 = std::uint16_t;
using QORuint32 = std::uint32_t;
using QORuint64 = std::uint64_t;
using QORsint8 = std::int8_t;
using QORsint16 = std::int16_t;
using QORsint32 = std::int32_t;
using QORsint64 = std::int64_t;
using QORreal32 = float;
using QORreal64 = double;

#endif
