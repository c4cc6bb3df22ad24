// What is suspicious about a valid filter.
#include "FilterWarnings.h"

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Suggestion.h"

std::vector<std::string> FilterWarnings::of(const CQLQueryStatement& statement) {
  _warnings.clear();
  const std::string never(statement.neverMatchesBecause().view());
  if (!never.empty()) _warnings.push_back(never);
  for (std::size_t i = _text.behindFrom(); i < _text.pieces().size(); ++i) {
    const FilterText::Piece& piece = _text.pieces()[i];
    std::string_view name = piece.text;
    if (piece.kind == FilterText::Kind::Literal && name.size() > 2) name = name.substr(1, name.size() - 2);
    if (i > 0 && _text.is(i - 1, "ISA")) checkClass(i, name);
    if (_text.isWord(i) && _text.is(i + 1, "::")) checkClass(i, name);
    if (_text.beginsReference(i) && _text.is(i + 1, ".")) checkReference(i);
  }
  return _warnings;
}

void FilterWarnings::warn(const std::string& warning, std::size_t piece) {
  _warnings.push_back(warning + " (" + _text.place(_text.pieces()[piece].offset) + ")");
}

// A schema need not be complete; but a name that is nearly a class is hardly meant.
void FilterWarnings::checkClass(std::size_t piece, std::string_view name) {
  if (CQLQueryValidator::findClass(_nameSpace, QORString(name))) return;
  Suggestion suggestion(name);
  for (const QORString& candidate : _manager.classNames(_nameSpace)) suggestion.consider(candidate.view());
  if (suggestion.best().empty()) return;
  warn(std::string(name) + " is no class of " + std::string(_nameSpace.view()) + ": did you mean " + suggestion.best() +
           "?",
       piece);
}

bool FilterWarnings::hasProperty(const std::string& className, std::string_view property) const {
  return CQLQueryValidator::findProperty(_nameSpace, QORString(className), QORString(property), true);
}

// The first name before a dot is a FROM name, or a property that holds an object.
void FilterWarnings::checkReference(std::size_t piece) {
  const std::string name(_text.pieces()[piece].text);
  const std::string className = _text.classOf(name);
  if (!className.empty()) {
    const bool isProperty = _text.isWord(piece + 2) && !_text.is(piece + 3, "::");
    if (!isProperty || hasProperty(className, _text.pieces()[piece + 2].text)) return;
    warn(std::string(_text.pieces()[piece + 2].text) + " is no property of " + className + ": it never matches",
         piece + 2);
    return;
  }
  Suggestion suggestion(name);
  for (const FilterText::Source& source : _text.sources()) {
    if (hasProperty(source.className, name)) return;
    suggestion.consider(source.className);
    suggestion.consider(source.alias);
    for (const CimPropertyDeclaration& property : _manager.allProperties(_nameSpace, QORString(source.className))) {
      suggestion.consider(property.name.view());
    }
  }
  const std::string meant = suggestion.best().empty() ? "" : "; did you mean " + suggestion.best() + "?";
  warn(name + " is neither a class of FROM nor a property of one: it never matches" + meant, piece);
}
