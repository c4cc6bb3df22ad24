// An instance as the engine sees it: class, name and properties.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_IQORIOBJECT_H
#define QORQL_CIMOM_IQORIOBJECT_H

#include <string>

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriProperty.h"
#include "cimom/IQoriValue.h"
#include "cimom/QoriScalar.h"
#include "cmpbase.h"

// The property positions that objects of one class share. Two objects with the
// same layout address have the same class name, and the same property names and
// types at the same positions. Immutable; lives at least as long as any object
// that returns it.
class IQoriLayout {
 public:
  // The number is what getSerial() gives.
  explicit IQoriLayout(QORuint64 serial = 0) noexcept : _serial(serial) {}
  virtual ~IQoriLayout() = default;
  // A number below 2^48 that no other layout of the process has, dead ones
  // included, so that a position may be remembered for it; 0 for a layout that has none.
  QORuint64 getSerial() const noexcept { return _serial; }
  virtual QORuint32 getPropertyCount() const noexcept = 0;
  // Position of the property, ignoring case; -1 when there is none.
  virtual QORsint32 getPosition(const QORString& name) const noexcept = 0;
  // REQUIRE position < getPropertyCount().
  virtual const QORString& getName(QORuint32 position) const noexcept = 0;
  virtual const QORSmrPtr<IQoriType>& getType(QORuint32 position) const noexcept = 0;
  // By how many bytes a property's view lies behind the cells that objects of this
  // layout give; the same for all that give some. REQUIRE position < getPropertyCount().
  virtual QORuint32 getCellOffset(QORuint32 /*position*/) const noexcept { return 0; }

 private:
  const QORuint64 _serial;
};

// What a reader of many objects asks of each: its layout, and where its values lie.
struct QoriCells {
  const IQoriLayout* layout = nullptr;  // as getLayout() gives it
  const char* cells = nullptr;  // BORROWS: valid while the object lives; null: its values do not lie in memory so

  // What getScalarAt() gives for the position of which this is the offset. REQUIRES cells.
  static const QoriScalar& at(const char* cells, QORuint32 offset) noexcept {
    return *reinterpret_cast<const QoriScalar*>(cells + offset);
  }
};

// Once an object has been handed out it does not change; threads may share it.
class IQoriObject {
 public:
  virtual ~IQoriObject() = default;

  // The object's own class, which may be a subclass of the one that was asked for.
  virtual const QORString& getClassName() const noexcept = 0;
  // The object path; null when the object has none (an embedded instance without keys may).
  virtual QORSmrPtr<IQoriInstanceName> getInstanceName() const = 0;
  // Appends the path's text, as getInstanceName()->toString() gives it; nothing
  // for an object without a path. Objects may do it without making the name.
  virtual void appendPath(std::string& text) const {
    const QORSmrPtr<IQoriInstanceName> name(getInstanceName());
    if (!name.IsNull()) text += name->toString().view();
  }
  // Of objects that one call of the object manager returned, those with different
  // numbers have different paths; 0 tells nothing. An object manager that numbers
  // its instances in the order in which it returns them spares callers their paths.
  virtual QORuint64 getIdentity() const noexcept { return 0; }
  // hashKeyBytes of what appendPath appends. Objects may remember it.
  virtual QORuint32 getPathHash() const {
    std::string path;
    appendPath(path);
    return hashKeyBytes(path);
  }
  // Namespace the instance came from, which its path tells; empty when it has none.
  virtual QORString getNameSpace() const {
    const QORSmrPtr<IQoriInstanceName> name(getInstanceName());
    if (name.IsNull() || name->getNameSpacePath().IsNull()) return QORString::emptyString();
    return name->getNameSpacePath()->getNameSpace();
  }

  // How many properties it has, NULL ones too.
  virtual QORuint32 getPropertyCount() const noexcept = 0;
  // In the object's order. REQUIRES position < getPropertyCount().
  virtual QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const = 0;
  // Ignoring case; null when the object has no such property. The flag includes
  // properties of superclasses; the engine always passes true.
  virtual QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const = 0;

  // The layout, when property positions may be bound once for many objects; an
  // object that cannot promise this returns null and is read by name. An object
  // with a layout overrides the two operations below, which are not called without
  // one, and which then throw nothing except std::bad_alloc.
  virtual const IQoriLayout* getLayout() const noexcept { return nullptr; }
  // The property's value as a borrowed view, valid while the object lives; kind
  // Null for a property without value. REQUIRES a layout and a position in it.
  virtual QoriScalar getScalarAt(QORuint32 /*position*/) const noexcept { return {}; }
  // The property's value, null when it has none. REQUIRES as above.
  virtual QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const { return getPropertyAt(position)->getValue(); }
  // The layout with the place of the views that getScalarAt() gives, where they lie
  // ready in memory, all at the offsets that the layout tells: readers of many
  // objects then need one call for each instead of one for each value.
  virtual QoriCells getCells() const noexcept { return {getLayout(), nullptr}; }

  // The namespace the instance came from; empty for a null object.
  static QORString getLocalNameSpace(const QORSmrPtr<IQoriObject>& object) {
    return object.IsNull() ? QORString::emptyString() : object->getNameSpace();
  }
};

#endif
