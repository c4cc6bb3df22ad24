// The file in which users and passwords of hosts stand for many programs.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_NETRCFILE_H
#define QORQL_TOOL_NETRCFILE_H

#include <string_view>

// Whether ~/.netrc has an entry for a host, or one for all that it does not name. False when the file cannot be read.
bool isInNetrc(std::string_view host);

#endif
