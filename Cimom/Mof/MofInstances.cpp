// One instance at a time; a fault in one does not stop the next.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofInstances.h"

void MofInstances::defineAliases() {
  for (const auto& instance : _document.instances) _values.defineAlias(*instance);
}

void MofInstances::createAll() {
  for (const auto& instance : _document.instances) {
    if (_report.isFull()) return;
    try {
      create(*instance);
    } catch (const MofFault& fault) {
      _report.add(fault);
    } catch (const QoriBaseException& refusal) {
      _report.add(instance->className.at, refusal.what() + describeEarlier(*instance));
    }
  }
}

void MofInstances::create(const MofInstanceSyntax& instance) {
  const MofClassShape& shape = _values.shapeOf(instance);
  CimInstanceDeclaration declaration;
  if (!_values.declare(instance, shape, 0, declaration)) return;
  if (!_values.checkKeys(instance, declaration, shape)) return;
  _values.resolveAlias(instance, _sink.createInstance(instance.nameSpace, declaration));
  _created.push_back(&instance);
}

// Where the instance of the same path stands; empty when this load has created none.
std::string MofInstances::describeEarlier(const MofInstanceSyntax& instance) {
  for (; _indexed < _created.size(); ++_indexed)
    _byPath.try_emplace(_values.pathOf(*_created[_indexed]), _created[_indexed]);
  const std::string path = _values.pathOf(instance);
  const auto earlier = _byPath.find(path);
  const bool isKnown = !path.empty() && earlier != _byPath.end();
  return isKnown ? ", declared at " + describeMofPlace(earlier->second->className.at) : "";
}

std::vector<QORSmrPtr<IQoriObject>> MofInstances::makeObjects() {
  std::vector<QORSmrPtr<IQoriObject>> objects;
  objects.reserve(_document.instances.size());
  for (const auto& instance : _document.instances) {
    if (_report.isFull()) break;
    try {
      CimInstanceDeclaration declaration;
      if (!_values.declare(*instance, _values.shapeOf(*instance), 0, declaration)) continue;
      objects.push_back(_sink.makeObject(instance->nameSpace, declaration));
    } catch (const MofFault& fault) {
      _report.add(fault);
    } catch (const QoriBaseException& refusal) {
      _report.add(instance->className.at, refusal.what());
    }
  }
  return objects;
}
