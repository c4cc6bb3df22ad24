// Restricted copies and objects of their own.
//
// A restricted copy of an object with a layout holds the object and a shared
// restriction; a copy of a copy holds the first object itself, with the
// positions of both steps in one. An object without a layout, and one that is
// made from a property list, holds its properties.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CQoriBaseObject.h"

#include <algorithm>
#include <array>
#include <new>
#include <typeinfo>
#include <utility>
#include <vector>

#include "Cimom/Model/ModelInstance.h"
#include "Cimom/Model/ModelNameCache.h"
#include "Cimom/Model/ModelRestriction.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"

namespace {

using Names = QORSmrPtr<QORValSlist<QORString>>;

// A thread's last restrictions, so that restricting many objects alike costs
// one comparison of the names each: string copies share their buffer, and equal
// buffers are equal texts. Holds derived layouts, never objects.
class RestrictionMemo {
 public:
  const QORSmrPtr<ModelRestriction>& find(const ModelLayout& layout, const QORValSlist<QORString>& names) {
    Entry& entry = _entries[(layout.getSerial() ^ reinterpret_cast<std::size_t>(&names) / 64) % _entries.size()];
    if (entry.serial != layout.getSerial() || !(entry.names == names)) {
      // Made complete first: an entry that is half changed would stay wrong.
      Entry fresh{layout.getSerial(), names, layout.restrictTo(names)};
      entry = std::move(fresh);
    }
    return entry.restriction;
  }

 private:
  struct Entry {
    QORuint64 serial = 0;
    QORValSlist<QORString> names;
    QORSmrPtr<ModelRestriction> restriction;
  };
  std::array<Entry, 8> _entries;
};

struct OwnMemo {
  RestrictionMemo* memo = nullptr;
  bool hasEnded = false;
};

constinit thread_local OwnMemo theMemo;

// Frees the thread's memo at its end. What a later destructor restricts, of the thread or
// of the process, is not remembered: nobody would free it.
struct MemoHolder {
  MemoHolder() = default;
  MemoHolder(const MemoHolder&) = delete;
  MemoHolder& operator=(const MemoHolder&) = delete;
  ~MemoHolder() {
    theMemo.hasEnded = true;
    delete std::exchange(theMemo.memo, nullptr);
  }
};

// Null when there is no room for one: it saves time, and nothing else.
RestrictionMemo* ownMemo() {
  OwnMemo& own = theMemo;
  if (own.memo == nullptr && !own.hasEnded) {
    own.memo = new (std::nothrow) RestrictionMemo;
    static thread_local const MemoHolder theHolder;
  }
  return own.memo;
}

QORSmrPtr<ModelRestriction> restrictionOf(const ModelLayout& layout, const Names& names) {
  const QORValSlist<QORString> none;
  const QORValSlist<QORString>& listed = names.IsNull() ? none : *names;
  RestrictionMemo* const memo = ownMemo();
  return memo == nullptr ? layout.restrictTo(listed) : memo->find(layout, listed);
}

bool isListed(const QORValSlist<QORString>& names, const QORString& name) {
  QORValSlistIterator<QORString> it(names);
  while (++it) {
    if (it.key().isEqualCaseInsensitive(name)) return true;
  }
  return false;
}

}  // namespace

struct CQoriBaseObject::Own {
  std::vector<QORSmrPtr<IQoriProperty>> properties;
  QORString nameSpace;
  QORString className;
  QORString keyName;
  ModelNameCache name;
  // Of many properties: the hash of each name and its place, in this order.
  std::vector<std::pair<std::size_t, std::size_t>> index;

  QORSmrPtr<IQoriInstanceName> makeName() const;
  // To be called when all properties are there.
  void makeIndex();
  // Null when there is none.
  const QORSmrPtr<IQoriProperty>* find(const QORString& propertyName) const noexcept;
};

CQoriBaseObject::CQoriBaseObject(const QORSmrPtr<IQoriObject>& object, const Names& names, bool /*flag*/)
    : _source(object) {
  const IQoriLayout* const layout = object->getLayout();
  if (layout != nullptr && typeid(*layout) == typeid(ModelLayout)) {
    _restriction = restrictionOf(static_cast<const ModelLayout&>(*layout), names);
    shareSource(object);
  } else {
    copyProperties(*object, names);
  }
}

CQoriBaseObject::CQoriBaseObject(const QORSmrPtr<IQoriObject>& object, const QORSmrPtr<ModelRestriction>& restriction)
    : _source(object), _restriction(restriction) {
  shareSource(object);
}

CQoriBaseObject::CQoriBaseObject(const QORString& nameSpace, const QORString& className, const QORString& keyName,
                                 const QORSmrPtr<PropertyList>& properties) {
  std::unique_ptr<Own> own(new Own{{}, nameSpace, className, keyName, {}, {}});
  if (!properties.IsNull()) {
    own->properties.reserve(properties->entries());
    QORValSlistIterator<QORSmrPtr<IQoriProperty>> it(*properties);
    while (++it) {
      if (!it.key().IsNull()) own->properties.push_back(it.key());
    }
    own->makeIndex();
  }
  _own = own.release();
}

CQoriBaseObject::~CQoriBaseObject() { delete _own; }

void CQoriBaseObject::shareSource(const QORSmrPtr<IQoriObject>& object) {
  const IQoriObject& source = *object;
  _identity = source.getIdentity();
  _positions = _restriction->positions().data();
  if (typeid(source) == typeid(CQoriBaseObject)) {
    const CQoriBaseObject& copy = static_cast<const CQoriBaseObject&>(source);
    // The steps compose when the first copy reads its source through all earlier steps.
    if (copy._positions == copy._restriction->rootPositions().data()) {
      _source = copy._source;
      _slots = copy._slots;
      _positions = _restriction->rootPositions().data();
    }
  } else if (typeid(source) == typeid(ModelInstance) && _positions == _restriction->rootPositions().data()) {
    _slots = static_cast<const ModelInstance&>(source).slots();
  }
}

void CQoriBaseObject::copyProperties(const IQoriObject& object, const Names& names) {
  std::unique_ptr<Own> own = std::make_unique<Own>();
  for (QORuint32 i = 0; !names.IsNull() && i < object.getPropertyCount(); ++i) {
    QORSmrPtr<IQoriProperty> property = object.getPropertyAt(i);
    if (isListed(*names, property->getName())) own->properties.push_back(std::move(property));
  }
  own->makeIndex();
  _own = own.release();
}

const QORString& CQoriBaseObject::getClassName() const noexcept {
  return _source.IsNull() ? _own->className : _source->getClassName();
}

void CQoriBaseObject::appendPath(std::string& text) const {
  return _source.IsNull() ? IQoriObject::appendPath(text) : _source->appendPath(text);
}

QORuint32 CQoriBaseObject::getPathHash() const {
  return _source.IsNull() ? IQoriObject::getPathHash() : _source->getPathHash();
}

QORSmrPtr<IQoriInstanceName> CQoriBaseObject::getInstanceName() const {
  if (!_source.IsNull()) return _source->getInstanceName();
  return _own->name.get([this] { return _own->makeName(); });
}

QORString CQoriBaseObject::getNameSpace() const { return _source.IsNull() ? _own->nameSpace : _source->getNameSpace(); }

QORuint32 CQoriBaseObject::getPropertyCount() const noexcept {
  return _own != nullptr ? static_cast<QORuint32>(_own->properties.size()) : _restriction->layout().getPropertyCount();
}

QORSmrPtr<IQoriProperty> CQoriBaseObject::getPropertyAt(QORuint32 position) const {
  return _own != nullptr ? _own->properties[position] : _source->getPropertyAt(_positions[position]);
}

QORSmrPtr<IQoriProperty> CQoriBaseObject::getProperty(const QORString& name, bool /*includeInherited*/) const {
  if (_own != nullptr) {
    const QORSmrPtr<IQoriProperty>* const found = _own->find(name);
    return found == nullptr ? QORSmrPtr<IQoriProperty>() : *found;
  }
  const QORsint32 position = _restriction->layout().getPosition(name);
  return position < 0 ? QORSmrPtr<IQoriProperty>() : getPropertyAt(static_cast<QORuint32>(position));
}

const IQoriLayout* CQoriBaseObject::getLayout() const noexcept {
  return _own != nullptr ? nullptr : &_restriction->layout();
}

QoriScalar CQoriBaseObject::getScalarAt(QORuint32 position) const noexcept {
  if (_slots != nullptr) return _slots[_positions[position]].scalar();
  if (_own == nullptr) return _source->getScalarAt(_positions[position]);
  const QORSmrPtr<IQoriValue>& value = _own->properties[position]->getValue();
  return value.IsNull() ? QoriScalar() : value->scalar();
}

QoriCells CQoriBaseObject::getCells() const noexcept {
  if (_own != nullptr) return {};
  return {&_restriction.Get()->layout(), reinterpret_cast<const char*>(_slots)};
}

QORSmrPtr<IQoriValue> CQoriBaseObject::getValueAt(QORuint32 position) const {
  return _own != nullptr ? _own->properties[position]->getValue() : _source->getValueAt(_positions[position]);
}

void CQoriBaseObject::Own::makeIndex() {
  constexpr std::size_t kFew = 16;
  if (properties.size() <= kFew) return;
  index.reserve(properties.size());
  for (std::size_t place = 0; place < properties.size(); ++place) {
    index.emplace_back(model::foldedHash(properties[place]->getName()), place);
  }
  std::sort(index.begin(), index.end());
}

const QORSmrPtr<IQoriProperty>* CQoriBaseObject::Own::find(const QORString& propertyName) const noexcept {
  if (!index.empty()) {
    const std::size_t hash = model::foldedHash(propertyName);
    auto entry = std::lower_bound(index.begin(), index.end(), std::pair(hash, std::size_t{0}));
    for (; entry != index.end() && entry->first == hash; ++entry) {
      const QORSmrPtr<IQoriProperty>& property = properties[entry->second];
      if (property->getName().isEqualCaseInsensitive(propertyName)) return &property;
    }
    return nullptr;
  }
  for (const QORSmrPtr<IQoriProperty>& property : properties) {
    if (property->getName().isEqualCaseInsensitive(propertyName)) return &property;
  }
  return nullptr;
}

QORSmrPtr<IQoriInstanceName> CQoriBaseObject::Own::makeName() const {
  const QORSmrPtr<IQoriProperty>* const key = find(keyName);
  if (key == nullptr || (*key)->getValue().IsNull()) return {};
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  keys->append(*key);
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(QORString::emptyString(), nameSpace));
  return QORSmrPtr<IQoriInstanceName>::Make<CQoriInstanceName>(className, keys, path);
}
