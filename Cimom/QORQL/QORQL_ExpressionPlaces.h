// Where the words of an expression stand in the statement's text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EXPRESSIONPLACES_H
#define QORQL_EXPRESSIONPLACES_H

#include <functional>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "Cimom/QORQL/QORQL_Fault.h"

class QORQL_Factor;

// These walk the tree: they are for statements that are wrong or warned of.
// Names ignore case. QORQL_Fault::kNowhere stands for no place.

// Where the text of a node begins: its first word or sign, ANY and EVERY left out.
QORuint32 QORQL_startOf(const QORQL_Evaluatable& node) noexcept;

// The first place that the test gives for a factor of the expression; an association has none.
using QORQL_PlaceOf = std::function<QORuint32(const QORQL_Factor&)>;
QORuint32 QORQL_findPlace(QORQL_Evaluatable& node, const QORQL_PlaceOf& placeOf);
// The first property of that name that is asked of the class, named as the tree has it; of a path the step after the
// class. The text is the statement's.
QORuint32 QORQL_findProperty(QORQL_Evaluatable& node, const QORString& className, const QORString& propertyName,
                             std::string_view text);
// The first class or alias of that name: before a dot, alone, in a function, or as an association's destination.
QORuint32 QORQL_findFromName(QORQL_Evaluatable& node, const QORString& name);

// Where the names of a reference stand, in order: of `a.b[2].Cls::x` those of `a`, `b`, `Cls` and `x`. The text is the
// statement's.
std::vector<QORuint32> QORQL_placesOfNames(std::string_view text, const QORQL_Factor& reference);
// Where the property of QORQL_ownProperty stands. Without the text a path is told by its first name.
QORuint32 QORQL_placeOfOwnProperty(std::string_view text, const QORQL_Factor& reference);

#endif
