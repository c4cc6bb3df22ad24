// The message of a call, as a server or a listener receives it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLREQUESTREADER_H
#define QORQL_CIMXML_CIMXMLREQUESTREADER_H

#include <functional>
#include <string>
#include <string_view>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// A message that is no call, or not one of the kinds that are read: HTTP refuses it, with
// its word in the header CIMError. Type "CIM_Request", code 1; the message tells what and where.
class CimXmlRequestRefusal : public QoriBaseException {
 public:
  // `word`: "request-not-valid" and the like, a literal.
  CimXmlRequestRefusal(const char* word, const std::string& message);
  CimXmlRequestRefusal(const CimXmlRequestRefusal&) = default;
  CimXmlRequestRefusal& operator=(const CimXmlRequestRefusal&) = default;
  ~CimXmlRequestRefusal() override;

  const char* getWord() const noexcept { return _word; }

 private:
  const char* _word;
};

// Makes the object for an embedded class; without one these are not accepted.
using CimXmlMakeClassObject =
    std::function<QORSmrPtr<IQoriObject>(const QORString& nameSpace, const CimClassDeclaration& declaration)>;

// Reads the whole message of one call. Of a method's parameters none is kept but the object
// that it is called on, as "ObjectName". THROWS CimXmlRequestRefusal; and CimStatusException, status 4, where a
// parameter is given twice or its text is no value; what `makeClassObject` throws passes through. Kind, message,
// operation and namespace are there then, for the reply.
void readCimXmlRequest(std::string_view message, const CimXmlMakeClassObject& makeClassObject, CimXmlRequest& out);

#endif
