// What is suspicious about a valid filter.
#include "FilterWarnings.h"

#include <algorithm>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/Explain/QORQL_NodeSurprises.h"
#include "Cimom/QORQL/Explain/QORQL_Surprises.h"
#include "DisplayText.h"
#include "FilterPathCheck.h"
#include "Suggestion.h"

namespace {

using Kind = FilterOperand::Kind;

// Nobody reads more of them, and each costs a look at the schema and at the text before it.
constexpr std::size_t kMaximumWarnings = 20;
constexpr std::size_t kLongest = 400;

std::string_view unquoted(const StatementText::Piece& piece) {
  const bool isQuoted = piece.kind == StatementText::Kind::Literal && piece.text.size() > 2;
  return isQuoted ? piece.text.substr(1, piece.text.size() - 2) : piece.text;
}

bool isRelation(const StatementText& text, std::size_t piece) {
  for (const char* sign : {"=", "<>", "!=", "<", ">", "<=", ">="}) {
    if (text.is(piece, sign)) return true;
  }
  return false;
}

// A text that a boolean property is compared with may say TRUE or FALSE.
bool mayCompare(const FilterOperand& left, const FilterOperand& right) {
  if (left.kind == Kind::Unknown || right.kind == Kind::Unknown) return true;
  if (left.kind != Kind::Other && left.kind == right.kind) return true;
  if (left.kind == Kind::Other || right.kind == Kind::Other) return left.type == right.type;
  const auto saysOrHoldsTruth = [](const FilterOperand& operand) {
    return operand.kind == Kind::Boolean || operand.saysTruth ||
           (operand.kind == Kind::Text && !operand.property.empty());
  };
  return saysOrHoldsTruth(left) && saysOrHoldsTruth(right);
}

bool isWholeArray(const FilterOperand& operand) { return operand.isArray && !operand.isAsked; }

// Arrays compare as wholes where their types do; a boolean is no text there.
bool areUnlikeArrays(const FilterOperand& left, const FilterOperand& right) {
  return isWholeArray(left) && isWholeArray(right) && left.kind != right.kind;
}

std::string typeOf(const FilterOperand& operand) {
  if (operand.isArray) return "an array of " + operand.type;
  return (operand.type == "object" ? "an " : "a ") + operand.type;
}

}  // namespace

std::vector<std::string> FilterWarnings::of(const CQLQueryStatement& statement) {
  _warnings.clear();
  const std::string never(statement.neverMatchesBecause().view());
  if (!never.empty()) _warnings.push_back(never);
  for (const QORQL_Surprise& surprise : QORQL_findFilterSurprises(statement.getParsedQuery(), _nameSpace)) {
    _warnings.push_back(cutText(surprise.text, kLongest, "..."));
  }
  for (std::size_t i = _text.behindFrom(); i < _text.pieces().size(); ++i) {
    if (_warnings.size() >= kMaximumWarnings) {
      _warnings.emplace_back("the rest of the filter is not looked at");
      break;
    }
    const StatementText::Piece& piece = _text.pieces()[i];
    if (i > 0 && _text.is(i - 1, "ISA")) checkClass(i, unquoted(piece));
    if (_text.beginsReference(i)) checkNames(i);
    if (_text.is(i + 1, "ISA")) checkIsa(i);
    if (isRelation(_text, i)) checkComparison(i);
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

void FilterWarnings::checkNames(std::size_t piece) {
  for (const FilterPathCheck::Finding& finding : FilterPathCheck(_manager, _nameSpace, _text).check(piece)) {
    warn(finding.text, finding.piece);
  }
}

bool FilterWarnings::isPropertyOfFrom(std::string_view property) const {
  return std::any_of(_text.sources().begin(), _text.sources().end(),
                     [&](const StatementText::Source& source) { return hasProperty(source.className, property); });
}

// ISA looks for the property in the instance itself. Of one behind a path or a
// scope the statement has told already that it never matches; a text that is put
// together says as a whole which property it names.
void FilterWarnings::checkIsa(std::size_t piece) {
  const StatementText::Piece& name = _text.pieces()[piece];
  if (name.kind != StatementText::Kind::Word && name.kind != StatementText::Kind::Literal) return;
  const bool isBehindDot = piece > 1 && _text.is(piece - 1, ".");
  const bool isBehindFrom = isBehindDot && !_text.classOf(std::string(_text.pieces()[piece - 2].text)).empty();
  if (isBehindDot && !isBehindFrom) return;
  if (piece > 0 && (_text.is(piece - 1, "::") || _text.is(piece - 1, "+"))) return;
  if (isPropertyOfFrom(unquoted(name))) return;
  warn(
      "ISA asks a property of the indication itself, and " + std::string(unquoted(name)) + " is none: it never matches",
      piece);
}

void FilterWarnings::checkComparison(std::size_t sign) {
  FilterOperand left;
  FilterOperand right;
  if (!FilterOperandReader(_manager, _nameSpace, _text).read(sign, left, right)) return;
  if (left.kind == Kind::Unknown || right.kind == Kind::Unknown) {
    warnOfAsking(left);
    warnOfAsking(right);
    return;
  }
  if (warnOfAsking(left) || warnOfAsking(right) || warnOfArray(left, right) || warnOfArray(right, left)) return;
  const bool isEquality = _text.is(sign, "=") || _text.is(sign, "<>") || _text.is(sign, "!=");
  if (isWholeArray(left) && isWholeArray(right) && !isEquality) {
    warn("arrays have no order: it never matches", left.piece);
  } else if (!mayCompare(left, right) || areUnlikeArrays(left, right)) {
    warnOfTypes(left, right);
  } else if (!warnOfSigns(left, right) && !warnOfSigns(right, left) && !warnOfReal32(left, right)) {
    warnOfReal32(right, left);
  }
}

// A uint64 beside a signed number is taken as one.
bool FilterWarnings::warnOfSigns(const FilterOperand& side, const FilterOperand& other) {
  const QoriScalar number = side.number;
  const bool isHuge = number.kind == QoriScalarKind::Unsigned && number.u > static_cast<QORuint64>(INT64_MAX);
  if ((side.type != "uint64" && !isHuge) || !other.isSigned) return false;
  const std::string name = side.property.empty() ? std::to_string(number.u) : side.property;
  warn(name + " is a uint64 and compares with a signed number as a sint64: from 9223372036854775808 on it is negative",
       side.piece);
  return true;
}

bool FilterWarnings::warnOfReal32(const FilterOperand& side, const FilterOperand& other) {
  if (side.type != "real32" || !other.number.isNumber()) return false;
  const std::string nearest = QORQL_nearestReal32(other.number);
  if (nearest.empty()) return false;
  warn(side.property + " is a real32, which is never exactly that number (the nearest is " + nearest +
           "): ask for a range",
       side.piece);
  return true;
}

bool FilterWarnings::warnOfAsking(const FilterOperand& side) {
  if (!side.isAsked || side.isArray || side.kind == Kind::Unknown) return false;
  const std::string name = side.property.empty() ? "a " + side.type : side.property;
  warn(name + " is no array, which ANY and EVERY ask: it never matches", side.piece);
  return true;
}

bool FilterWarnings::warnOfArray(const FilterOperand& side, const FilterOperand& other) {
  if (!isWholeArray(side) || isWholeArray(other)) return false;
  const std::string whole = side.written.ends_with(']') ? side.written : side.written + "[*]";
  warn(side.property + " is an array" +
           (other.isAsked ? ", and an element does not compare with one: it never matches"
                          : ": it never matches; to ask its elements write ANY " + whole),
       side.piece);
  return true;
}

void FilterWarnings::warnOfTypes(const FilterOperand& left, const FilterOperand& right) {
  const FilterOperand& first = left.property.empty() && !right.property.empty() ? right : left;
  const FilterOperand& second = &first == &left ? right : left;
  const bool isText = second.property.empty() && second.kind == Kind::Text;
  const std::string exception = first.kind == Kind::Boolean && isText ? " but TRUE and FALSE" : "";
  const std::string subject =
      first.property.empty() ? typeOf(first) + " does" : first.property + " is " + typeOf(first) + " and does";
  const std::string object = second.property.empty() ? typeOf(second) : second.property + ", " + typeOf(second);
  warn(subject + " not compare with " + object + exception + ": it never matches", first.piece);
}
