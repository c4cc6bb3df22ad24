// The failure of an instance provider.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORIPROVIDEREXCEPTION_H
#define QORQL_CIMOM_CQORIPROVIDEREXCEPTION_H

#include "cmpbase.h"

// Type "provider"; the code is the CIM status that the provider reports.
class CQoriProviderException : public QoriBaseException {
 public:
  // The provider's name becomes the exception's who.
  CQoriProviderException(const QORString& provider, const QORString& message, QORuint32 cimStatus);
  CQoriProviderException(const CQoriProviderException&) = default;
  CQoriProviderException& operator=(const CQoriProviderException&) = default;
  ~CQoriProviderException() override;
};

#endif
