// A class waits until its superclass is declared; the chain of those that wait
// is walked with a list, not with recursion.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofClasses.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include "cimom/CQoriType.h"

namespace {

constexpr int kMaximumLevels = 500;  // of inheritance, which the sink refuses to exceed

const MofType& requireType(const MofName& name) {
  const MofType* const type = findMofType(name.text);
  if (type != nullptr && type->kind != MofType::Kind::Reference && type->kind != MofType::Kind::Object) return *type;
  throw MofFault{name.at, "unknown type \"" + textOf(name.text) + '"'};
}

}  // namespace

std::string MofClasses::keyOf(const QORString& nameSpace, const QORString& name) {
  return foldMofName(nameSpace) + ':' + foldMofName(name);
}

void MofClasses::declareAll() {
  std::vector<Pending*> firsts;  // of the same name, for each class of the document
  firsts.reserve(_document.classes.size());
  for (const auto& syntax : _document.classes) {
    const auto [found, isNew] =
        _pending.try_emplace(keyOf(syntax->nameSpace, syntax->name.text), Pending{syntax.get()});
    firsts.push_back(&found->second);
  }
  for (std::size_t i = 0; i < firsts.size(); ++i) {
    MofClassSyntax& syntax = *_document.classes[i];
    // A second declaration must equal the first one, which the sink checks.
    firsts[i]->syntax == &syntax ? declareWithSuperClasses(*firsts[i]) : declareOnce(syntax, *firsts[i]);
  }
}

// As MofShapes::isA, but of classes that are still to be declared, too: the class that a reference is narrowed to may
// come later in the text than the reference. What is declared counts: where the sink has a class already, the text's
// may be another one.
bool MofClasses::isA(const QORString& nameSpace, const QORString& className, const QORString& ancestor) const {
  QORString name = className;
  for (int level = 0; level <= kMaximumLevels; ++level) {
    if (name.isEqualCaseInsensitive(ancestor)) return true;
    const auto pending = _pending.find(keyOf(nameSpace, name));
    const bool isDeclared = pending == _pending.end() || !_sink.findClass(nameSpace, name).IsNull();
    if (isDeclared) return MofShapes(_sink).isA(nameSpace, name, ancestor);
    name = pending->second.syntax->superClass.text;
    if (name.isEmpty()) return false;
  }
  return true;  // a circle or too many levels, which is a fault of its own
}

bool MofClasses::checkOverridingReferences(const MofClassSyntax& syntax) {
  if (syntax.superClass.text.isEmpty()) return true;
  bool isSound = true;
  for (const MofFeatureSyntax& feature : syntax.properties) {
    CimPropertyDeclaration inherited;
    const bool isInherited = feature.isReference && _sink.describeProperty(syntax.nameSpace, syntax.superClass.text,
                                                                           feature.name.text, inherited);
    if (!isInherited || inherited.referenceClass.isEmpty()) continue;
    if (isA(syntax.nameSpace, feature.type.text, inherited.referenceClass)) continue;
    isSound = false;
    _report.add(feature.type.at, "reference " + textOf(feature.name.text) + " is inherited as one to " +
                                     textOf(inherited.referenceClass) + ", expected that class or one derived from it");
  }
  return isSound;
}

QORSmrPtr<IQoriObject> MofClasses::makeObject(const MofClassSyntax& syntax) {
  CimClassDeclaration declaration;
  if (!hasSuperClass(syntax) || !build(syntax, declaration)) throw MofFault{};
  try {
    return _sink.makeClassObject(syntax.nameSpace, declaration);
  } catch (const CimDeclarationRefusal& refusal) {
    addFaults(syntax, refusal);
    throw MofFault{};
  } catch (const QoriBaseException& refusal) {
    throw MofFault{syntax.name.at, refusal.what()};
  }
}

// Records each fault at the place of its feature; when several features have one name, at the last.
void MofClasses::addFaults(const MofClassSyntax& syntax, const CimDeclarationRefusal& refusal) {
  for (const CimDeclarationFault& fault : refusal.getFaults()) {
    MofLocation at = syntax.name.at;
    for (const MofFeatureSyntax& feature : syntax.properties) {
      if (feature.name.text.isEqualCaseInsensitive(fault.feature)) at = feature.name.at;
    }
    for (const MofMethodSyntax& method : syntax.methods) {
      if (method.name.text.isEqualCaseInsensitive(fault.feature)) at = method.name.at;
    }
    _report.add(at, std::string(fault.message.view()));
  }
}

void MofClasses::declareWithSuperClasses(Pending& lowest) {
  std::vector<Pending*> chain;
  for (Pending* next = &lowest; next->state != State::Done;) {
    const MofClassSyntax& syntax = *next->syntax;
    if (next->state == State::Open) {
      _report.add(syntax.name.at, "class " + textOf(syntax.name.text) + " is its own superclass");
      _document.refuseClass(syntax.name.text);
      next->isCircular = true;
      break;
    }
    next->state = State::Open;
    chain.push_back(next);
    if (syntax.superClass.text.isEmpty()) break;
    const auto superClass = _pending.find(keyOf(syntax.nameSpace, syntax.superClass.text));
    if (superClass == _pending.end()) break;
    next = &superClass->second;
  }
  for (auto pending = chain.rbegin(); pending != chain.rend(); ++pending) {
    (*pending)->state = State::Done;
    declareOnce(*(*pending)->syntax, **pending);
  }
}

// What stands in the class is not looked at again: its memory serves those after it.
void MofClasses::declareOnce(MofClassSyntax& syntax, Pending& first) {
  declare(syntax, first);
  std::vector<MofQualifierSyntax>().swap(syntax.qualifiers);
  std::vector<MofFeatureSyntax>().swap(syntax.properties);
  std::vector<MofMethodSyntax>().swap(syntax.methods);
}

void MofClasses::declare(const MofClassSyntax& syntax, Pending& first) {
  // In a lenient load another declaration of a refused class may be sound.
  const bool isRefused = _report.isLenient() ? first.isCircular : _document.hasRefusedClass(syntax.name.text);
  if (_report.isFull() || isRefused) return;
  CimClassDeclaration declaration;
  if (!hasSuperClass(syntax)) return _document.refuseClass(syntax.name.text);
  bool isSound = build(syntax, declaration);
  // Features with a recorded fault are left out; the others may break rules as well.
  if (!isSound) {
    std::erase_if(declaration.properties, [](const auto& property) { return property.type.IsNull(); });
    declaration.methods.clear();
  }
  isSound = checkOverridingReferences(syntax) && isSound;
  if (!submit(syntax, declaration, isSound)) return _document.refuseClass(syntax.name.text);
  if (first.declared == nullptr) first.declared = &syntax;
}

// Declares the class; when it has faults already, only has it checked.
bool MofClasses::submit(const MofClassSyntax& syntax, const CimClassDeclaration& declaration, bool isSound) {
  try {
    if (isSound) {
      _sink.declareClass(syntax.nameSpace, declaration);
    } else {
      _sink.makeClassObject(syntax.nameSpace, declaration);
    }
    return isSound;
  } catch (const CimDeclarationRefusal& refusal) {
    addFaults(syntax, refusal);
  } catch (const QoriBaseException& refusal) {
    _report.add(syntax.name.at, refusal.what() + placeOfEarlier(syntax));
  }
  return false;
}

// Empty when this load has not declared the class before.
std::string MofClasses::placeOfEarlier(const MofClassSyntax& syntax) const {
  const auto found = _pending.find(keyOf(syntax.nameSpace, syntax.name.text));
  const MofClassSyntax* const earlier = found == _pending.end() ? nullptr : found->second.declared;
  return earlier == nullptr ? "" : ", at " + describeMofPlace(earlier->name.at);
}

bool MofClasses::hasSuperClass(const MofClassSyntax& syntax) {
  const QORString& superClass = syntax.superClass.text;
  if (superClass.isEmpty() || !_sink.findClass(syntax.nameSpace, superClass).IsNull()) return true;
  const std::string what = "superclass " + textOf(superClass) + " of class " + textOf(syntax.name.text) + " is ";
  const bool isRefused = _document.hasRefusedClass(superClass);
  if (_report.isLenient() && isRefused) {
    _report.add(syntax.superClass.at, what + "left out");
  } else if (_report.isLenient() || (!isRefused && !_document.isIncomplete)) {
    _report.add(MofFault{syntax.superClass.at, what + "not declared in namespace " + textOf(syntax.nameSpace),
                         subjectOfMofClass(syntax.nameSpace, superClass)});
  }
  return false;
}

bool MofClasses::build(const MofClassSyntax& syntax, CimClassDeclaration& out) {
  out.name = syntax.name.text;
  out.superClass = syntax.superClass.text;
  bool isSound =
      _qualifiers.resolve(syntax.nameSpace, syntax.qualifiers, MofQualifiers::Element::Class, out.qualifiers);
  out.properties.resize(syntax.properties.size());
  for (std::size_t i = 0; i < syntax.properties.size(); ++i) {
    isSound = buildFeature(syntax, syntax.properties[i], false, out.properties[i]) && isSound;
  }
  std::unordered_set<std::string> names;
  out.methods.resize(syntax.methods.size());
  for (std::size_t i = 0; i < syntax.methods.size(); ++i) {
    const MofName& name = syntax.methods[i].name;
    if (!names.insert(foldMofName(name.text)).second) {
      isSound = false;
      _report.add(name.at, "class " + textOf(out.name) + " declares method " + textOf(name.text) + " twice");
    }
    isSound = buildMethod(syntax, syntax.methods[i], out.methods[i]) && isSound;
  }
  return isSound;
}

bool MofClasses::buildMethod(const MofClassSyntax& owner, const MofMethodSyntax& syntax, CimMethodDeclaration& out) {
  out.name = syntax.name.text;
  bool isSound =
      _qualifiers.resolve(owner.nameSpace, syntax.qualifiers, MofQualifiers::Element::Method, out.qualifiers);
  try {
    out.returnType = requireType(syntax.type).scalar;
  } catch (const MofFault& fault) {
    isSound = false;
    _report.add(fault);
  }
  out.parameters.resize(syntax.parameters.size());
  for (std::size_t i = 0; i < syntax.parameters.size(); ++i) {
    isSound = buildFeature(owner, syntax.parameters[i], true, out.parameters[i]) && isSound;
  }
  return isSound;
}

bool MofClasses::buildFeature(const MofClassSyntax& owner, const MofFeatureSyntax& syntax, bool isParameter,
                              CimPropertyDeclaration& out) {
  using Element = MofQualifiers::Element;
  const Element element = isParameter ? (syntax.isReference ? Element::ReferenceParameter : Element::Parameter)
                                      : (syntax.isReference ? Element::Reference : Element::Property);
  out.name = syntax.name.text;
  const bool isSound = _qualifiers.resolve(owner.nameSpace, syntax.qualifiers, element, out.qualifiers);
  try {
    if (syntax.isReference && syntax.isArray && !isParameter) {
      throw MofFault{syntax.name.at, "a reference property cannot be an array"};
    }
    setType(syntax, out);
    setDefault(owner, syntax, out);
  } catch (const MofFault& fault) {
    _report.add(fault);
    return false;
  }
  return isSound;
}

void MofClasses::setType(const MofFeatureSyntax& syntax, CimPropertyDeclaration& out) const {
  const MofType& type = syntax.isReference ? *findMofType(CQoriType::reference->getName()) : requireType(syntax.type);
  out.type = syntax.isArray ? type.array : type.scalar;
  out.arraySize = syntax.arraySize;
  if (syntax.isReference) out.referenceClass = syntax.type.text;
}

void MofClasses::setDefault(const MofClassSyntax& owner, const MofFeatureSyntax& syntax, CimPropertyDeclaration& out) {
  if (!syntax.hasDefault) return;
  if (syntax.defaultValue.kind == MofValueSyntax::Kind::Null) {
    out.isDefaultNull = hasInheritedDefault(owner, syntax.name.text);
    return;
  }
  MofPropertyShape shape;
  shape.type = findMofType(out.type->getName());
  shape.isArray = syntax.isArray;
  shape.arraySize = syntax.arraySize;
  shape.referenceClass = out.referenceClass;
  const bool isEmbedded = out.findQualifier("EmbeddedInstance") != nullptr || out.hasFlag("EmbeddedObject");
  if (isEmbedded) {
    throw MofFault{syntax.defaultValue.at,
                   "the default of a property that holds an embedded instance can only be NULL"};
  }
  out.defaultValue = _values.make(syntax.defaultValue, shape, owner.nameSpace, owner.scope, 0);
}

bool MofClasses::hasInheritedDefault(const MofClassSyntax& owner, const QORString& name) const {
  CimPropertyDeclaration inherited;
  return !owner.superClass.text.isEmpty() &&
         _sink.describeProperty(owner.nameSpace, owner.superClass.text, name, inherited) &&
         !inherited.defaultValue.IsNull();
}
