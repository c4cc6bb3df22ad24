// Which qorql this is.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_VERSION_H
#define QORQL_TOOL_VERSION_H

// The version, with the commit that it was built from where that is known.
const char* versionText();

#endif
