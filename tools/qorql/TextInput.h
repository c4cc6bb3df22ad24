// Reads a text from a file or from standard input.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_TEXTINPUT_H
#define QORQL_TOOL_TEXTINPUT_H

#include <string>

// The whole content. Both throw std::runtime_error, naming the file, for what cannot be read to its end and for more
// than 512 MB, since a device such as /dev/zero never ends.
std::string readTextFile(const std::string& path);
std::string readStandardInput();

#endif
