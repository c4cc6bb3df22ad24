// Writes and reads them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ExportMessages.h"

#include <algorithm>
#include <cstring>

#include "Cimom/CimXml/CimXmlMessages.h"
#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/CimXmlReply.h"
#include "Cimom/CimXml/CimXmlWriter.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr const char* kFilterName = "IndicationFilterName";
constexpr const char* kContext = "SequenceContext";
constexpr const char* kNumber = "SequenceNumber";

bool isMark(const QORString& name) {
  return name.isEqualCaseInsensitive(kFilterName) || name.isEqualCaseInsensitive(kContext) ||
         name.isEqualCaseInsensitive(kNumber);
}

void add(CimXmlInstance& instance, const QORString& name, const QORSmrPtr<IQoriType>& type,
         const IQoriValue::Pointer& value) {
  CimXmlProperty& property = instance.add(name.view());
  property.type = CQoriType::codeOf(*type);
  property.isArray = type->isArray();
  property.value = value;
}

}  // namespace

std::string indicationDocument(const IQoriObject& indication, const std::function<bool(const QORString& name)>& selects,
                               const DeliveryMark& mark) {
  CimXmlInstance instance;
  instance.className = indication.getClassName();
  for (QORuint32 i = 0; i < indication.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property(indication.getPropertyAt(i));
    if (isMark(property->getName()) || !selects(property->getName())) continue;
    add(instance, property->getName(), property->getType(), property->getValue());
  }
  const long long number = mark.sequenceNumber;
  add(instance, kFilterName, CQoriType::string, new CQoriValue(mark.filterName));
  add(instance, kContext, CQoriType::string, new CQoriValue(mark.sequenceContext));
  add(instance, kNumber, CQoriType::sint64, new CQoriValue(number, CQoriType::sint64));
  std::string text;
  CimXmlWriter(text).writeInstance(*CimXmlObjects(QORString::emptyString()).make(instance));
  return text;
}

std::string exportMessage(std::string_view messageId, std::string_view indicationDocument) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
      "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE";
  CimXmlWriter(text).writeAttribute("ID", messageId);
  text +=
      " PROTOCOLVERSION=\"1.0\"><SIMPLEEXPREQ><EXPMETHODCALL NAME=\"ExportIndication\">"
      "<EXPPARAMVALUE NAME=\"NewIndication\">";
  text += indicationDocument;
  return text += "</EXPPARAMVALUE></EXPMETHODCALL></SIMPLEEXPREQ></MESSAGE></CIM>\n";
}

void readExportReply(std::string_view reply, std::string_view messageId) {
  std::size_t at = 0;
  CimXmlReply read(
      [&](char* buffer, std::size_t capacity) {
        const std::size_t count = std::min(capacity, reply.size() - at);
        std::memcpy(buffer, reply.data() + at, count);
        at += count;
        return count;
      },
      kExportOperation, messageId, QORString::emptyString());
  while (read.next() != CimXmlReply::Item::End) continue;
}

std::string exportResponse(std::string_view messageId) {
  return CimXmlResponse(messageId, kExportOperation, CimXmlRequest::Kind::Export).finish();
}

std::string exportRefusal(std::string_view messageId, QORuint32 status, std::string_view description) {
  CimXmlResponse response(messageId, kExportOperation, CimXmlRequest::Kind::Export);
  response.setError(status, description);
  return response.finish();
}
