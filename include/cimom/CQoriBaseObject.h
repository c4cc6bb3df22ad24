// The objects that the engine creates: restricted copies and pseudo-objects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORIBASEOBJECT_H
#define QORQL_CIMOM_CQORIBASEOBJECT_H

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

class ModelRestriction;
class ModelSlot;

// Immutable; threads may share one.
class CQoriBaseObject final : public IQoriObject {
 public:
  using PropertyList = QORValSlist<QORSmrPtr<IQoriProperty>>;

  // A copy of `object` reduced to the listed properties (case and duplicates
  // ignored, names that it lacks left out), in the source's order. Class name,
  // instance name and namespace stay. Shares the source's values. Copies made
  // on one thread with the same names from objects of one layout share a layout
  // and cost one look at the names each. REQUIRES a non-null object; a null list
  // keeps nothing; the flag has no effect.
  CQoriBaseObject(const QORSmrPtr<IQoriObject>& object, const QORSmrPtr<QORValSlist<QORString>>& names, bool flag);
  // The same by a restriction worked out before. REQUIRES that it was made from
  // the object's layout.
  CQoriBaseObject(const QORSmrPtr<IQoriObject>& object, const QORSmrPtr<ModelRestriction>& restriction);
  // An object of its own: namespace, class name, name of its key property, and
  // its properties in order. A null list stands for none. It has no layout, and
  // no instance name when the key is absent or has no value.
  CQoriBaseObject(const QORString& nameSpace, const QORString& className, const QORString& keyName,
                  const QORSmrPtr<PropertyList>& properties);
  CQoriBaseObject(const CQoriBaseObject&) = delete;
  CQoriBaseObject& operator=(const CQoriBaseObject&) = delete;
  ~CQoriBaseObject() override;

  const QORString& getClassName() const noexcept override;
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override;
  void appendPath(std::string& text) const override;
  QORuint32 getPathHash() const override;
  QORuint64 getIdentity() const noexcept override { return _identity; }
  QORString getNameSpace() const override;
  QORuint32 getPropertyCount() const noexcept override;
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override;
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override;
  const IQoriLayout* getLayout() const noexcept override;
  QoriScalar getScalarAt(QORuint32 position) const noexcept override;
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override;
  QoriCells getCells() const noexcept override;

 private:
  // The properties of an object without a layout, and the names of one without a source.
  struct Own;

  void shareSource(const QORSmrPtr<IQoriObject>& object);
  void copyProperties(const IQoriObject& object, const QORSmrPtr<QORValSlist<QORString>>& names);

  QORSmrPtr<IQoriObject> _source;            // whose values are shared; null for an object of its own
  QORSmrPtr<ModelRestriction> _restriction;  // null without a layout
  const QORuint32* _positions = nullptr;     // the source's position of each property
  const ModelSlot* _slots = nullptr;         // the source's values, when it stores them in place
  QORuint64 _identity = 0;                   // the source's
  Own* _own = nullptr;                       // OWNS; null with a restriction
};

#endif
