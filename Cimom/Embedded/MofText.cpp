// Writes what the MOF reader reads: names as declared, values as literals.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/MofText.h"

#include <map>
#include <string>

#include "Cimom/Embedded/RepositoryError.h"
#include "Cimom/Model/ModelMof.h"
#include "cimom/CQoriType.h"

namespace embedded {

namespace {

constexpr const char* kIndent = "    ";

struct Flavors {
  bool toSubclass = true;
  bool overridable = true;
  bool translatable = false;
};

class ClassWriter {
 public:
  explicit ClassWriter(const NameMap<CimQualifierDeclaration>& qualifiers) : _qualifiers(qualifiers) {}

  QORString write(const CimClassDeclaration& declaration) {
    appendQualifiers(declaration.qualifiers, "", "\n");
    _text += "class " + declaration.name;
    if (!declaration.superClass.isEmpty()) _text += " : " + declaration.superClass;
    _text += " {\n";
    for (const CimPropertyDeclaration& property : declaration.properties) {
      appendFeature(property);
      _text += ";\n";
    }
    for (const CimMethodDeclaration& method : declaration.methods) appendMethod(method);
    _text += "};\n";
    return _text;
  }

 private:
  void appendFeature(const CimPropertyDeclaration& feature) {
    appendQualifiers(feature.qualifiers, kIndent, "\n");
    _text += kIndent;
    appendDeclarator(feature);
    if (feature.defaultValue.IsNull() && !feature.isDefaultNull) return;
    _text += " = ";
    model::appendMofValue(_text, feature.defaultValue);
  }

  void appendDeclarator(const CimPropertyDeclaration& feature) {
    const bool isReference = feature.type->getName() == CQoriType::reference->getName();
    _text += isReference ? feature.referenceClass + " REF " : feature.type->getName() + " ";
    _text += feature.name;
    if (!feature.type->isArray()) return;
    if (feature.arraySize >= 0) {
      _text += joined({"[", std::to_string(feature.arraySize), "]"});
    } else {
      _text += "[]";
    }
  }

  void appendMethod(const CimMethodDeclaration& method) {
    appendQualifiers(method.qualifiers, kIndent, "\n");
    _text += kIndent + method.returnType->getName() + " " + method.name + "(";
    bool isFirst = true;
    for (const CimPropertyDeclaration& parameter : method.parameters) {
      _text += isFirst ? "\n" : ",\n";
      isFirst = false;
      appendQualifiers(parameter.qualifiers, "        ", " ");
      if (parameter.qualifiers.empty()) _text += "        ";
      appendDeclarator(parameter);
    }
    _text += ");\n";
  }

  void appendQualifiers(const std::vector<CimQualifier>& qualifiers, const char* indent, const char* end) {
    if (qualifiers.empty()) return;
    _text += indent;
    _text += '[';
    for (const CimQualifier& qualifier : qualifiers) {
      if (&qualifier != &qualifiers.front()) _text += ", ";
      appendQualifier(qualifier);
    }
    _text += ']';
    _text += end;
  }

  void appendQualifier(const CimQualifier& qualifier) {
    const auto found = _qualifiers.find(qualifier.name.view());
    const CimQualifierDeclaration* const declared = found == _qualifiers.end() ? nullptr : &found->second;
    _text += qualifier.name;
    appendQualifierValue(qualifier, declared);
    Flavors usual;
    if (declared != nullptr) usual = {declared->toSubclass, declared->overridable, declared->translatable};
    QORString flavors;
    if (qualifier.overridable != usual.overridable) {
      flavors += qualifier.overridable ? " EnableOverride" : " DisableOverride";
    }
    if (qualifier.toSubclass != usual.toSubclass) flavors += qualifier.toSubclass ? " ToSubclass" : " Restricted";
    if (qualifier.translatable && !usual.translatable) flavors += " Translatable";
    if (!flavors.isEmpty()) _text += " :" + flavors;
  }

  // A flag that is set is written without a value; a NULL of another type is written, so that it differs from a missing
  // value.
  void appendQualifierValue(const CimQualifier& qualifier, const CimQualifierDeclaration* declared) {
    const bool isFlag = declared == nullptr || declared->type->getName() == CQoriType::boolean->getName();
    if (qualifier.value.IsNull()) {
      if (!isFlag) _text += "(NULL)";
    } else if (qualifier.value->isArray()) {
      _text += ' ';
      model::appendMofValue(_text, qualifier.value);
    } else if (qualifier.value->scalar().kind != QoriScalarKind::Boolean || !qualifier.value->getBoolean()) {
      _text += '(';
      model::appendMofValue(_text, qualifier.value);
      _text += ')';
    }
  }

  const NameMap<CimQualifierDeclaration>& _qualifiers;
  QORString _text;
};

}  // namespace

QORString qualifierMofText(const CimQualifierDeclaration& declaration) {
  QORString text = "Qualifier " + declaration.name + " : " + declaration.type->getName();
  if (declaration.type->isArray()) {
    text += declaration.arraySize >= 0 ? joined({"[", std::to_string(declaration.arraySize), "]"}) : QORString("[]");
  }
  text += " = ";
  model::appendMofValue(text, declaration.defaultValue);
  text += ", Scope(";
  for (const QORString& scope : declaration.scopes) {
    if (&scope != &declaration.scopes.front()) text += ", ";
    text += scope;
  }
  text += declaration.overridable ? "), Flavor(EnableOverride" : "), Flavor(DisableOverride";
  text += declaration.toSubclass ? ", ToSubclass" : ", Restricted";
  if (declaration.translatable) text += ", Translatable";
  text += ");\n";
  return text;
}

QORString qualifiersMofText(const std::vector<CimClassDeclaration>& classes,
                            const NameMap<CimQualifierDeclaration>& qualifiers) {
  NameMap<bool> used;
  const auto note = [&used](const std::vector<CimQualifier>& given) {
    for (const CimQualifier& qualifier : given) used.emplace(qualifier.name.view(), true);
  };
  for (const CimClassDeclaration& declaration : classes) {
    note(declaration.qualifiers);
    for (const CimPropertyDeclaration& property : declaration.properties) note(property.qualifiers);
    for (const CimMethodDeclaration& method : declaration.methods) {
      note(method.qualifiers);
      for (const CimPropertyDeclaration& parameter : method.parameters) note(parameter.qualifiers);
    }
  }
  std::map<std::string, QORString> texts;  // in the order of names
  for (const auto& [name, isUsed] : used) {
    const auto declared = qualifiers.find(name);
    if (declared != qualifiers.end()) texts.emplace(declared->first, qualifierMofText(declared->second));
  }
  QORString text;
  for (const auto& [name, declared] : texts) text += declared;
  return text;
}

QORString classMofText(const CimClassDeclaration& declaration, const NameMap<CimQualifierDeclaration>& qualifiers) {
  return ClassWriter(qualifiers).write(declaration);
}

QORString instanceMofText(const IQoriObject& object) {
  QORString text = "instance of " + object.getClassName() + " {\n";
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property = object.getPropertyAt(i);
    text += kIndent + property->getName() + " = ";
    model::appendMofValue(text, property->getValue());
    text += ";\n";
  }
  text += "};\n";
  return text;
}

}  // namespace embedded
