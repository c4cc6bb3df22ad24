// How instances are named here, where a server may have a name and another namespace, and how they are named there.
// Tested by tests/unit/Remote/RemoteNamesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_REMOTE_REMOTENAMES_H
#define QORQL_REMOTE_REMOTENAMES_H

#include <string>
#include <string_view>

#include "cimom/IQoriInstanceName.h"
#include "cmpbase.h"

namespace remote {

// The same text for every spelling of the class in that namespace.
std::string classKey(const QORString& nameSpace, const QORString& className);

// "array1" of "//array1/root/cimv2"; empty where no server is named. BORROWS the text.
std::string_view serverOf(std::string_view nameSpace);

// "root/cimv2" of "//array1/root/cimv2"; any other text as it is. BORROWS the text.
std::string_view withoutServer(std::string_view nameSpace);

// The name with all that it refers to as the server has them: without the server's name, and in the namespace `there`
// where it says `here`.
QORSmrPtr<IQoriInstanceName> nameThere(const IQoriInstanceName& name, const QORString& here, const QORString& there);

}  // namespace remote

#endif
