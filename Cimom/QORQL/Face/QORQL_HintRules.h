// The rules of hints, each of which is asked about a scene and says nothing where it does not apply. QORQL_Hint.cpp has
// the table of them, in the order in which they are asked.
// Tested by tests/unit/QORQL/HintTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_HINTRULES_H
#define QORQL_HINTRULES_H

#include <optional>

#include "Cimom/QORQL/Face/QORQL_HintScene.h"

namespace QORQL_HintRules {

using Fault = QORQL_Fault;
using Kind = QORQL_TextPieces::Kind;
using Scene = QORQL_HintScene;
using Answer = std::optional<QORQL_HintScene::Found>;

constexpr std::size_t kNowhere = QORQL_TextPieces::kNowhere;

inline std::string textOf(const QORString& text) { return std::string(text.view()); }

// Quotes, blanks and comments: QORQL_QuoteHints.cpp.
Answer curlyQuote(const Scene& scene);
Answer openQuote(const Scene& scene);
Answer doubleQuote(const Scene& scene);
Answer otherQuote(const Scene& scene);
Answer missingBlank(const Scene& scene);
Answer comment(const Scene& scene);

// Words and forms of other languages: QORQL_ForeignHints.cpp.
Answer foreignWord(const Scene& scene);
Answer groupBy(const Scene& scene);
Answer columnBesideAggregate(const Scene& scene);
Answer unknownFunction(const Scene& scene);
Answer countOfAll(const Scene& scene);
Answer unknownForm(const Scene& scene);
Answer foreignStatement(const Scene& scene);
Answer classAlone(const Scene& scene);

// Conditions: QORQL_ConditionHints.cpp.
Answer comparisonWithNull(const Scene& scene);
Answer lateNot(const Scene& scene);
Answer doubleEquals(const Scene& scene);
Answer foreignSign(const Scene& scene);
Answer exclamationMark(const Scene& scene);
Answer exponent(const Scene& scene);
Answer parenthesis(const Scene& scene);
Answer halfAssociation(const Scene& scene);
Answer missingValue(const Scene& scene);
Answer missingElement(const Scene& scene);
Answer incomparable(const Scene& scene);

}  // namespace QORQL_HintRules

#endif
