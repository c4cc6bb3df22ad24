// The one place where refusals are thrown.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/RepositoryError.h"

namespace embedded {

QORString joined(std::initializer_list<std::string_view> parts) {
  QORString text;
  for (const std::string_view part : parts) text.append(part);
  return text;
}

void refuse(CimStatus status, std::initializer_list<std::string_view> message) {
  throw QoriBaseException("CIM_Repository", "CIMOM", QORString(), joined(message), static_cast<QORuint32>(status));
}

}  // namespace embedded
