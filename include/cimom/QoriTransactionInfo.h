// The context of one client call.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_QORITRANSACTIONINFO_H
#define QORQL_CIMOM_QORITRANSACTIONINFO_H

#include "cmpbase.h"

// The caller's authorization for a provider call; the engine passes a null pointer.
class QoriProviderAuthorization {
 public:
  virtual ~QoriProviderAuthorization() = default;
};

// Immutable. Carries the query to the provider, so that it may filter at the source.
class QoriTransactionInfo {
 public:
  // A null authorization is that of the process; the timeout is in seconds, as CIMApi::DefaultTimeout; any text may
  // be empty. The engine fills in text and language of the query, and leaves the others empty.
  QoriTransactionInfo(const QORSmrPtr<QoriProviderAuthorization>& authorization, const QORString& user,
                      const QORString& client, QORsint32 timeout, const QORString& locale, const QORString& hostAddress,
                      const QORString& hostPort, const QORString& queryString, const QORString& queryLanguage);
  ~QoriTransactionInfo();
  // What the constructor was given, for a provider that filters by the query or asks a server of its own.
  const QORSmrPtr<QoriProviderAuthorization>& getAuthorization() const noexcept { return _authorization; }
  QORsint32 getTimeout() const noexcept { return _timeout; }
  const QORString& getQueryString() const noexcept { return _queryString; }
  const QORString& getQueryLanguage() const noexcept { return _queryLanguage; }

 private:
  QORSmrPtr<QoriProviderAuthorization> _authorization;
  QORString _user;
  QORString _client;
  QORsint32 _timeout;
  QORString _locale;
  QORString _hostAddress;
  QORString _hostPort;
  QORString _queryString;
  QORString _queryLanguage;
};

#endif
