// What is asked for and cannot be kept is refused, so that no client relies on it.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/EnumerationParameters.h"

#include <optional>
#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Server/QueryRows.h"
#include "Cimom/Server/ServerObjects.h"

namespace {

std::chrono::milliseconds timeOf(const CimXmlRequest& request, const ServerLimits& limits) {
  const std::optional<QORuint32> asked = request.number("OperationTimeout");
  if (!asked) return limits.betweenPulls;
  const auto most = std::chrono::duration_cast<std::chrono::seconds>(limits.longestBetweenPulls).count();
  if (*asked > 0 && *asked <= most) return std::chrono::seconds(*asked);
  throw CimStatusException(cimstatus::kInvalidOperationTimeout, "OperationTimeout is " + std::to_string(*asked) +
                                                                    ": from 1 to " + std::to_string(most) +
                                                                    " seconds are kept here");
}

}  // namespace

EnumerationParameters::EnumerationParameters(const CimXmlRequest& request, const ServerLimits& limits)
    : betweenPulls(timeOf(request, limits)), most(request.number("MaxObjectCount").value_or(0)) {
  if (!request.flag("ContinueOnError", false)) return;
  throw CimStatusException(cimstatus::kContinuationOnErrorNotSupported, "enumerations end at the first error here");
}

void refuseFilter(const CimXmlRequest& request) {
  const std::optional<QORString> language = request.text("FilterQueryLanguage");
  const std::optional<QORString> query = request.text("FilterQuery");
  if (!language && !query) return;
  if (!language || !query) {
    throw CimStatusException(cimstatus::kInvalidParameter, "FilterQuery and FilterQueryLanguage go together");
  }
  QueryRows::requireLanguage(*language);
  try {
    QORQL_Statement(*query, request.nameSpace).parse();
  } catch (const QoriBaseException& error) {
    throw CimStatusException(cimstatus::kInvalidQuery, QueryRows::messageOf(error, *query));
  }
  throw CimStatusException(cimstatus::kFilteredEnumerationNotSupported,
                           "enumerations are not filtered here: OpenQueryInstances runs a query");
}
