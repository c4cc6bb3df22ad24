// The grammar of qualifiers and classes of MOF.
// Tested by tests/unit/Mof/MofClassTest.cpp, tests/unit/Mof/MofSyntaxTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <utility>

#include "Cimom/Mof/MofLiterals.h"
#include "Cimom/Mof/MofParser.h"

namespace {

constexpr QORuint64 kMaximumArraySize = 0x7FFFFFFF;

constexpr const char* kScopes[] = {"schema",   "class",     "association", "indication", "qualifier",
                                   "property", "reference", "method",      "parameter",  "any"};

struct FlavorWord {
  const char* word;
  MofFlavor flavor;
};
constexpr FlavorWord kFlavors[] = {{"EnableOverride", MofFlavor::EnableOverride},
                                   {"DisableOverride", MofFlavor::DisableOverride},
                                   {"ToSubclass", MofFlavor::ToSubclass},
                                   {"Restricted", MofFlavor::Restricted},
                                   {"Translatable", MofFlavor::Translatable}};
// Flavors of Windows, without a meaning here.
constexpr const char* kIdleFlavors[] = {"Amended", "ToInstance"};

}  // namespace

void MofParser::readQualifierDeclaration() {
  MofQualifierDeclarationSyntax declaration;
  declaration.nameSpace = _context.nameSpace;
  declaration.name = expectName("the name of a qualifier");
  expectSymbol(':');
  declaration.type = expectName("a type");
  declaration.isArray = readArraySize(declaration.arraySize);
  if (takeSymbol('=')) {
    declaration.hasDefault = true;
    declaration.defaultValue = readInitializer(0);
  }
  bool hasScope = false;
  while (takeSymbol(',')) {
    if (!hasScope && takeWord("scope")) {
      hasScope = true;
      readScopes(declaration.scopes);
    } else if (takeWord("flavor")) {
      readFlavors(declaration.flavors);
    } else {
      fail(hasScope ? "\"Flavor\"" : "\"Scope\" or \"Flavor\"");
    }
  }
  if (!hasScope) fail("\"Scope\"");
  endDeclaration();
  if (isPlaced()) _document.qualifiers.push_back(std::move(declaration));
}

void MofParser::readScopes(std::vector<QORString>& scopes) {
  expectSymbol('(');
  do {
    const char* found = nullptr;
    for (const char* scope : kScopes) {
      if (isWord(scope)) found = scope;
    }
    if (found == nullptr) fail("a scope such as \"class\", \"property\" or \"any\"");
    scopes.emplace_back(found);
    advance();
  } while (takeSymbol(','));
  expectSymbol(')');
}

void MofParser::readFlavors(std::vector<MofFlavor>& flavors) {
  expectSymbol('(');
  do {
    if (!takeFlavor(flavors)) refuseFlavor();
  } while (takeSymbol(','));
  expectSymbol(')');
}

bool MofParser::takeFlavor(std::vector<MofFlavor>& flavors) {
  for (const FlavorWord& known : kFlavors) {
    if (!takeWord(known.word)) continue;
    flavors.push_back(known.flavor);
    return true;
  }
  if (!_report.isLenient() || !isIdleFlavor()) return false;
  advance();
  return true;
}

bool MofParser::isIdleFlavor() const noexcept {
  return std::any_of(std::begin(kIdleFlavors), std::end(kIdleFlavors),
                     [this](const char* word) { return isWord(word); });
}

void MofParser::refuseFlavor() {
  fail(std::string("a flavor such as \"EnableOverride\" or \"ToSubclass\"") + (isIdleFlavor() ? kLenientReads : ""));
}

std::vector<MofQualifierSyntax> MofParser::readQualifiers() {
  if (!takeSymbol('[')) return {};
  MofListReader<MofQualifierSyntax> qualifiers(_qualifiers);
  do {
    qualifiers.add(readQualifier());
  } while (takeSymbol(','));
  if (!isSymbol(']')) fail("\",\" or \"]\"");
  advance();
  return qualifiers.take();
}

MofQualifierSyntax MofParser::readQualifier() {
  MofQualifierSyntax qualifier;
  qualifier.name = expectName("the name of a qualifier");
  if (takeSymbol('(')) {
    qualifier.hasValue = true;
    qualifier.value = readValue(0, &_document.texts);
    expectSymbol(')');
  } else if (isSymbol('{')) {
    qualifier.hasValue = true;
    qualifier.value = readArray(0, &_document.texts);
  }
  if (takeSymbol(':')) {
    if (!takeFlavor(qualifier.flavors)) refuseFlavor();
    while (takeFlavor(qualifier.flavors)) continue;
    if (isIdleFlavor()) refuseFlavor();
  }
  return qualifier;
}

std::unique_ptr<MofClassSyntax> MofParser::readClass(std::vector<MofQualifierSyntax> qualifiers) {
  auto declared = std::make_unique<MofClassSyntax>();
  declared->nameSpace = _context.nameSpace;
  declared->scope = _context.scope;
  declared->qualifiers = std::move(qualifiers);
  declared->name = expectName("the name of a class");
  _className = declared->name.text;
  if (takeWord("as")) {
    if (_token.kind != Kind::Alias) fail("an alias such as $a");
    advance();
  }
  if (takeSymbol(':')) declared->superClass = expectName("the name of the superclass");
  expectSymbol('{');
  while (!isSymbol('}')) readFeature(*declared);
  advance();
  return declared;
}

void MofParser::readFeature(MofClassSyntax& owner) {
  MofFeatureSyntax feature;
  feature.qualifiers = readQualifiers();
  if (_token.kind != Kind::Identifier || startsLine()) fail("a property, a method or \"}\"");
  feature.type = expectName("a type");
  readFeatureName(feature, "the name of a property or method");
  if (isSymbol('(') && !feature.isReference) {
    MofMethodSyntax method{std::move(feature.name), std::move(feature.type), {}, std::move(feature.qualifiers)};
    readMethod(method);
    owner.methods.push_back(std::move(method));
    return;
  }
  feature.isArray = readArraySize(feature.arraySize);
  if (takeSymbol('=')) {
    feature.hasDefault = true;
    feature.defaultValue = readInitializer(0);
  }
  expectSymbol(';');
  owner.properties.push_back(std::move(feature));
}

// "REF" is a name as well: it makes a reference when another name follows.
void MofParser::readFeatureName(MofFeatureSyntax& feature, const char* what) {
  const bool isRef = isWord("ref");
  feature.name = expectName(what);
  feature.isReference = isRef && _token.kind == Kind::Identifier;
  if (feature.isReference) feature.name = expectName(what);
}

void MofParser::readMethod(MofMethodSyntax& method) {
  expectSymbol('(');
  if (!isSymbol(')')) {
    do {
      method.parameters.push_back(readParameter());
    } while (takeSymbol(','));
  }
  if (!isSymbol(')')) fail("\",\" or \")\"");
  advance();
  expectSymbol(';');
}

MofFeatureSyntax MofParser::readParameter() {
  MofFeatureSyntax parameter;
  parameter.qualifiers = readQualifiers();
  parameter.type = expectName("the type of a parameter");
  readFeatureName(parameter, "the name of a parameter");
  parameter.isArray = readArraySize(parameter.arraySize);
  return parameter;
}

bool MofParser::readArraySize(QORsint32& size) {
  if (!takeSymbol('[')) return false;
  if (_token.kind == Kind::Number) {
    const MofValueSyntax number = readMofNumber(textOf(_token), here());
    const bool isSize = number.kind == MofValueSyntax::Kind::Integer && !number.flag && number.magnitude > 0 &&
                        number.magnitude <= kMaximumArraySize;
    if (!isSize) throw MofFault{here(), "the size of an array is a number from 1 to 2147483647"};
    size = static_cast<QORsint32>(number.magnitude);
    advance();
  }
  if (!isSymbol(']')) fail(size < 0 ? "the size of the array or \"]\"" : "\"]\"");
  advance();
  return true;
}
