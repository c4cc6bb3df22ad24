// Objects with their values behind them in one allocation.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/RowObject.h"

#include "cimom/CQoriProperty.h"

namespace embedded {

static_assert(sizeof(RowObject) % alignof(ModelSlot) == 0, "the slots follow the object");

RowView::RowView(const std::shared_ptr<RowSource>& source, const QORSmrPtr<ModelRestriction>& restriction)
    : source(source), restriction(restriction), slotOf(source->plan->shape()->layout->getPropertyCount(), -1) {
  QORsint32 slot = 0;
  for (const QORuint32 position : restriction->positions()) slotOf[position] = slot++;
}

QORSmrPtr<IQoriObject> RowObject::create(const QORSmrPtr<RowView>& view, std::string_view row, QORuint64 identity) {
  const std::size_t room = view->restriction->positions().size() * sizeof(ModelSlot);
  QORSmrPtr<IQoriObject> made = QORSmrPtr<IQoriObject>::MakeWithRoom<RowObject>(room, view, row, identity);
  ModelSlot* const slots = static_cast<RowObject&>(*made).slots();
  const QORsint32* const slotOf = view->slotOf.data();
  view->source->plan->fill(
      [slots, slotOf](QORuint32 position) { return slotOf[position] < 0 ? nullptr : slots + slotOf[position]; }, row);
  return made;
}

RowObject::RowObject(const QORSmrPtr<RowView>& view, std::string_view row, QORuint64 identity) noexcept
    : _view(view), _row(row), _identity(identity) {
  std::uninitialized_default_construct_n(slots(), _view->restriction->positions().size());
}

RowObject::~RowObject() { std::destroy_n(slots(), _view->restriction->positions().size()); }

QORSmrPtr<IQoriObject> RowObject::whole() const {
  const std::lock_guard<std::mutex> lock(_view->source->mutex);
  return _view->source->plan->makeObject(_row, _identity);
}

QORSmrPtr<IQoriProperty> RowObject::getPropertyAt(QORuint32 position) const {
  const IQoriLayout& layout = *getLayout();
  return QORSmrPtr<IQoriProperty>::Make<CQoriProperty>(layout.getName(position), layout.getType(position),
                                                       getValueAt(position));
}

QORSmrPtr<IQoriProperty> RowObject::getProperty(const QORString& name, bool /*includeInherited*/) const {
  const QORsint32 position = getLayout()->getPosition(name);
  return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
}

QORSmrPtr<IQoriValue> RowObject::getValueAt(QORuint32 position) const {
  return slots()[position].value(getLayout()->getType(position));
}

}  // namespace embedded
