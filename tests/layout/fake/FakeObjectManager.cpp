// The fake object manager's classes, instances and record.
// SPDX-License-Identifier: Apache-2.0
#include "tests/layout/fake/FakeObjectManager.h"

#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"

namespace {

const char* const kNameSpace = "root/fake";

QORString folded(const std::string& name) { return QORString::toUpperCase(QORString(name.c_str())); }

class FakeQualifier : public IQoriQualifier {
 public:
  explicit FakeQualifier(const std::string& name) : _name(name.c_str()) {}
  const QORString& getName() const noexcept override { return _name; }

 private:
  QORString _name;
};

template <class List>
auto findIgnoringCase(const List& list, const QORString& name) noexcept -> decltype(&list.front()) {
  for (const auto& entry : list) {
    if (entry.getName().isEqualCaseInsensitive(name)) return &entry;
  }
  return nullptr;
}

class FakeRepositoryClass : public IQoriClass {
 public:
  explicit FakeRepositoryClass(const FakeClass& declaration)
      : _name(declaration.name.c_str()), _superClass(declaration.superClass.c_str()) {
    for (const std::string& name : declaration.properties) {
      _properties.emplace_back(QORString(name.c_str()), CQoriType::string, QORSmrPtr<IQoriValue>());
    }
    for (const std::string& name : declaration.qualifiers) _qualifiers.emplace_back(name);
  }
  const QORString& getClassName() const noexcept override { return _name; }
  const QORString& getSuperClassName() const noexcept override { return _superClass; }
  const IQoriQualifier* getQualifier(const QORString& name, bool) const noexcept override {
    return findIgnoringCase(_qualifiers, name);
  }
  const IQoriProperty* getProperty(const QORString& name, bool) const noexcept override {
    return findIgnoringCase(_properties, name);
  }

 private:
  QORString _name;
  QORString _superClass;
  std::vector<CQoriProperty> _properties;
  std::vector<FakeQualifier> _qualifiers;
};

}  // namespace

FakeObjectManager& FakeObjectManager::instance() {
  static FakeObjectManager only;
  return only;
}

void FakeObjectManager::reset() { *this = FakeObjectManager(); }

void FakeObjectManager::addClass(const FakeClass& declaration) {
  _classes[folded(declaration.name).c_str()] = declaration;
}

void FakeObjectManager::addInstance(const std::string& className, const FakeProperties& properties) {
  _instances.push_back(makeFakeObject(kNameSpace, className, properties));
}

void FakeObjectManager::addAssociate(const std::string& sourcePath, const std::string& associatePath) {
  _associates.emplace_back(sourcePath, associatePath);
}

QORSmrPtr<IQoriClass> FakeObjectManager::findClass(const std::string& name) const {
  const auto found = _classes.find(folded(name).c_str());
  if (found == _classes.end()) return {};
  return new FakeRepositoryClass(found->second);
}

FakeObjectManager::Instances FakeObjectManager::instancesOf(const std::string& className) const {
  if (findClass(className).IsNull()) return {};
  const Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  for (const QORSmrPtr<IQoriObject>& object : _instances) {
    if (object->getClassName().isEqualCaseInsensitive(QORString(className.c_str()))) list->append(object);
  }
  return list;
}

FakeObjectManager::Instances FakeObjectManager::associatesOf(const std::string& sourcePath) const {
  const Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  for (const auto& [source, associate] : _associates) {
    if (source == sourcePath) list->append(findInstance(associate));
  }
  return list;
}

QORSmrPtr<IQoriObject> FakeObjectManager::findInstance(const std::string& path) const {
  for (const QORSmrPtr<IQoriObject>& object : _instances) {
    if (object->getInstanceName()->toString() == path.c_str()) return object;
  }
  return {};
}
