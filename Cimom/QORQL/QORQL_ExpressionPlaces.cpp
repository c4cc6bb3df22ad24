// Where the words of an expression stand in the statement's text.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/QORQL/QORQL_ExpressionPlaces.h"

#include <algorithm>
#include <cstddef>

#include "Cimom/QORQL/QORQL_Association.h"
#include "Cimom/QORQL/QORQL_ExpressionShape.h"
#include "Cimom/QORQL/QORQL_ExpressionVisitor.h"
#include "Cimom/QORQL/QORQL_Factor.h"

namespace {

// Keeps the first place.
class PlaceFinder : public QORQL_ExpressionVisitor {
 public:
  using PlaceOfAssociation = std::function<QORuint32(const QORQL_Association&)>;

  PlaceFinder(const QORQL_PlaceOf& placeOf, const PlaceOfAssociation& placeOfAssociation)
      : _placeOf(placeOf), _placeOfAssociation(placeOfAssociation) {}

  void visitFactor(const QORQL_Factor& factor) override {
    if (_place == QORQL_Fault::kNowhere) _place = _placeOf(factor);
  }
  void visitAssociation(const QORQL_Association& association) override {
    if (_place == QORQL_Fault::kNowhere && _placeOfAssociation) _place = _placeOfAssociation(association);
  }
  QORuint32 place() const noexcept { return _place; }

 private:
  const QORQL_PlaceOf& _placeOf;
  const PlaceOfAssociation& _placeOfAssociation;
  QORuint32 _place = QORQL_Fault::kNowhere;
};

QORuint32 find(QORQL_Evaluatable& node, const QORQL_PlaceOf& placeOf,
               const PlaceFinder::PlaceOfAssociation& placeOfAssociation) {
  auto* const finder = new PlaceFinder(placeOf, placeOfAssociation);
  QORSmrPtr<QORQL_ExpressionVisitor> visitor(finder);
  node.accept(visitor);
  return finder->place();
}

bool beginsWord(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isInWord(char c) { return beginsWord(c) || (c >= '0' && c <= '9'); }

}  // namespace

QORuint32 QORQL_startOf(const QORQL_Evaluatable& node) noexcept {
  const QORQL_Evaluatable* start = &node;
  while (const QORQL_Evaluatable* const leading = QORQL_leadingOperand(*start)) start = leading;
  return start->getOffset();
}

QORuint32 QORQL_findPlace(QORQL_Evaluatable& node, const QORQL_PlaceOf& placeOf) { return find(node, placeOf, {}); }

QORuint32 QORQL_findProperty(QORQL_Evaluatable& node, const QORString& className, const QORString& propertyName,
                             std::string_view text) {
  return QORQL_findPlace(node, [&](const QORQL_Factor& factor) {
    const bool isAsked = QORQL_isName(factor.getClassName(), className) &&
                         QORQL_ownProperty(factor).isEqualCaseInsensitive(propertyName);
    return isAsked ? QORQL_placeOfOwnProperty(text, factor) : QORQL_Fault::kNowhere;
  });
}

QORuint32 QORQL_findFromName(QORQL_Evaluatable& node, const QORString& name) {
  const auto placeOf = [&](const QORQL_Factor& factor) {
    const bool isBare = factor.isBareIdentifier() && QORQL_isName(factor.getPropertyName(), name);
    return isBare || QORQL_isName(factor.getClassName(), name) ? factor.getOffset() : QORQL_Fault::kNowhere;
  };
  const auto placeOfAssociation = [&](const QORQL_Association& association) {
    return association.getDestination().isEqualCaseInsensitive(name) ? association.getDestinationOffset()
                                                                     : QORQL_Fault::kNowhere;
  };
  return find(node, placeOf, placeOfAssociation);
}

// Between them stand dots, scopes, indices without letters, blanks and what the scanner skips.
std::vector<QORuint32> QORQL_placesOfNames(std::string_view text, const QORQL_Factor& reference) {
  std::vector<QORuint32> places;
  const std::size_t last = std::min<std::size_t>(reference.getPropertyOffset(), text.size());
  for (std::size_t at = reference.getOffset(); at < last;) {
    if (beginsWord(text[at])) places.push_back(static_cast<QORuint32>(at));
    const bool isWord = isInWord(text[at]);
    ++at;
    while (isWord && at < last && isInWord(text[at])) ++at;
  }
  places.push_back(reference.getPropertyOffset());
  return places;
}

QORuint32 QORQL_placeOfOwnProperty(std::string_view text, const QORQL_Factor& reference) {
  if (!QORQL_hasPath(reference)) return reference.getPropertyOffset();
  const std::vector<QORuint32> places = QORQL_placesOfNames(text, reference);
  return places.size() < 2 ? reference.getOffset() : places[1];
}
