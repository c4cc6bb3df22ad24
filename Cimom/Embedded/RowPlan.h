// How rows that give the same properties become instances of one class.
// Tested by tests/unit/Embedded/InstanceRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_ROWPLAN_H
#define QORQL_EMBEDDED_ROWPLAN_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Embedded/InstanceTable.h"
#include "Cimom/Model/ModelSlot.h"

namespace embedded {

struct NameSpace;

// Names and types are looked up once. Arrays that occur again are shared, and texts lie one behind the
// other in slabs. BORROWS namespace and class, but reading rows needs neither. One thread at a time.
class RowPlan {
 public:
  RowPlan(NameSpace& space, ClassEntry& entry)
      : _space(space), _entry(entry), _shape(entry.model().shape()), _checksDateTimes(!entry.isPending) {}
  RowPlan(const RowPlan&) = delete;
  RowPlan& operator=(const RowPlan&) = delete;

  // False when rows of these properties cannot be read so: one is unknown, given twice, a reference or an embedded
  // object, or a key stays without value.
  bool readColumns(const std::vector<QORString>& propertyNames);
  // Null when a cell is not of its property's type, or a key without value.
  QORSmrPtr<IQoriObject> makeObject(std::string_view row, QORuint64 identity);
  // Whether makeObject() would make one.
  bool isSound(std::string_view row) {
    return fill([](QORuint32) { return nullptr; }, row);
  }
  // What the class has at the positions that `slotAt` gives a slot for, an empty one; null where none is wanted. False
  // when the row is not sound.
  template <class SlotAt>
  bool fill(const SlotAt& slotAt, std::string_view row) {
    CimRowReader reader(row);
    CimCell cell;
    for (const Column& column : _columns) {
      if (!reader.next(cell) || !fillSlot(column, cell, reader, slotAt(column.position))) return false;
    }
    for (const Default& missing : _defaults) {
      ModelSlot* const slot = slotAt(missing.position);
      if (slot != nullptr) slot->set(missing.value, _shape->layout->getType(missing.position));
    }
    return reader.isAtEnd();
  }

  const QORSmrPtr<ModelShape>& shape() const noexcept { return _shape; }

  NameSpace& nameSpace() const noexcept { return _space; }
  ClassEntry& entry() const noexcept { return _entry; }
  // A text to compose paths in, emptied.
  std::string& emptyText() noexcept {
    _text.clear();
    return _text;
  }

 private:
  struct Column {
    QORuint32 position;
    CQoriType::Code code;
    bool isKey;
    bool isArray;
    QORsint32 arraySize;          // -1: any
    QORSmrPtr<IQoriType> scalar;  // of the elements of an array
  };
  struct Default {
    QORuint32 position;
    QORSmrPtr<IQoriValue> value;
  };

  struct KnownArray {
    std::string cells;
    QORuint32 position = 0;
    QORSmrPtr<IQoriValue> value;
  };

  bool addColumn(QORuint32 position);
  KnownArray& placeOf(const Column& column, std::string_view cells);
  // A null slot takes nothing: the cell is only looked at.
  bool fillSlot(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot* slot);
  bool fillArray(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot* slot);
  bool isElement(const Column& column, const CimCell& element) const noexcept;
  // Whether the property takes the text.
  bool isTextOf(const Column& column, std::string_view text) const noexcept;
  // That of the cells from the reader's place to `end`, which are sound.
  QORSmrPtr<IQoriValue> arrayOf(const Column& column, const CimCell& cell, CimRowReader& reader, const char* end);
  static QORSmrPtr<IQoriValue> makeArray(const Column& column, const CimCell& cell, CimRowReader reader);

  NameSpace& _space;
  ClassEntry& _entry;
  const QORSmrPtr<ModelShape> _shape;
  // Of a class that the same load declares, whoever made the rows knew what is a datetime and looked at it. Others may
  // have been declared anew since the rows were made.
  const bool _checksDateTimes;
  std::vector<Column> _columns;
  std::vector<Default> _defaults;   // of the properties that rows do not give
  std::vector<KnownArray> _arrays;  // the last one of each hash of column and cells
  QORSlabs _texts;
  std::string _text;
};

}  // namespace embedded

#endif
