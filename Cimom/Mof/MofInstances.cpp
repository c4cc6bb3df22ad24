// One instance at a time; a fault in one does not stop the next.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofInstances.h"

#include "Cimom/Mof/MofDateTime.h"
#include "Cimom/Mof/MofParser.h"

namespace {

// Whether every datetime of the row is one. REQUIRES a row that a reader made.
bool hasSoundDateTimes(std::string_view cells, const std::vector<bool>& isDateTime) {
  CimRowReader reader(cells);
  CimCell cell;
  for (const bool isChecked : isDateTime) {
    reader.next(cell);
    const QORuint32 elements = cell.kind == CimCellKind::Array ? cell.count : 0;
    const bool isText = cell.kind == CimCellKind::Text;
    if (isChecked && isText && faultOfMofDateTime(cell.text) != nullptr) return false;
    for (QORuint32 i = 0; i < elements; ++i) {
      reader.next(cell);
      if (isChecked && cell.kind == CimCellKind::Text && faultOfMofDateTime(cell.text) != nullptr) return false;
    }
  }
  return true;
}

}  // namespace

void MofInstances::defineAliases() {
  for (const MofInstanceEntry& instance : _document.instances) {
    if (instance.syntax != nullptr) _values.defineAlias(*instance.syntax);
  }
}

void MofInstances::createAll() {
  _ways.resize(_document.rows.forms().size());
  for (_current = 0; _current < _document.instances.size(); ++_current) {
    if (_report.isFull()) return;
    const MofInstanceEntry& instance = _document.instances[_current];
    if (instance.syntax != nullptr) {
      createOrReport(*instance.syntax);
    } else if (createRow(instance.row)) {
      _created.push_back(_current);
    } else {
      createOrReport(*readAgain(instance.row));
    }
  }
}

bool MofInstances::createRow(const MofRow& row) {
  _document.rows.releaseBefore(row.cells);
  RowWay& way = _ways[row.form];
  if (!way.isKnown) way = findWay(_document.rows.forms()[row.form]);
  if (way.maker == nullptr) return false;
  if (!way.isDateTime.empty() && !hasSoundDateTimes(row.cells, way.isDateTime)) return false;
  return way.maker->create(row.cells);
}

MofInstances::RowWay MofInstances::findWay(const MofRowForm& form) {
  RowWay way;
  way.isKnown = true;
  way.maker = _sink.instanceMaker(form.nameSpace, form.className, form.names);
  if (way.maker == nullptr) return way;
  bool hasDateTimes = false;
  for (const QORString& name : form.names) {
    CimPropertyDeclaration declared;
    _sink.describeProperty(form.nameSpace, form.className, name, declared);
    way.isDateTime.push_back(findMofType(declared.type->getName())->kind == MofType::Kind::DateTime);
    hasDateTimes = hasDateTimes || way.isDateTime.back();
  }
  if (!hasDateTimes) way.isDateTime.clear();
  return way;
}

std::unique_ptr<MofInstanceSyntax> MofInstances::readAgain(const MofRow& row) {
  MofParser::Context context;
  context.nameSpace = _document.rows.forms()[row.form].nameSpace;
  context.scope = row.scope;
  return MofParser(*row.source, _document, _report, context).readInstanceAt(row.offset);
}

void MofInstances::createOrReport(const MofInstanceSyntax& instance) {
  try {
    create(instance);
  } catch (const MofFault& fault) {
    _report.add(fault);
  } catch (const QoriBaseException& refusal) {
    _report.add(instance.className.at, refusal.what() + describeEarlier(instance));
  }
}

void MofInstances::create(const MofInstanceSyntax& instance) {
  const MofClassShape& shape = _values.shapeOf(instance);
  CimInstanceDeclaration declaration;
  if (!_values.declare(instance, shape, 0, declaration)) return;
  if (!_values.checkKeys(instance, declaration, shape)) return;
  _values.resolveAlias(instance, _sink.createInstance(instance.nameSpace, declaration));
  _created.push_back(_current);
}

// Where the instance of the same path stands; empty when this load has created none.
std::string MofInstances::describeEarlier(const MofInstanceSyntax& instance) {
  for (; _indexed < _created.size(); ++_indexed) {
    const MofInstanceEntry& created = _document.instances[_created[_indexed]];
    indexPath(created.syntax != nullptr ? *created.syntax : *readAgain(created.row));
  }
  const std::string path = _values.pathOf(instance);
  const auto earlier = _byPath.find(path);
  const bool isKnown = !path.empty() && earlier != _byPath.end();
  return isKnown ? ", declared at " + describeMofPlace(earlier->second) : "";
}

void MofInstances::indexPath(const MofInstanceSyntax& instance) {
  _byPath.try_emplace(_values.pathOf(instance), instance.className.at);
}

std::vector<QORSmrPtr<IQoriObject>> MofInstances::makeObjects() {
  std::vector<QORSmrPtr<IQoriObject>> objects;
  objects.reserve(_document.instances.size());
  for (const MofInstanceEntry& entry : _document.instances) {
    const MofInstanceSyntax& instance = *entry.syntax;
    if (_report.isFull()) break;
    try {
      CimInstanceDeclaration declaration;
      if (!_values.declare(instance, _values.shapeOf(instance), 0, declaration)) continue;
      objects.push_back(_sink.makeObject(instance.nameSpace, declaration));
    } catch (const MofFault& fault) {
      _report.add(fault);
    } catch (const QoriBaseException& refusal) {
      _report.add(instance.className.at, refusal.what());
    }
  }
  return objects;
}
