// A class is made by one thread, and only then shown to the others.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/ClassEntry.h"

#include <exception>
#include <new>
#include <vector>

#include "Cimom/Embedded/RepositoryError.h"

namespace embedded {

ClassEntry::ClassEntry(const QORSmrPtr<IQoriClass>& declared, ClassEntry* superClass)
    : _name(declared->getClassName()), _superClass(superClass) {
  setModel(declared);
}

ClassEntry::ClassEntry(const CimClassHeading& heading, ClassEntry* superClass, LaterClasses& later, QORuint32 number)
    : _name(heading.name), _superClass(superClass), _later(&later), _number(number) {}

void ClassEntry::setModel(const QORSmrPtr<IQoriClass>& declared) const {
  _handle = declared;
  _model.store(static_cast<const CQoriClass*>(declared.Get()), std::memory_order_release);
}

const CQoriClass& ClassEntry::readModel() const { return _later->read(*this); }

bool ClassEntry::isA(const ClassEntry& other) const noexcept {
  const ClassEntry* entry = this;
  while (entry != nullptr && entry != &other) entry = entry->_superClass;
  return entry != nullptr;
}

const CQoriClass& LaterClasses::read(const ClassEntry& entry) {
  const std::lock_guard<std::mutex> lock(_mutex);
  std::vector<const ClassEntry*> line;
  for (const ClassEntry* at = &entry; at != nullptr && at->_model.load(std::memory_order_relaxed) == nullptr;
       at = at->_superClass) {
    line.push_back(at);
  }
  for (; !line.empty(); line.pop_back()) line.back()->setModel(declare(*line.back()));
  return *entry._model.load(std::memory_order_relaxed);
}

QORSmrPtr<IQoriClass> LaterClasses::declare(const ClassEntry& entry) const {
  try {
    return make(entry, _source->read(entry._number));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return make(entry, _source->readElsewhere(entry._number));
  }
}

// Its superclasses have been made.
QORSmrPtr<IQoriClass> LaterClasses::make(const ClassEntry& entry, const CimClassDeclaration& declaration) const {
  const ClassEntry* const superClass = entry._superClass;
  const std::string_view expected = superClass == nullptr ? std::string_view() : superClass->name().view();
  const bool isExpected = declaration.name.view() == entry.name().view() &&
                          QORString::equalIgnoringCase(declaration.superClass.view(), expected);
  if (!isExpected) refuse(CimStatus::Failed, {"class ", entry.name().view(), " has become another one"});
  return QORSmrPtr<IQoriClass>(
      new CQoriClass(_nameSpace, declaration, superClass == nullptr ? nullptr : &superClass->model()));
}

}  // namespace embedded
