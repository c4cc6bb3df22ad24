// The base of all exceptions, and the errors that pointers and containers raise.
// SPDX-License-Identifier: Apache-2.0
#include "cmpbase/QoriBaseException.h"

#include "Cimom/Foundation/QORErrorTable.h"
#include "cimom/IQoriObject.h"
#include "cmpbase/QORBoundsException.h"
#include "cmpbase/QORNullPointerException.h"

QoriBaseException::QoriBaseException() noexcept = default;

QoriBaseException::QoriBaseException(const QORString& type, const QORString& who, const QORString& where,
                                     const QORString& message, QORuint32 code)
    : _type(type), _who(who), _where(where), _message(message), _code(code) {}

QoriBaseException::QoriBaseException(const QoriBaseException& other) = default;
QoriBaseException& QoriBaseException::operator=(const QoriBaseException& other) = default;
QoriBaseException::~QoriBaseException() = default;

QORBoundsException::QORBoundsException()
    : QoriBaseException(QORString(), QORString(), QORString(), qorErrorTable().outOfBounds, 0) {}

QORBoundsException::QORBoundsException(const QORString& who, const QORString& message, int code)
    : QoriBaseException(qorErrorTable().boundsType, who, QORString(), message, static_cast<QORuint32>(code)) {}

QORBoundsException::~QORBoundsException() = default;

QORNullPointerException::QORNullPointerException(const QORString& operation)
    : QoriBaseException(qorErrorTable().nullPointerType, qorErrorTable().pointerWho, operation,
                        qorErrorTable().nullPointerIn + operation, 0) {}

QORNullPointerException::~QORNullPointerException() = default;

void QORSmrPtrImpl::raise(const char* operation) { throw QORNullPointerException(operation); }

void QORSmrPtrImpl::raiseNullPointer(const char* operation) { throw QORNullPointerException(operation); }

void qorRaiseOutOfBounds() { throw QORBoundsException(); }

void qorRaiseEmptyList(const char* where) { throw QORBoundsException(where, qorErrorTable().emptyList, 0); }
