// What the kernel's files about one process tell, where libproc2 does not tell it or not why it cannot.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROCESSFILES_H
#define QORQL_PROVIDERS_LINUXPROCESSFILES_H

#include <optional>
#include <string>
#include <string_view>

#include "cmpbase.h"

// Each takes the path of a file or folder such as /proc/1/exe. Nothing, with
// errno set, means that it cannot be read. Stateless; any thread may call.

// Where a link leads.
std::optional<std::string> readProcessLink(const std::string& link);
// How many entries a folder has: the open files of a process.
std::optional<QORuint32> countEntries(const std::string& folder);
// Whether the program that a process runs is still where it was when the
// process began: false once it was deleted or another file took its place.
// Nothing, with errno 0, for a program that is in memory alone and was never a file.
std::optional<bool> executableExists(const std::string& link);

// The control group that the content of a file "cgroup" tells: the one of the
// unified hierarchy; where that is the root, the first of the other hierarchies
// that is not. A null string when there is none.
QORString controlGroupIn(std::string_view content);

// The name of a process, without its line end; empty for none that can be seen.
std::string processName(int pid);

// Warns where the processes of other users are not shown to the caller, so that
// what is told of all processes is told of the caller's own.
void warnOfHiddenProcesses();

#endif
