// The base of every exception that the engine or the object manager throws.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CMPBASE_QORIBASEEXCEPTION_H
#define QORQL_CMPBASE_QORIBASEEXCEPTION_H

#include <exception>

#include "cmpbase/QORSmrPtr.h"
#include "cmpbase/QORString.h"
#include "cmpbase/QORTypes.h"
#include "cmpbase/QORValSlist.h"

class IQoriObject;

// Thrown by value, copied freely; copies are independent. The texts that a
// thrower leaves unset are null strings (isNull() is true, length 0).
class QoriBaseException : public std::exception {
 public:
  using Instances = QORSmrPtr<QORValSlist<QORSmrPtr<IQoriObject>>>;

  QoriBaseException() noexcept;
  // What the operations below give; there are no instances.
  QoriBaseException(const QORString& type, const QORString& who, const QORString& where, const QORString& message,
                    QORuint32 code);
  QoriBaseException(const QoriBaseException& other);
  QoriBaseException& operator=(const QoriBaseException& other);
  ~QoriBaseException() override;

  // The kind of error, the component that threw it, the operation, the message for a person, and the code, whose
  // meaning the type tells.
  const QORString& getType() const noexcept { return _type; }
  const QORString& getWho() const noexcept { return _who; }
  const QORString& getWhere() const noexcept { return _where; }
  const QORString& getMessage() const noexcept { return _message; }
  QORuint32 getCode() const noexcept { return _code; }
  // Instances that describe the fault to a CIM client; a null pointer when there are none.
  const Instances& getInstances() const noexcept { return _instances; }

  // The message. Never null; valid while the exception lives.
  const char* what() const noexcept override { return _message.c_str(); }

 private:
  QORString _type;
  QORString _who;
  QORString _where;
  QORString _message;
  QORuint32 _code = 0;
  Instances _instances;
};

#endif
