// Why a statement, a query or a filter, is refused, in words.
// SPDX-License-Identifier: Apache-2.0
#include "StatementFault.h"

#include <algorithm>

#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "ClassFamily.h"

namespace {

std::string plain(const QORString& text) { return std::string(text.view()); }

std::string didYouMean(const std::string& name) { return name.empty() ? "" : ": did you mean " + name + "?"; }

bool isRelation(const StatementText& text, std::size_t piece) {
  for (const char* sign : {"=", "<>", "!=", "<", ">", "<=", ">=", "LIKE"}) {
    if (text.is(piece, sign)) return true;
  }
  return false;
}

}  // namespace

StatementFault::Description StatementFault::describe(const CQLQueryFault& fault) const {
  if (fault.kind == CQLQueryFault::kLanguage) {
    return {"'" + plain(fault.name) + "' is not a filter language: use DMTF:CQL, CQL or WQL"};
  }
  if (fault.kind == CQLQueryFault::kSyntax) return {describeSyntax(fault), fault.offset};
  // A class that does not exist has no properties either: it is the cause.
  if (const StatementText::Source* const source = unknownSource()) {
    return {describeClass(*source), static_cast<QORuint32>(source->offset)};
  }
  switch (fault.kind) {
    case CQLQueryFault::kProperty:
      return describeProperty(fault);
    case CQLQueryFault::kAmbiguous:
      return {describeAmbiguous(fault), fault.offset};
    case CQLQueryFault::kQualifier:
      return {describeQualifier(fault), fault.offset};
    default:
      return {plain(fault.message), fault.offset};
  }
}

std::string StatementFault::describeSyntax(const CQLQueryFault& fault) const {
  std::string reason = plain(fault.message);
  if (fault.offset == CQLQueryFault::kNoOffset) return reason;
  const std::string_view rest = _text.text().substr(std::min<std::size_t>(fault.offset, _text.text().size()));
  const std::size_t close = rest.empty() || rest[0] != '"' ? std::string_view::npos : rest.find('"', 1);
  if (close != std::string_view::npos) reason += didYouMean("'" + std::string(rest.substr(1, close - 1)) + "'");
  return reason + " (" + _text.place(fault.offset) + (rest.empty() ? ", at the end)" : ")");
}

const StatementText::Source* StatementFault::unknownSource() const {
  for (const StatementText::Source& source : _text.sources()) {
    if (_manager.sink().findClass(_nameSpace, QORString(source.className)).IsNull()) return &source;
  }
  return nullptr;
}

std::string StatementFault::describeClass(const StatementText::Source& source) const {
  const std::string place = " (" + _text.place(source.offset) + ")";
  std::string reason = source.className + " is not a class of " + plain(_nameSpace);
  for (const QORString& other : _manager.namespaces()) {
    if (_manager.sink().findClass(other, QORString(source.className)).IsNull()) continue;
    reason.append(" but one of ").append(other.view());
    return reason + place;
  }
  QORQL_Suggestion suggestion(source.className);
  for (const QORString& name : _manager.classNames(_nameSpace)) suggestion.consider(name.view());
  return reason + didYouMean(suggestion.best()) + place;
}

std::vector<QORString> StatementFault::classesOf(const CQLQueryFault& fault) const {
  if (!fault.className.isEmpty()) return {fault.className};
  std::vector<QORString> classes;
  for (const StatementText::Source& source : _text.sources()) {
    const QORString name(source.className);
    const auto isName = [&name](const QORString& other) { return other.isEqualCaseInsensitive(name); };
    if (std::none_of(classes.begin(), classes.end(), isName)) classes.push_back(name);
  }
  return classes;
}

std::string StatementFault::namesOf(const std::vector<QORString>& classes) const {
  std::string names;
  for (const QORString& name : classes) {
    const QORSmrPtr<IQoriClass> known = _manager.sink().findClass(_nameSpace, name);
    names += (names.empty() ? "" : " or ") + plain(known.IsNull() ? name : known->getClassName());
  }
  return names;
}

std::string StatementFault::suggestProperty(const std::string& name, const std::vector<QORString>& classes) const {
  QORQL_Suggestion suggestion(name);
  for (const QORString& className : classes) {
    for (const CimPropertyDeclaration& property : _manager.allProperties(_nameSpace, className)) {
      suggestion.consider(property.name.view());
    }
  }
  return suggestion.best();
}

// A name that is compared with another name may be a text without its quotes, unless it stands behind a class.
bool StatementFault::looksLikeText(const CQLQueryFault& fault) const {
  const std::size_t piece = _text.pieceAt(fault.offset);
  if (piece == StatementText::kNowhere || piece < _text.behindFrom()) return false;
  if (_text.is(piece - 1, ".") || _text.is(piece - 1, "::")) return false;
  const auto isName = [this](std::size_t other) {
    return _text.isWord(other) && !_text.is(other, "TRUE") && !_text.is(other, "FALSE");
  };
  const bool isRight = piece >= 2 && isRelation(_text, piece - 1) && (isName(piece - 2) || _text.is(piece - 2, "]"));
  return isRight || (isRelation(_text, piece + 1) && isName(piece + 2));
}

StatementFault::Description StatementFault::describeProperty(const CQLQueryFault& fault) const {
  const std::string name = spelling(fault);
  const std::vector<QORString> classes = classesOf(fault);
  const auto namesake = _manager.sink().findClass(_nameSpace, QORString(name));
  if (!namesake.IsNull()) {
    const bool isAssociation = namesake->getQualifier("Association", true) != nullptr;
    return {name + " is a class, not a property of " + namesOf(classes) +
                (isAssociation ? ": an association is written " + name + " = a AND " + name + " = b" : "") +
                placeOf(fault),
            fault.offset};
  }
  const std::string below = plain(holderBelow(fault.name, classes));
  if (!below.empty()) {
    return {name + " is not a property of " + namesOf(classes) + " but of " + below + ", a subclass" + placeOf(fault),
            fault.offset};
  }
  std::string meant = suggestProperty(name, classes);
  if (meant.empty() && looksLikeText(fault)) meant = "'" + name + "'";
  return {name + " is not a property of " + namesOf(classes) + didYouMean(meant) + placeOf(fault), fault.offset,
          !meant.empty()};
}

QORString StatementFault::holderBelow(const QORString& name, const std::vector<QORString>& classes) const {
  const ClassFamily family(_manager, _nameSpace);
  for (const QORString& className : classes) {
    const QORString holder(family.holderOf(className, name));
    if (!holder.isEmpty() && !holder.isEqualCaseInsensitive(className)) return holder;
  }
  return {};
}

std::vector<std::string> StatementFault::choicesFor(const std::string& name) const {
  std::vector<std::string> choices;
  for (const StatementText::Source& source : _text.sources()) {
    for (const CimPropertyDeclaration& property : _manager.allProperties(_nameSpace, QORString(source.className))) {
      if (!QORString::equalIgnoringCase(property.name.view(), name)) continue;
      const std::string& qualifier = source.alias.empty() ? source.className : source.alias;
      choices.push_back(qualifier + "." + plain(property.name));
    }
  }
  return choices;
}

std::string StatementFault::describeAmbiguous(const CQLQueryFault& fault) const {
  std::string choices;
  for (const std::string& choice : choicesFor(plain(fault.name))) choices += (choices.empty() ? "" : " or ") + choice;
  return spelling(fault) + " is a property of more than one class: write " + choices + placeOf(fault);
}

std::string StatementFault::describeQualifier(const CQLQueryFault& fault) const {
  const std::vector<std::string> choices = choicesFor(plain(fault.name));
  if (choices.size() > 1) return describeAmbiguous(fault);
  const std::string written = spelling(fault);
  if (!choices.empty()) {
    const std::string& choice = choices.front();
    return written + " is a property of " + choice.substr(0, choice.rfind('.')) +
           " and not a class of FROM: a query does not read the properties of embedded objects" + placeOf(fault);
  }
  QORQL_Suggestion suggestion(written);
  for (const StatementText::Source& source : _text.sources()) {
    suggestion.consider(source.className);
    suggestion.consider(source.alias);
  }
  return written + " is neither a class of FROM nor a property that holds an object" + didYouMean(suggestion.best()) +
         placeOf(fault);
}

std::string StatementFault::spelling(const CQLQueryFault& fault) const {
  const std::string_view written = nameAt(_text.text(), fault.offset);
  return QORString::equalIgnoringCase(written, fault.name.view()) ? std::string(written) : plain(fault.name);
}

std::string StatementFault::placeOf(const CQLQueryFault& fault) const {
  return fault.offset == CQLQueryFault::kNoOffset ? "" : " (" + _text.place(fault.offset) + ")";
}
