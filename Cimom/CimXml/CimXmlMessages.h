// Whole messages: calls of operations, and their replies.
// Tested by tests/unit/CimXml/CimXmlWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLMESSAGES_H
#define QORQL_CIMXML_CIMXMLMESSAGES_H

#include <span>
#include <string>
#include <string_view>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// The message of one call of an intrinsic operation. Parameters stand in the
// order in which they are added. One thread at a time.
class CimXmlCall {
 public:
  CimXmlCall(std::string_view messageId, std::string_view operation, const QORString& nameSpace);
  CimXmlCall(const CimXmlCall&) = delete;
  CimXmlCall& operator=(const CimXmlCall&) = delete;

  void addText(const char* name, std::string_view value);
  void addFlag(const char* name, bool value);
  void addNumber(const char* name, QORuint64 value);
  void addTexts(const char* name, std::span<const QORString> values);
  void addClassName(const char* name, const QORString& className);
  void addInstanceName(const char* name, const IQoriInstanceName& instanceName);

  // The whole message; the call is used up.
  std::string finish();

 private:
  void beginParameter(const char* name);
  void endParameter();

  std::string _text;
  CimXmlWriter _writer;
};

// The reply to one call of that kind. Values first, then outputs; or an error alone.
class CimXmlResponse {
 public:
  CimXmlResponse(std::string_view messageId, std::string_view operation,
                 CimXmlRequest::Kind kind = CimXmlRequest::Kind::Operation);
  CimXmlResponse(const CimXmlResponse&) = delete;
  CimXmlResponse& operator=(const CimXmlResponse&) = delete;

  // Writes values; REQUIRES that no output was added.
  CimXmlWriter& values();
  void addOutput(const char* name, std::string_view value);
  void addOutputFlag(const char* name, bool value);
  void addOutputClass(const char* name, const CimClassDeclaration& declaration);
  // REQUIRES that nothing else was added.
  void setError(QORuint32 status, std::string_view description);

  // What was written since the last call, so that a long reply can leave in pieces.
  std::string take();
  // The rest of the message; the response is used up.
  std::string finish();

 private:
  void endValues();
  void addOutput(const char* name, const char* type, std::string_view value);

  const CimXmlRequest::Kind _kind;
  std::string _text;
  CimXmlWriter _writer;
  bool _hasValues = false;
  bool _valuesEnded = false;
};

#endif
