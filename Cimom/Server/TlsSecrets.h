// The certificate of a server and its private key.
// Tested by tests/server/users_test.py.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_TLSSECRETS_H
#define QORQL_SERVER_TLSSECRETS_H

#include <string>

#include "Cimom/Server/HttpServer.h"

// Their texts in PEM; empty without TLS.
struct TlsSecrets {
  // THROWS std::runtime_error, which names the file: one cannot be read or used, or the two do not belong together.
  explicit TlsSecrets(const HttpCertificate& files);
  bool areThere() const noexcept { return !certificate.empty(); }

  std::string certificate;
  std::string key;
};

#endif
