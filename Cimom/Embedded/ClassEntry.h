// A class that is declared, and the work that is left until somebody needs it.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CLASSENTRY_H
#define QORQL_EMBEDDED_CLASSENTRY_H

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Embedded/CimDeclarationSource.h"
#include "Cimom/Embedded/Extent.h"

namespace embedded {

class LaterClasses;

// A declared class and the instances of it and its subclasses. The store's lock guards what may change; the class
// itself, which is read when it is first asked for, has a lock of its own.
class ClassEntry {
 public:
  // BORROW the superclass, null at the root.
  ClassEntry(const QORSmrPtr<IQoriClass>& declared, ClassEntry* superClass);
  // BORROWS the rest, which outlives this.
  ClassEntry(const CimClassHeading& heading, ClassEntry* superClass, LaterClasses& later, QORuint32 number);
  ClassEntry(const ClassEntry&) = delete;
  ClassEntry& operator=(const ClassEntry&) = delete;

  const QORString& name() const noexcept { return _name; }
  ClassEntry* superClass() const noexcept { return _superClass; }
  // THROW QoriBaseException when the class has not been read so far and cannot be. Of a class with instances they do
  // not: making those has read it.
  const CQoriClass& model() const {
    const CQoriClass* const known = _model.load(std::memory_order_acquire);
    return known == nullptr ? readModel() : *known;
  }
  // What the repository hands out; the same object.
  const QORSmrPtr<IQoriClass>& handle() const {
    model();
    return _handle;
  }
  // Whether this is the other class or a subclass of it.
  bool isA(const ClassEntry& other) const noexcept;

  Extent extent;           // subclass instances included
  QORuint64 version = 0;   // changes with what queries see of the extent
  bool isPending = false;  // declared by a load that has not been committed

 private:
  friend class LaterClasses;

  const CQoriClass& readModel() const;
  void setModel(const QORSmrPtr<IQoriClass>& declared) const;

  const QORString _name;
  ClassEntry* const _superClass;
  LaterClasses* const _later = nullptr;  // null: the class was there from the start
  const QORuint32 _number = 0;           // in its source
  mutable QORSmrPtr<IQoriClass> _handle;
  mutable std::atomic<const CQoriClass*> _model = nullptr;  // set once, after the handle
};

// Makes the classes of one namespace from what a source tells. Any thread may ask, whether it holds the store's lock or
// not; what comes out depends on neither the thread nor the order.
class LaterClasses {
 public:
  LaterClasses(QORString nameSpace, std::shared_ptr<CimDeclarationSource> source)
      : _nameSpace(std::move(nameSpace)), _source(std::move(source)) {}

  // With its superclasses, as far as they have not been read.
  const CQoriClass& read(const ClassEntry& entry);

 private:
  QORSmrPtr<IQoriClass> declare(const ClassEntry& entry) const;
  QORSmrPtr<IQoriClass> make(const ClassEntry& entry, const CimClassDeclaration& declaration) const;

  const QORString _nameSpace;
  const std::shared_ptr<CimDeclarationSource> _source;
  std::mutex _mutex;
};

}  // namespace embedded

#endif
