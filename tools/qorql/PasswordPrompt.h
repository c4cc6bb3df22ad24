// Asks a person for a password.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PASSWORDPROMPT_H
#define QORQL_TOOL_PASSWORDPROMPT_H

#include <optional>
#include <string>

// Asks at the terminal, which does not show what is typed. Nothing where
// standard error is no terminal, where the terminal cannot be used, and when the
// person ends the input. One question at a time, from any thread.
std::optional<std::string> askForPassword(const std::string& question);

#endif
