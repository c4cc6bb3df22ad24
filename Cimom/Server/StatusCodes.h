// The statuses of CIM operations, and of HTTP, that the server answers with.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp, tests/unit/Server/CimXmlServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_STATUSCODES_H
#define QORQL_SERVER_STATUSCODES_H

#include "cmpbase.h"

namespace cimstatus {
inline constexpr QORuint32 kFailed = 1;
inline constexpr QORuint32 kAccessDenied = 2;
inline constexpr QORuint32 kInvalidNameSpace = 3;
inline constexpr QORuint32 kInvalidParameter = 4;
inline constexpr QORuint32 kInvalidClass = 5;
inline constexpr QORuint32 kNotFound = 6;
inline constexpr QORuint32 kNotSupported = 7;
inline constexpr QORuint32 kQueryLanguageNotSupported = 14;
inline constexpr QORuint32 kInvalidQuery = 15;
inline constexpr QORuint32 kMethodNotAvailable = 16;
inline constexpr QORuint32 kMethodNotFound = 17;
inline constexpr QORuint32 kInvalidEnumerationContext = 21;
inline constexpr QORuint32 kInvalidOperationTimeout = 22;
inline constexpr QORuint32 kFilteredEnumerationNotSupported = 25;
inline constexpr QORuint32 kContinuationOnErrorNotSupported = 26;
inline constexpr QORuint32 kServerLimitsExceeded = 27;
inline constexpr QORuint32 kServerIsShuttingDown = 28;
}  // namespace cimstatus

namespace httpstatus {
inline constexpr unsigned kOk = 200;
inline constexpr unsigned kBadRequest = 400;
inline constexpr unsigned kUnauthorized = 401;
inline constexpr unsigned kForbidden = 403;
inline constexpr unsigned kMethodNotAllowed = 405;
inline constexpr unsigned kLengthRequired = 411;
inline constexpr unsigned kTooLarge = 413;
inline constexpr unsigned kUnsupportedMedia = 415;
inline constexpr unsigned kTooManyFailures = 429;
inline constexpr unsigned kServerError = 500;
inline constexpr unsigned kNotImplemented = 501;
inline constexpr unsigned kUnavailable = 503;
}  // namespace httpstatus

#endif  // QORQL_SERVER_STATUSCODES_H
