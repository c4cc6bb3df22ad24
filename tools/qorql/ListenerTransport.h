// The way by which indications go to listeners over HTTP.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LISTENERTRANSPORT_H
#define QORQL_TOOL_LISTENERTRANSPORT_H

#include <string>

#include "Cimom/Server/ExportTransport.h"

// How listeners are known whose URL is of https.
struct ListenerTrust {
  std::string caFile;  // PEM, in place of the system's certificates; empty: those
  bool isInsecure = false;
};

ExportTransportMaker listenerTransports(const ListenerTrust& trust);

#endif
