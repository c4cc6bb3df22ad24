// Lays out graphs with graphviz, whose library is loaded when a picture is asked for.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_GRAPHLAYOUT_H
#define QORQL_TOOL_GRAPHLAYOUT_H

#include <string>

// The graph, in the DOT language, as an SVG image. THROWS std::runtime_error where the library is not installed or
// cannot lay it out.
std::string svgOf(const std::string& dot);
// The same within one HTML page that needs nothing else, light or dark as the reader's system is.
std::string htmlOf(const std::string& dot);

#endif
