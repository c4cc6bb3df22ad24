// Names of the CIM statuses, and the texts of the exceptions.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlException.h"

#include <iterator>

namespace {

// By number; null for the numbers that mean nothing.
constexpr const char* kStatusNames[] = {
    nullptr,
    "CIM_ERR_FAILED",
    "CIM_ERR_ACCESS_DENIED",
    "CIM_ERR_INVALID_NAMESPACE",
    "CIM_ERR_INVALID_PARAMETER",
    "CIM_ERR_INVALID_CLASS",
    "CIM_ERR_NOT_FOUND",
    "CIM_ERR_NOT_SUPPORTED",
    "CIM_ERR_CLASS_HAS_CHILDREN",
    "CIM_ERR_CLASS_HAS_INSTANCES",
    "CIM_ERR_INVALID_SUPERCLASS",
    "CIM_ERR_ALREADY_EXISTS",
    "CIM_ERR_NO_SUCH_PROPERTY",
    "CIM_ERR_TYPE_MISMATCH",
    "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED",
    "CIM_ERR_INVALID_QUERY",
    "CIM_ERR_METHOD_NOT_AVAILABLE",
    "CIM_ERR_METHOD_NOT_FOUND",
    nullptr,
    nullptr,
    "CIM_ERR_NAMESPACE_NOT_EMPTY",
    "CIM_ERR_INVALID_ENUMERATION_CONTEXT",
    "CIM_ERR_INVALID_OPERATION_TIMEOUT",
    "CIM_ERR_PULL_HAS_BEEN_ABANDONED",
    "CIM_ERR_PULL_CANNOT_BE_ABANDONED",
    "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED",
    "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED",
    "CIM_ERR_SERVER_LIMITS_EXCEEDED",
    "CIM_ERR_SERVER_IS_SHUTTING_DOWN",
};

QORString withPlace(const std::string& message, QORuint64 line, QORuint64 column) {
  return QORString(message + " at line " + std::to_string(line) + ", column " + std::to_string(column));
}

QORString withStatus(QORuint32 status, std::string_view description) {
  std::string text = cimxml::statusText(status);
  if (!description.empty()) text.append(": ").append(description);
  return QORString(text);
}

}  // namespace

std::string cimxml::statusText(QORuint32 status) {
  const char* const name = status < std::size(kStatusNames) ? kStatusNames[status] : nullptr;
  if (name == nullptr) return "CIM status " + std::to_string(status);
  return name + (" (" + std::to_string(status) + ')');
}

CimXmlException::CimXmlException(const std::string& message, QORuint64 line, QORuint64 column, Kind kind)
    : QoriBaseException("CIM_Xml", "CimXml", "XmlPull", withPlace(message, line, column), 1),
      _fault(message),
      _line(line),
      _column(column),
      _kind(kind) {}

CimXmlException::~CimXmlException() = default;

CimStatusException::CimStatusException(QORuint32 status, std::string_view description)
    : QoriBaseException("CIM_Status", "CimXml", "CimXmlReply", withStatus(status, description), status),
      _description(description) {}

CimStatusException::~CimStatusException() = default;
