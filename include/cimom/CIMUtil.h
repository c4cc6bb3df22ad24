// Helpers of the object manager for messages and XML.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CIMUTIL_H
#define QORQL_CIMOM_CIMUTIL_H

#include <iosfwd>
#include <string>
#include <string_view>

#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

// Stateless; any thread may call.
class CIMUtil {
 public:
  // "CIM status <status>: <message>".
  static QORString CreateCIMErrorMsg(int status, const QORString& message);
  // & < > " ' escaped, and every character that XML 1.0 forbids (and every
  // byte that is not UTF-8) replaced by U+FFFD. Returns the argument's own
  // buffer when nothing needs a change.
  static QORString xmlEncode(const QORString& text);
  // Appends what xmlEncode gives.
  static void appendXmlEncoded(std::string& out, std::string_view text) { out += xmlEncode(QORString(text)).view(); }
  // Writes the CIM-XML INSTANCEPATH element without line feeds. The host is
  // written when withHost is set, with the port when that is not empty;
  // `localOnly` writes LOCALINSTANCEPATH, without a host.
  static void StreamInstancePath(std::ostream& out, const IQoriInstanceName& name, const QORString& hostAddress,
                                 const QORString& hostPort, bool withHost, bool localOnly);
};

#endif
