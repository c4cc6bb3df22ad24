// The context of a client call, and the failure of a provider.
// Tested by tests/unit/Model/CIMUtilTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/QoriTransactionInfo.h"

#include "cimom/CQoriProviderException.h"

QoriTransactionInfo::QoriTransactionInfo(const QORSmrPtr<QoriProviderAuthorization>& authorization,
                                         const QORString& user, const QORString& client, QORsint32 timeout,
                                         const QORString& locale, const QORString& hostAddress,
                                         const QORString& hostPort, const QORString& queryString,
                                         const QORString& queryLanguage)
    : _authorization(authorization),
      _user(user),
      _client(client),
      _timeout(timeout),
      _locale(locale),
      _hostAddress(hostAddress),
      _hostPort(hostPort),
      _queryString(queryString),
      _queryLanguage(queryLanguage) {}

QoriTransactionInfo::~QoriTransactionInfo() = default;

CQoriProviderException::CQoriProviderException(const QORString& provider, const QORString& message, QORuint32 cimStatus)
    : QoriBaseException("provider", provider, QORString(), message, cimStatus) {}

CQoriProviderException::~CQoriProviderException() = default;
