// The objects that the engine creates: restricted copies and pseudo-objects.
#ifndef QORQL_CIMOM_CQORIBASEOBJECT_H
#define QORQL_CIMOM_CQORIBASEOBJECT_H

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

class CQoriBaseObject : public IQoriObject {
 public:
  using PropertyList = QORValSlist<QORSmrPtr<IQoriProperty>>;

  // A copy of `object` reduced to the listed properties (case and duplicates
  // ignored, names that it lacks left out), in the source's order. Class name,
  // instance name and namespace stay. Shares the source's values. REQUIRES a
  // non-null object; a null list keeps nothing.
  CQoriBaseObject(const QORSmrPtr<IQoriObject>& object, const QORSmrPtr<QORValSlist<QORString>>& names, bool flag);
  // An object of its own: namespace, class name, name of its key property, and
  // its properties in order. A null list stands for none.
  CQoriBaseObject(const QORString& nameSpace, const QORString& className, const QORString& keyName,
                  const QORSmrPtr<PropertyList>& properties);
  CQoriBaseObject(const CQoriBaseObject&) = delete;
  CQoriBaseObject& operator=(const CQoriBaseObject&) = delete;
  ~CQoriBaseObject() override;

  const QORString& getClassName() const noexcept override;
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override;
  QORString getNameSpace() const override;
  QORuint32 getPropertyCount() const noexcept override;
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override;
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override;
  const IQoriLayout* getLayout() const noexcept override;
  QoriScalar getScalarAt(QORuint32 position) const noexcept override;
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override;

 private:
  struct State;
  State* _state;  // OWNS
};

#endif
