// Meanings are looked up once for each namespace and name.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofQualifiers.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace {

using Element = MofQualifiers::Element;

struct StandardQualifier {
  const char* name;
  const char* type;
  bool isArray;
  bool toSubclass;
  bool overridable;
  bool translatable;
};

// Qualifiers of the standard whose type or flavors differ from what a value suggests;
// a boolean without further flavors needs no row.
constexpr StandardQualifier kStandard[] = {
    {"Abstract", "boolean", false, false, true, false},
    {"Aggregate", "boolean", false, true, false, false},
    {"Aggregation", "boolean", false, true, false, false},
    {"ArrayType", "string", false, true, false, false},
    {"Association", "boolean", false, true, false, false},
    {"BitMap", "string", true, true, true, false},
    {"BitValues", "string", true, true, true, true},
    {"Composition", "boolean", false, true, false, false},
    {"Deprecated", "string", true, false, true, false},
    {"Description", "string", false, true, true, true},
    {"DisplayName", "string", false, true, true, true},
    {"EmbeddedInstance", "string", false, true, true, false},
    {"EmbeddedObject", "boolean", false, true, false, false},
    {"Exception", "boolean", false, true, false, false},
    {"Experimental", "boolean", false, false, true, false},
    {"Indication", "boolean", false, true, false, false},
    {"Key", "boolean", false, true, false, false},
    {"MappingStrings", "string", true, true, true, false},
    {"Max", "uint32", false, true, true, false},
    {"MaxLen", "uint32", false, true, true, false},
    {"MaxValue", "sint64", false, true, true, false},
    {"Min", "uint32", false, true, true, false},
    {"MinLen", "uint32", false, true, true, false},
    {"MinValue", "sint64", false, true, true, false},
    {"ModelCorrespondence", "string", true, true, true, false},
    {"OctetString", "boolean", false, true, false, false},
    {"Override", "string", false, false, true, false},
    {"Propagated", "string", false, true, false, false},
    {"Required", "boolean", false, true, false, false},
    {"Terminal", "boolean", false, false, true, false},
    {"ValueMap", "string", true, true, true, false},
    {"Values", "string", true, true, true, true},
    {"Version", "string", false, false, true, true},
    {"Weak", "boolean", false, true, false, false},
};

const StandardQualifier* findStandard(const QORString& name) {
  const auto* const found = std::find_if(std::begin(kStandard), std::end(kStandard), [&name](const auto& standard) {
    return isMofWord(name.view(), standard.name);
  });
  return found == std::end(kStandard) ? nullptr : found;
}

// The type that a value has by itself; a qualifier without a value, or with NULL, is a flag.
const MofType* typeOfValue(const MofQualifierSyntax& syntax) {
  using Kind = MofValueSyntax::Kind;
  if (!syntax.hasValue) return findMofType("boolean");
  const bool isArray = syntax.value.kind == Kind::Array;
  if (isArray && syntax.value.elements.empty()) return findMofType("string");
  const MofValueSyntax& sample = isArray ? syntax.value.elements.front() : syntax.value;
  switch (sample.kind) {
    case Kind::Null:
    case Kind::Boolean:
      return findMofType("boolean");
    case Kind::Integer:
      return findMofType(sample.flag ? "sint64" : "uint64");
    case Kind::Real:
      return findMofType("real64");
    case Kind::Char16:
      return findMofType("char16");
    default:
      return findMofType("string");
  }
}

// Scopes that allow a qualifier on an element, ended by null. The three kinds
// of class count as one: whether a class is an association may come from its
// superclass.
struct AllowingScopes {
  const char* scopes[4];
  const char* what;
};
AllowingScopes scopesFor(Element element) {
  switch (element) {
    case Element::Class:
      return {{"class", "association", "indication", nullptr}, "a class"};
    case Element::Property:
      return {{"property", nullptr}, "a property"};
    case Element::Reference:
      return {{"reference", "property", nullptr}, "a reference"};
    case Element::Method:
      return {{"method", nullptr}, "a method"};
    case Element::Parameter:
      return {{"parameter", nullptr}, "a parameter"};
    default:
      return {{"parameter", "reference", nullptr}, "a parameter"};
  }
}

constexpr Element kElements[] = {Element::Class,  Element::Property,  Element::Reference,
                                 Element::Method, Element::Parameter, Element::ReferenceParameter};
unsigned bitOf(Element element) { return 1U << static_cast<unsigned>(element); }

bool isAllowed(const QORString& scope, const AllowingScopes& allowing) {
  if (isMofWord(scope.view(), "any")) return true;
  for (const char* const* allowed = allowing.scopes; *allowed != nullptr; ++allowed) {
    if (isMofWord(scope.view(), *allowed)) return true;
  }
  return false;
}

std::string keyOf(const QORString& nameSpace, const QORString& name) {
  return foldMofName(nameSpace) + ':' + foldMofName(name);
}

// The names of the qualifiers of one element, which are given in the order of the text. A few are compared with each
// other.
class GivenNames {
 public:
  // BORROWS.
  explicit GivenNames(const std::vector<MofQualifierSyntax>& syntax) : _syntax(syntax) {}

  // False when an earlier one has that name.
  bool add(const MofQualifierSyntax& written) {
    constexpr std::size_t kFew = 16;
    if (_syntax.size() > kFew) return _folded.insert(foldMofName(written.name.text)).second;
    return std::none_of(_syntax.data(), &written, [&written](const MofQualifierSyntax& earlier) {
      return earlier.name.text.isEqualCaseInsensitive(written.name.text);
    });
  }

 private:
  const std::vector<MofQualifierSyntax>& _syntax;
  std::unordered_set<std::string> _folded;
};

template <class Target>
void applyFlavors(const std::vector<MofFlavor>& flavors, Target& target) {
  for (const MofFlavor flavor : flavors) {
    if (flavor == MofFlavor::EnableOverride) target.overridable = true;
    if (flavor == MofFlavor::DisableOverride) target.overridable = false;
    if (flavor == MofFlavor::ToSubclass) target.toSubclass = true;
    if (flavor == MofFlavor::Restricted) target.toSubclass = false;
    if (flavor == MofFlavor::Translatable) target.translatable = true;
  }
}

}  // namespace

void MofQualifiers::declare(const MofQualifierDeclarationSyntax& syntax) {
  try {
    const MofType* const type = findMofType(syntax.type.text);
    if (type == nullptr || type->kind == MofType::Kind::Reference || type->kind == MofType::Kind::Object) {
      throw MofFault{syntax.type.at, "\"" + std::string(syntax.type.text.view()) + "\" is not a qualifier type"};
    }
    CimQualifierDeclaration declaration;
    declaration.name = syntax.name.text;
    declaration.type = syntax.isArray ? type->array : type->scalar;
    declaration.arraySize = syntax.arraySize;
    declaration.scopes = syntax.scopes;
    if (syntax.hasDefault) {
      declaration.defaultValue = makeMofValue(syntax.defaultValue, *type, syntax.isArray, syntax.arraySize, _values);
    }
    applyFlavors(syntax.flavors, declaration);
    _sink.declareQualifier(syntax.nameSpace, declaration);
    _declared.try_emplace(keyOf(syntax.nameSpace, syntax.name.text), syntax.name.at);
  } catch (const MofFault& fault) {
    _report.add(fault);
  } catch (const QoriBaseException& refusal) {
    _report.add(syntax.name.at, refusal.what() + placeOfEarlier(syntax));
  }
}

// Empty when this load has not declared the qualifier before.
std::string MofQualifiers::placeOfEarlier(const MofQualifierDeclarationSyntax& syntax) const {
  const auto earlier = _declared.find(keyOf(syntax.nameSpace, syntax.name.text));
  return earlier == _declared.end() ? "" : ", at " + describeMofPlace(earlier->second);
}

MofNameMap<MofQualifiers::Meaning>& MofQualifiers::meaningsIn(const QORString& nameSpace) {
  if (_lastMeanings == nullptr || _lastNameSpace.view() != nameSpace.view()) {
    const auto known = _meanings.find(nameSpace.view());
    _lastMeanings = known != _meanings.end() ? &known->second : &_meanings[std::string(nameSpace.view())];
    _lastNameSpace = nameSpace;
  }
  return *_lastMeanings;
}

const MofQualifiers::Meaning& MofQualifiers::meaningOf(const QORString& nameSpace, const QORString& name,
                                                       MofNameMap<Meaning>& known) {
  if (const auto found = known.find(name.view()); found != known.end()) return found->second;
  Meaning& meaning = known[std::string(name.view())];
  CimQualifierDeclaration declared;
  if (_sink.describeQualifier(nameSpace, name, declared)) {
    meaning = {findMofType(declared.type->getName()),
               declared.type->isArray(),
               declared.defaultValue,
               declared.toSubclass,
               declared.overridable,
               declared.translatable,
               declared.scopes,
               elementsRefusing(declared.scopes)};
  } else if (const StandardQualifier* const standard = findStandard(name); standard != nullptr) {
    meaning = {findMofType(standard->type), standard->isArray,      {}, standard->toSubclass,
               standard->overridable,       standard->translatable, {}, 0};
  }
  return meaning;
}

bool MofQualifiers::resolve(const QORString& nameSpace, const std::vector<MofQualifierSyntax>& syntax, Element element,
                            std::vector<CimQualifier>& out) {
  bool isSound = true;
  GivenNames given(syntax);
  MofNameMap<Meaning>& known = meaningsIn(nameSpace);
  out.reserve(syntax.size());
  for (const MofQualifierSyntax& written : syntax) {
    if (_report.isFull()) return false;
    try {
      if (!given.add(written)) {
        throw MofFault{written.name.at, "qualifier " + std::string(written.name.text.view()) + " is given twice"};
      }
      const Meaning& meaning = meaningOf(nameSpace, written.name.text, known);
      checkScope(meaning, written, element);
      out.push_back(resolve(meaning, written));
    } catch (const MofFault& fault) {
      isSound = false;
      _report.add(fault);
    }
  }
  return isSound;
}

CimQualifier MofQualifiers::resolve(const Meaning& meaning, const MofQualifierSyntax& syntax) {
  CimQualifier qualifier;
  qualifier.name = syntax.name.text;
  qualifier.toSubclass = meaning.toSubclass;
  qualifier.overridable = meaning.overridable;
  qualifier.translatable = meaning.translatable;
  applyFlavors(syntax.flavors, qualifier);
  const MofType& type = meaning.type != nullptr ? *meaning.type : *typeOfValue(syntax);
  const bool isFlag = type.kind == MofType::Kind::Boolean;
  if (syntax.hasValue) {
    const bool isArray = meaning.type != nullptr ? meaning.isArray : syntax.value.kind == MofValueSyntax::Kind::Array;
    qualifier.value = makeMofValue(syntax.value, type, isArray, -1, _values);
    // A flag without value is set, one whose value is NULL is not.
    if (isFlag && !isArray && qualifier.value.IsNull()) {
      MofValueSyntax unset;
      unset.kind = MofValueSyntax::Kind::Boolean;
      qualifier.value = makeMofScalar(unset, type);
    }
  } else if (!isFlag) {
    qualifier.value = meaning.defaultValue;
  }
  return qualifier;
}

unsigned MofQualifiers::elementsRefusing(const std::vector<QORString>& scopes) {
  unsigned refusing = 0;
  for (const Element element : kElements) {
    const AllowingScopes allowing = scopesFor(element);
    const bool isFree = scopes.empty() || std::any_of(scopes.begin(), scopes.end(), [&](const QORString& scope) {
                          return isAllowed(scope, allowing);
                        });
    if (!isFree) refusing |= bitOf(element);
  }
  return refusing;
}

void MofQualifiers::checkScope(const Meaning& meaning, const MofQualifierSyntax& syntax, Element element) {
  if ((meaning.refusing & bitOf(element)) == 0) return;
  std::string declared;
  for (const QORString& scope : meaning.scopes) {
    declared += (declared.empty() ? "" : ", ") + std::string(scope.view());
  }
  throw MofFault{syntax.name.at, "qualifier " + std::string(syntax.name.text.view()) + " cannot stand on " +
                                     scopesFor(element).what + ": its scope is " + declared};
}
