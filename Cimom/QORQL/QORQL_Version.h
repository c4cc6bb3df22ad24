// The version of the libraries, which the build holds to its own.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_VERSION_H
#define QORQL_VERSION_H

// Of these headers.
#define QORQL_VERSION_MAJOR 0
#define QORQL_VERSION_MINOR 1
#define QORQL_VERSION_PATCH 0

// Of the engine's library that the process has loaded: "major.minor.patch".
// BORROWS from the library. Any thread may call.
const char* QORQL_version() noexcept;

#endif
