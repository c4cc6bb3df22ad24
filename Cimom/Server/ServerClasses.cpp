// Classes with all that they inherit, marked with where it comes from.
// Tested by tests/unit/Server/ClassOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/ServerClasses.h"

#include <algorithm>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/Embedded/RepositoryError.h"

namespace {

[[noreturn]] void raise(embedded::CimStatus status, const char* what, const QORString& name) {
  throw CimStatusException(static_cast<QORuint32>(status), std::string(what) + std::string(name.view()));
}

template <class Features>
auto findFeature(const Features& features, const QORString& name) {
  return std::find_if(features.begin(), features.end(),
                      [&](const auto& each) { return each.name.isEqualCaseInsensitive(name); });
}

const std::vector<CimPropertyDeclaration>& featuresOf(const CimClassDeclaration& declaration,
                                                      const CimPropertyDeclaration* /*one*/) {
  return declaration.properties;
}
const std::vector<CimMethodDeclaration>& featuresOf(const CimClassDeclaration& declaration,
                                                    const CimMethodDeclaration* /*one*/) {
  return declaration.methods;
}

// Where a property or method of the class comes from: the nearest class of the line that declares it.
template <class Feature>
CimXmlFeatureMarks marksOf(const std::vector<ServerClasses::Class>& line, const Feature& feature) {
  CimXmlFeatureMarks marks;
  for (const ServerClasses::Class& each : line) {
    const CimClassDeclaration& declaration = ServerClasses::modelOf(each).declaration();
    const auto& features = featuresOf(declaration, &feature);
    const auto found = findFeature(features, feature.name);
    if (found == features.end()) continue;
    marks.origin = declaration.name;
    marks.isPropagated = &each != &line.front();
    marks.ownQualifiers = marks.isPropagated ? 0 : found->qualifiers.size();
    break;
  }
  return marks;
}

bool isWanted(const std::optional<std::vector<QORString>>& names, const QORString& name) {
  return !names || std::any_of(names->begin(), names->end(),
                               [&](const QORString& each) { return each.isEqualCaseInsensitive(name); });
}

// The class with what it declares itself; a default that it does not override is in force in it, too.
CimClassDeclaration ownClass(const CQoriClass& model) {
  CimClassDeclaration own = model.declaration();
  for (CimPropertyDeclaration& each : own.properties) {
    each.defaultValue = model.properties()[static_cast<std::size_t>(model.position(each.name))].defaultValue;
  }
  return own;
}

// The class with all that it inherits.
CimClassDeclaration wholeClass(const CQoriClass& model) {
  CimClassDeclaration whole;
  whole.name = model.getClassName();
  whole.superClass = model.getSuperClassName();
  whole.qualifiers = model.qualifiersInForce();
  whole.properties = model.properties();
  for (const auto& method : model.methods()) whole.methods.push_back(*method);
  return whole;
}

}  // namespace

void requireNameSpace(const EmbeddedObjectManager& manager, const QORString& nameSpace) {
  const std::vector<QORString> known = manager.namespaces();
  const auto isIt = [&](const QORString& each) { return each.isEqualCaseInsensitive(nameSpace); };
  if (std::any_of(known.begin(), known.end(), isIt)) return;
  // Outer servers may have others.
  if (nameSpace.isEmpty() || manager.classNames(nameSpace).empty()) {
    raise(embedded::CimStatus::InvalidNamespace, "there is no namespace ", nameSpace);
  }
}

ServerClasses::ServerClasses(const EmbeddedObjectManager& manager, const QORString& nameSpace)
    : _manager(manager), _nameSpace(nameSpace) {
  requireNameSpace(manager, nameSpace);
}

ServerClasses::Class ServerClasses::find(const QORString& className) const {
  return _manager.repository()->getClass(_nameSpace, className);
}

ServerClasses::Class ServerClasses::require(const QORString& className) const {
  Class found = find(className);
  if (found.IsNull()) raise(embedded::CimStatus::InvalidClass, "there is no class ", className);
  return found;
}

bool ServerClasses::isBelow(const QORString& className, const QORString& ancestor, bool isDeep) const {
  Class at = find(className);
  while (!at.IsNull()) {
    const QORString& superClass = at->getSuperClassName();
    if (superClass.isEqualCaseInsensitive(ancestor)) return true;
    if (!isDeep || superClass.isEmpty()) return false;
    at = find(superClass);
  }
  return false;
}

bool ServerClasses::isA(const QORString& className, const QORString& ancestor) const {
  return className.isEqualCaseInsensitive(ancestor) || isBelow(className, ancestor, true);
}

std::vector<QORString> ServerClasses::namesBelow(const QORString& className, bool isDeep) const {
  std::vector<QORString> names = _manager.classNames(_nameSpace);
  if (className.isEmpty() && isDeep) return names;
  std::erase_if(names, [&](const QORString& name) { return !isBelow(name, className, isDeep); });
  return names;
}

std::vector<ServerClasses::Class> ServerClasses::lineOf(const Class& handle) const {
  std::vector<Class> line;
  for (Class at = handle; !at.IsNull();) {
    line.push_back(at);
    const QORString& superClass = at->getSuperClassName();
    at = superClass.isEmpty() ? Class() : find(superClass);
  }
  return line;
}

QORString ServerClasses::originOf(const Class& handle, const QORString& propertyName) const {
  CimPropertyDeclaration property;
  property.name = propertyName;
  return marksOf(lineOf(handle), property).origin;
}

void ServerClasses::write(CimXmlWriter& writer, const Class& handle, const View& view) const {
  const CQoriClass& model = modelOf(handle);
  CimClassDeclaration shown = view.isLocalOnly ? ownClass(model) : wholeClass(model);
  std::erase_if(shown.properties,
                [&](const CimPropertyDeclaration& each) { return !isWanted(view.propertyNames, each.name); });
  const std::vector<Class> line = lineOf(handle);
  CimXmlClassMarks marks;
  marks.hasQualifiers = view.hasQualifiers;
  marks.hasOrigins = view.hasOrigins;
  marks.ownQualifiers = model.declaration().qualifiers.size();
  for (const CimPropertyDeclaration& each : shown.properties) marks.properties.push_back(marksOf(line, each));
  for (const CimMethodDeclaration& each : shown.methods) marks.methods.push_back(marksOf(line, each));
  writer.writeClass(shown, marks);
}
