// The engine's parse of a statement, in the form of outlineByModel.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_ENGINEOUTLINE_H
#define QORQL_TESTS_ENGINEOUTLINE_H

#include <string>

// By the object manager that is current. A fault is given as QueryRun gives it.
std::string outlineByEngine(const std::string& text, const std::string& nameSpace);

#endif
