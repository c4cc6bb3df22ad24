// The properties of a class come from an object of it without values: it has
// them all, inherited ones included, in the repository's spelling.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofShapes.h"

#include <algorithm>
#include <utility>

namespace {

// Steps from one name to the other: insertions, removals, replacements.
std::size_t distanceOf(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = std::exchange(row[j], std::min({replaced, row[j] + 1, row[j - 1] + 1}));
    }
  }
  return row[b.size()];
}

}  // namespace

const MofPropertyShape* MofClassShape::find(const QORString& name) const {
  const auto found = positions.find(foldMofName(name));
  return found == positions.end() ? nullptr : &properties[found->second];
}

std::string MofClassShape::similarName(const QORString& name) const {
  constexpr std::size_t kLongest = 64;
  if (name.length() > kLongest) return {};
  const std::string wanted = foldMofName(name);
  std::size_t best = 1 + wanted.size() / 3;
  std::string found;
  for (const MofPropertyShape& property : properties) {
    if (property.name.length() > kLongest) continue;
    const std::size_t distance = distanceOf(wanted, foldMofName(property.name));
    if (distance >= best) continue;
    best = distance;
    found = property.name.view();
  }
  return found;
}

const MofClassShape* MofShapes::find(const QORString& nameSpace, const QORString& className) {
  const std::string key = foldMofName(nameSpace) + ':' + foldMofName(className);
  if (const auto known = _shapes.find(key); known != _shapes.end()) return known->second.get();
  std::unique_ptr<MofClassShape> shape = describe(nameSpace, className);
  // A class that is missing now may be declared later.
  if (shape == nullptr) return nullptr;
  return _shapes.emplace(key, std::move(shape)).first->second.get();
}

std::unique_ptr<MofClassShape> MofShapes::describe(const QORString& nameSpace, const QORString& className) const {
  if (_sink.findClass(nameSpace, className).IsNull()) return nullptr;
  CimInstanceDeclaration blank;
  blank.className = className;
  const QORSmrPtr<IQoriObject> object = _sink.makeObject(nameSpace, blank);
  auto shape = std::make_unique<MofClassShape>();
  shape->className = object->getClassName();
  shape->nameSpace = object->getNameSpace();
  for (QORuint32 i = 0; i < object->getPropertyCount(); ++i) {
    const QORString name = object->getPropertyAt(i)->getName();
    shape->properties.push_back(describeProperty(*shape, name));
    shape->properties.back().position = i;
    shape->positions.emplace(foldMofName(name), i);
  }
  return shape;
}

MofPropertyShape MofShapes::describeProperty(const MofClassShape& shape, const QORString& name) const {
  CimPropertyDeclaration declared;
  _sink.describeProperty(shape.nameSpace, shape.className, name, declared);
  MofPropertyShape property;
  property.name = name;
  property.type = findMofType(declared.type->getName());
  property.isArray = declared.type->isArray();
  property.arraySize = declared.arraySize;
  property.isKey = declared.hasFlag("Key");
  property.referenceClass = declared.referenceClass;
  property.defaultValue = declared.defaultValue;
  const CimQualifier* const embedded = declared.findQualifier("EmbeddedInstance");
  const bool isInstance = embedded != nullptr && !embedded->value.IsNull();
  if (property.type->kind == MofType::Kind::Text && (isInstance || declared.hasFlag("EmbeddedObject"))) {
    property.type = findMofType("object");
    if (isInstance) property.embeddedClass = embedded->value->toString();
  }
  return property;
}

bool MofShapes::isA(const QORString& nameSpace, const QORString& className, const QORString& ancestor) const {
  if (ancestor.isEmpty()) return true;
  QORString name = className;
  for (;;) {
    if (name.isEqualCaseInsensitive(ancestor)) return true;
    const QORSmrPtr<IQoriClass> declared = _sink.findClass(nameSpace, name);
    if (declared.IsNull()) return true;
    name = declared->getSuperClassName();
    if (name.isEmpty()) return false;
  }
}
