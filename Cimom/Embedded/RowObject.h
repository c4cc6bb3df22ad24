// Instances that have been made of rows for one list, with the properties that it asks for.
// Tested by tests/unit/Embedded/LaterRowsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_ROWOBJECT_H
#define QORQL_EMBEDDED_ROWOBJECT_H

#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/RowPlan.h"
#include "Cimom/Model/ModelRestriction.h"
#include "cimom/IQoriObject.h"

namespace embedded {

// Rows of one form and how they are read. Threads may share one; the bytes live as long as it does.
struct RowSource {
  RowSource(std::unique_ptr<RowPlan> plan, std::shared_ptr<const void> owner)
      : plan(std::move(plan)), owner(std::move(owner)) {}

  std::mutex mutex;                     // guards the plan's reading
  const std::unique_ptr<RowPlan> plan;  // REQUIRES non-null
  const std::shared_ptr<const void> owner;
};

// What the objects of one list have in common that come from one source.
struct RowView {
  RowView(const std::shared_ptr<RowSource>& source, const QORSmrPtr<ModelRestriction>& restriction);

  const std::shared_ptr<RowSource> source;
  const QORSmrPtr<ModelRestriction> restriction;  // of the class's layout
  std::vector<QORsint32> slotOf;                  // by position in the class; -1: not asked for
};

// As a restricted copy of a stored instance would be, without the instance: what is asked of the others of its
// properties, its path above all, is read from the row again. Immutable; threads may share one.
class RowObject final : public IQoriObject {
 public:
  // REQUIRES a sound row that the source's owner keeps, and the source's mutex.
  static QORSmrPtr<IQoriObject> create(const QORSmrPtr<RowView>& view, std::string_view row, QORuint64 identity);
  RowObject(const RowObject&) = delete;
  RowObject& operator=(const RowObject&) = delete;
  ~RowObject() override;

  const QORString& getClassName() const noexcept override { return _view->source->plan->shape()->className; }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return whole()->getInstanceName(); }
  void appendPath(std::string& text) const override { whole()->appendPath(text); }
  QORuint64 getIdentity() const noexcept override { return _identity; }
  QORString getNameSpace() const override { return _view->source->plan->shape()->nameSpace; }
  QORuint32 getPropertyCount() const noexcept override { return getLayout()->getPropertyCount(); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override;
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool includeInherited) const override;
  const IQoriLayout* getLayout() const noexcept override { return &_view->restriction->layout(); }
  QoriScalar getScalarAt(QORuint32 position) const noexcept override { return slots()[position].scalar(); }
  QORSmrPtr<IQoriValue> getValueAt(QORuint32 position) const override;

 private:
  friend class QORSmrPtr<IQoriObject>;

  // REQUIRES room for the slots directly after the object.
  RowObject(const QORSmrPtr<RowView>& view, std::string_view row, QORuint64 identity) noexcept;
  ModelSlot* slots() noexcept { return reinterpret_cast<ModelSlot*>(this + 1); }
  const ModelSlot* slots() const noexcept { return reinterpret_cast<const ModelSlot*>(this + 1); }
  // The stored instance that the row stands for.
  QORSmrPtr<IQoriObject> whole() const;

  const QORSmrPtr<RowView> _view;
  const std::string_view _row;
  const QORuint64 _identity;
};

}  // namespace embedded

#endif
