// What WQL calls otherwise than CIM does.
// SPDX-License-Identifier: Apache-2.0
#include "WqlHint.h"

#include <algorithm>

namespace {

struct WqlWord {
  const char* word;
  const char* inCim;  // null: there is nothing like it
  bool isEvent;       // no class of CIM is called like that
};
constexpr WqlWord kWords[] = {
    {"__InstanceOperationEvent", "CIM_InstIndication", true},
    {"__InstanceCreationEvent", "CIM_InstCreation", true},
    {"__InstanceModificationEvent", "CIM_InstModification", true},
    {"__InstanceDeletionEvent", "CIM_InstDeletion", true},
    {"TargetInstance", "SourceInstance", false},
    {"WITHIN", nullptr, false},
};

bool isIn(const StatementText& text, const char* word) {
  const auto& pieces = text.pieces();
  return std::any_of(pieces.begin(), pieces.end(), [word](const StatementText::Piece& piece) {
    return piece.kind == StatementText::Kind::Word && QORString::equalIgnoringCase(piece.text, word);
  });
}

bool isAt(const StatementText& text, const std::vector<std::size_t>& places, const char* word) {
  return std::any_of(places.begin(), places.end(),
                     [&](std::size_t place) { return text.is(text.pieceAt(place), word); });
}

}  // namespace

std::string wqlHint(const StatementText& text, const std::vector<std::size_t>& places) {
  std::string hint;
  bool isWql = false;
  bool hasInterval = false;
  for (const WqlWord& word : kWords) {
    if (!isIn(text, word.word)) continue;
    isWql = isWql || word.isEvent || isAt(text, places, word.word);
    if (word.inCim == nullptr) {
      hasInterval = true;
    } else {
      hint += (hint.empty() ? "in CIM write " : ", ") + std::string(word.inCim) + " for " + word.word;
    }
  }
  if (!isWql) return {};
  if (!hasInterval) return hint;
  return hint.empty() ? "in CIM there is no WITHIN: leave it out" : hint + ", and leave out WITHIN";
}
