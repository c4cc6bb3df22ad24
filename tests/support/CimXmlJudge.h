// Judges CIM-XML documents by the DMTF's document type definition.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_CIMXMLJUDGE_H
#define QORQL_TESTS_CIMXMLJUDGE_H

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <memory>
#include <string>

// The DMTF's document type definition judges whole documents.
class CimXmlJudge {
 public:
  CimXmlJudge()
      : _dtd(xmlParseDTD(nullptr,
                         reinterpret_cast<const xmlChar*>(QORQL_SOURCE_DIR "/tests/support/CIM_DTD_V24.dtd"))) {}
  ~CimXmlJudge() { xmlFreeDtd(_dtd); }
  CimXmlJudge(const CimXmlJudge&) = delete;
  CimXmlJudge& operator=(const CimXmlJudge&) = delete;

  // What is wrong with the document; empty when it is valid.
  std::string verdict(const std::string& document) const {
    if (_dtd == nullptr) return "the document type definition cannot be read";
    std::string faults;
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> parsed(
        xmlReadMemory(document.data(), static_cast<int>(document.size()), "document.xml", "UTF-8",
                      XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET),
        &xmlFreeDoc);
    if (!parsed) return "not well-formed: " + document;
    const std::unique_ptr<xmlValidCtxt, decltype(&xmlFreeValidCtxt)> context(xmlNewValidCtxt(), &xmlFreeValidCtxt);
    context->userData = &faults;
    context->error = &takeFault;
    context->warning = context->error;
    return xmlValidateDtd(context.get(), parsed.get(), _dtd) == 1 ? "" : "invalid: " + faults + document;
  }

 private:
  // The format alone tells what is wrong; the document follows in the verdict.
  static void takeFault(void* to, const char* format, ...) { *static_cast<std::string*>(to) += format; }

  xmlDtd* _dtd;
};

#endif
