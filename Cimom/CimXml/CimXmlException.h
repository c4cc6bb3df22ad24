// What is wrong with a CIM-XML document, and what a server says is wrong with a call.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLEXCEPTION_H
#define QORQL_CIMXML_CIMXMLEXCEPTION_H

#include <string>
#include <string_view>

#include "cmpbase.h"

// A document that cannot be read. Type "CIM_Xml", code 1 (CIM status "failed");
// the message ends with the place: "... at line 3, column 17". Lines and columns
// count from 1, a column is one byte.
class CimXmlException : public QoriBaseException {
 public:
  enum class Kind {
    Form,       // it is no well-formed XML
    Structure,  // its elements are not those of CIM-XML, or go beyond a bound
    Value       // a text in it is no value of its type
  };

  CimXmlException(const std::string& message, QORuint64 line, QORuint64 column, Kind kind = Kind::Structure);
  CimXmlException(const CimXmlException&) = default;
  CimXmlException& operator=(const CimXmlException&) = default;
  ~CimXmlException() override;

  // The message without the place.
  const QORString& getFault() const noexcept { return _fault; }
  QORuint64 getLine() const noexcept { return _line; }
  QORuint64 getColumn() const noexcept { return _column; }
  Kind getKind() const noexcept { return _kind; }

 private:
  QORString _fault;
  QORuint64 _line;
  QORuint64 _column;
  Kind _kind;
};

// The status that a server answers in place of a result. Type "CIM_Status", the
// code is the status, the message "CIM_ERR_ACCESS_DENIED (2): <description>".
class CimStatusException : public QoriBaseException {
 public:
  CimStatusException(QORuint32 status, std::string_view description);
  CimStatusException(const CimStatusException&) = default;
  CimStatusException& operator=(const CimStatusException&) = default;
  ~CimStatusException() override;

  // As the server wrote it.
  const QORString& getDescription() const noexcept { return _description; }

 private:
  QORString _description;
};

namespace cimxml {

// "CIM_ERR_ACCESS_DENIED (2)"; "CIM status 99" for a number that has no name.
std::string statusText(QORuint32 status);

}  // namespace cimxml

#endif
