// What the library that serves would refuse without a reason is tried here first.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/TlsSecrets.h"

#include <gnutls/gnutls.h>
#include <gnutls/x509.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

std::string textOf(const std::string& path) {
  std::ifstream file(path);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) throw std::runtime_error("cannot read " + path);
  // An empty certificate must not be taken for none.
  if (text.empty()) throw std::runtime_error(path + " is empty");
  return text;
}

gnutls_datum_t bytesOf(std::string& text) {
  return {reinterpret_cast<unsigned char*>(text.data()), static_cast<unsigned>(text.size())};
}

void require(int result, const std::string& what) {
  if (result < 0) throw std::runtime_error(what + ": " + gnutls_strerror(result));
}

int tryCertificate(std::string& text) {
  const gnutls_datum_t bytes = bytesOf(text);
  gnutls_x509_crt_t* list = nullptr;
  unsigned count = 0;
  const int result = gnutls_x509_crt_list_import2(&list, &count, &bytes, GNUTLS_X509_FMT_PEM, 0);
  for (unsigned i = 0; i < count && result >= 0; ++i) gnutls_x509_crt_deinit(list[i]);
  if (result >= 0) gnutls_free(list);
  return result;
}

int tryKey(std::string& text) {
  const gnutls_datum_t bytes = bytesOf(text);
  gnutls_x509_privkey_t key = nullptr;
  int result = gnutls_x509_privkey_init(&key);
  if (result < 0) return result;
  result = gnutls_x509_privkey_import2(key, &bytes, GNUTLS_X509_FMT_PEM, nullptr, 0);
  gnutls_x509_privkey_deinit(key);
  return result;
}

int tryPair(std::string& certificate, std::string& key) {
  const gnutls_datum_t certificateBytes = bytesOf(certificate);
  const gnutls_datum_t keyBytes = bytesOf(key);
  gnutls_certificate_credentials_t pair = nullptr;
  int result = gnutls_certificate_allocate_credentials(&pair);
  if (result < 0) return result;
  result = gnutls_certificate_set_x509_key_mem(pair, &certificateBytes, &keyBytes, GNUTLS_X509_FMT_PEM);
  gnutls_certificate_free_credentials(pair);
  return result;
}

}  // namespace

TlsSecrets::TlsSecrets(const HttpCertificate& files) {
  if (files.file.empty()) return;
  certificate = textOf(files.file);
  key = textOf(files.keyFile);
  require(tryCertificate(certificate), "the certificate " + files.file);
  require(tryKey(key), "the private key " + files.keyFile);
  require(tryPair(certificate, key), "the certificate " + files.file + " with the private key " + files.keyFile);
}
