// The messages that carry indications, and the replies to them.
// Tested by tests/unit/Server/IndicationServiceTest.cpp, tests/unit/Server/ListenServiceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_EXPORTMESSAGES_H
#define QORQL_SERVER_EXPORTMESSAGES_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

inline constexpr const char* kExportOperation = "ExportIndication";

// What a delivery adds to an indication.
struct DeliveryMark {
  QORString filterName;
  QORString sequenceContext;
  std::int64_t sequenceNumber = 0;
};

// The INSTANCE element of an indication with the properties that are selected, and the mark.
std::string indicationDocument(const IQoriObject& indication, const std::function<bool(const QORString& name)>& selects,
                               const DeliveryMark& mark);

// The message with such an element.
std::string exportMessage(std::string_view messageId, std::string_view indicationDocument);

// Takes the reply to it. THROWS CimStatusException when the listener refuses, CimXmlException for what is no such
// reply.
void readExportReply(std::string_view reply, std::string_view messageId);

// The reply of a listener that has taken it, and of one that refuses.
std::string exportResponse(std::string_view messageId);
std::string exportRefusal(std::string_view messageId, QORuint32 status, std::string_view description);

#endif
