// A reply in the form that takes fewer bytes on the wire.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_GZIPREPLY_H
#define QORQL_SERVER_GZIPREPLY_H

#include <memory>
#include <string_view>

#include "Cimom/Server/ServerReply.h"

// Whether an Accept-Encoding header takes gzip.
bool acceptsGzip(std::string_view header);

// The reply in gzip, compressed while it leaves. THROWS std::bad_alloc.
std::unique_ptr<ServerReply> gzipped(std::unique_ptr<ServerReply> reply);

#endif
