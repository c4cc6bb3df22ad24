// Texts of MOF that are not UTF-8.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFENCODING_H
#define QORQL_MOF_MOFENCODING_H

#include <string>

// Makes UTF-8, without a byte order mark, of a text that starts with the byte
// order mark of UTF-16; any other text stays as it is. False when half of a
// character is missing somewhere: the text then ends before it. Takes time in
// proportion to the text.
bool decodeMofText(std::string& text);

#endif
