// The name is asked for once.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerHost.h"

#include <unistd.h>

#include <array>

const QORString& serverHost() {
  static const QORString host = [] {
    std::array<char, 256> name{};
    const bool isKnown = gethostname(name.data(), name.size() - 1) == 0 && name[0] != '\0';
    return QORString(isKnown ? name.data() : "localhost");
  }();
  return host;
}
