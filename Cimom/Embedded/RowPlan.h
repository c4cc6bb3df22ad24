// How rows that give the same properties become instances of one class.
// Tested by tests/unit/Embedded/InstanceRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_ROWPLAN_H
#define QORQL_EMBEDDED_ROWPLAN_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Embedded/NameSpace.h"

namespace embedded {

// Names and types are looked up once. Arrays that occur again are shared, and texts lie one behind the
// other in slabs. BORROWS namespace and class. Belongs to one load.
class RowPlan {
 public:
  RowPlan(NameSpace& space, ClassEntry& entry) : _space(space), _entry(entry) {}
  RowPlan(const RowPlan&) = delete;
  RowPlan& operator=(const RowPlan&) = delete;

  // False when rows of these properties cannot be read so: one is unknown, given twice, a reference or an embedded
  // object, or a key stays without value.
  bool readColumns(const std::vector<QORString>& propertyNames);
  // Null when a cell is not of its property's type, or a key without value.
  QORSmrPtr<IQoriObject> makeObject(std::string_view row, QORuint64 identity);

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
  bool fill(ModelSlot* slots, std::string_view row);
  bool fillSlot(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot& slot);
  bool fillArray(const Column& column, const CimCell& cell, CimRowReader& reader, ModelSlot& slot);
  QORSmrPtr<IQoriValue> makeArray(const Column& column, const CimCell& cell, CimRowReader& reader);

  NameSpace& _space;
  ClassEntry& _entry;
  std::vector<Column> _columns;
  std::vector<Default> _defaults;   // of the properties that rows do not give
  std::vector<KnownArray> _arrays;  // the last one of each hash of column and cells
  QORSlabs _texts;
  std::string _text;
};

}  // namespace embedded

#endif
