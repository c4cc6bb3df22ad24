// Results as MOF text that loads again.
#include "MofWriter.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <set>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr const char* kRowKey = "Row";

bool isText(const ResultColumn& column) {
  return column.typeName.empty() || column.typeName == "reference" || column.typeName == "object";
}

std::string folded(std::string name) {
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name;
}

// Names that a property may have, each once.
void nameProperties(std::vector<ResultColumn>& columns) {
  std::set<std::string> used{folded(kRowKey)};
  for (ResultColumn& column : columns) {
    std::string name = column.name;
    for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    if (name.empty() || std::isdigit(static_cast<unsigned char>(name.front())) != 0) name.insert(0, 1, '_');
    column.name = name;
    for (int number = 2; !used.insert(folded(column.name)).second; ++number) {
      column.name = name + "_" + std::to_string(number);
    }
  }
}

QORSmrPtr<IQoriProperty> property(const std::string& name, const QORSmrPtr<IQoriValue>& value) {
  return QORSmrPtr<IQoriProperty>(new CQoriProperty(QORString(name), value, true));
}

}  // namespace

void MofWriter::begin(const ResultHeading& heading) {
  if (!_isFirst) _out << '\n';
  _isFirst = false;
  _columns = heading.columns;
  _className.clear();
  _rowCount = 0;
}

void MofWriter::declareResult() {
  ++_resultCount;
  _className = _resultCount == 1 ? "QueryResult" : "QueryResult_" + std::to_string(_resultCount);
  nameProperties(_columns);
  _out << "class " << _className << " {\n  [Key] uint64 " << kRowKey << ";\n";
  for (const ResultColumn& column : _columns) {
    _out << "  " << (isText(column) ? "string" : column.typeName) << ' ' << column.name << (column.isArray ? "[]" : "")
         << ";\n";
  }
  _out << "};\n";
}

void MofWriter::writeInstance(const ResultRow& row) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  const bool isOwn = row.className().isEmpty();
  if (isOwn) properties->append(property(kRowKey, new CQoriValue(_rowCount, CQoriType::uint64)));
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].IsNull()) continue;
    const bool isTextColumn = isOwn && isText(_columns[i]) && !row[i]->isArray();
    properties->append(property(_columns[i].name, isTextColumn ? new CQoriValue(row[i]->toString()) : row[i]));
  }
  const QORString className = isOwn ? QORString(_className) : row.className();
  _out << EmbeddedObjectManager::instanceMof(CQoriBaseObject(QORString(), className, QORString(), properties));
}

void MofWriter::writeRow(const ResultRow& row) {
  ++_rowCount;
  if (row.className().isEmpty() && _className.empty()) declareResult();
  writeInstance(row);
}

void MofWriter::end() {}
