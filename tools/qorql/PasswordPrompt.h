// Asks a person for a password.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_PASSWORDPROMPT_H
#define QORQL_TOOL_PASSWORDPROMPT_H

#include <atomic>
#include <optional>
#include <string>

// Asks at the terminal, which does not show what is typed. Nothing where
// standard error is no terminal, where the terminal cannot be used, when the
// person ends the input, and within moments once `isStopped` is true. One
// question at a time, from any thread.
std::optional<std::string> askForPassword(const std::string& question, const std::atomic<bool>& isStopped);

#endif
