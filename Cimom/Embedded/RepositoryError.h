// How the object manager refuses a declaration, an instance or a call.
// Tested by tests/unit/Embedded/InstanceStoreTest.cpp, tests/unit/Embedded/LoadTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_REPOSITORYERROR_H
#define QORQL_EMBEDDED_REPOSITORYERROR_H

#include <initializer_list>
#include <string_view>

#include "cmpbase.h"

namespace embedded {

// The CIM status codes that a refusal carries.
enum class CimStatus : QORuint32 {
  Failed = 1,
  InvalidNamespace = 3,
  InvalidParameter = 4,
  InvalidClass = 5,
  NotFound = 6,
  InvalidSuperclass = 10,
  AlreadyExists = 11,
  NoSuchProperty = 12,
  TypeMismatch = 13
};

QORString joined(std::initializer_list<std::string_view> parts);

// THROWS QoriBaseException (type "CIM_Repository") with the parts joined as message.
[[noreturn]] void refuse(CimStatus status, std::initializer_list<std::string_view> message);

}  // namespace embedded

#endif
