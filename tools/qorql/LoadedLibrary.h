// Loads the tool's own libraries that not every start needs.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_LOADEDLIBRARY_H
#define QORQL_TOOL_LOADEDLIBRARY_H

// The function of a library that lies in a folder beside that of the object manager ("qorql/libqorqlserver.so"); never
// null. The library stays loaded. THROWS std::runtime_error when it cannot be: "REFUSAL: REASON".
void* functionOfLibrary(const char* library, const char* function, const char* refusal);

#endif
