// Conditions and arithmetic that do not mean what someone who knows SQL expects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_NODESURPRISES_H
#define QORQL_NODESURPRISES_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/QORQL/Explain/QORQL_DeclaredTypes.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "Cimom/QORQL/QORQL_ExpressionText.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"

// Visits the trees of one statement and keeps the first node of each kind.
// BORROWS its arguments, the last of which is the statement's text, and the nodes.
class QORQL_NodeSurprises : public QORQL_ExpressionVisitor {
 public:
  QORQL_NodeSurprises(const QORQL_DeclaredTypes& types, const QORQL_ExpressionText& texts, std::string_view text)
      : _types(types), _texts(texts), _text(text) {}

  void visitComparison(const QORQL_Comparison& node) override;
  void visitArithmetic(const QORQL_Arithmetic& node) override;
  void visitTerm(const QORQL_Term& node) override;
  void visitFactor(const QORQL_Factor& node) override;
  void visitFunction(const QORQL_Function& node) override;
  void visitAssociation(const QORQL_Association& node) override;

  // Comparisons and what they compare.
  void addConditions(std::vector<QORQL_Surprise>& found) const;
  // What queries and filters compute alike.
  void addArithmetic(std::vector<QORQL_Surprise>& found) const;
  // Names, functions and associations.
  void addReferences(std::vector<QORQL_Surprise>& found) const;

  // The first left or full, and the first outer join of any kind; null when there is none.
  const QORQL_Comparison* leftJoin() const noexcept { return _leftJoin; }
  const QORQL_Comparison* outerJoin() const noexcept { return _outerJoin; }

 private:
  void lookAtArrays(const QORQL_Comparison& node);
  bool isOfUnknownClass(const QORQL_Comparison& isa) const;
  bool isReal32BesideOther(const QORQL_Comparison& node) const;
  // What the texts are about, side by side with them. REQUIRE that there is one.
  const QORQL_Evaluatable& arraySide() const;
  const QORQL_Evaluatable& askedSide() const;
  const QORQL_Evaluatable& real32Side() const;
  QORuint32 scopePlace() const;
  // The digits that the text has at the place of a node.
  std::string_view digitsAt(const QORQL_Factor& node) const noexcept;
  std::string arrayText() const;
  std::string real32Text() const;
  QORQL_Surprise associationText() const;

  const QORQL_DeclaredTypes& _types;
  const QORQL_ExpressionText& _texts;
  const std::string_view _text;
  const QORQL_Comparison* _like = nullptr;
  const QORQL_Comparison* _isa = nullptr;  // of a class that there is not
  const QORQL_Comparison* _turned = nullptr;
  const QORQL_Comparison* _unequal = nullptr;
  const QORQL_Comparison* _leftJoin = nullptr;
  const QORQL_Comparison* _outerJoin = nullptr;
  const QORQL_Comparison* _array = nullptr;  // a whole array where elements would be asked
  const QORQL_Comparison* _asked = nullptr;  // ANY or EVERY of what is no array
  const QORQL_Comparison* _real32 = nullptr;
  const QORQL_Evaluatable* _grouped = nullptr;
  const QORQL_Factor* _negated = nullptr;   // a uint64
  const QORQL_Factor* _tooLow = nullptr;    // a literal after a minus that sint64 does not hold
  const QORQL_Factor* _tooGreat = nullptr;  // a literal that uint64 does not hold
  const QORQL_Factor* _scope = nullptr;
  const QORQL_Function* _counted = nullptr;
  const QORQL_Association* _association = nullptr;
};

// The value that a real32 holds in place of a number; empty when it holds the number itself.
std::string QORQL_nearestReal32(const QoriScalar& number);

#endif
