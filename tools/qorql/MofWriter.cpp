// Results as MOF text that loads again.
// SPDX-License-Identifier: Apache-2.0
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

void adopt(ResultColumn& column, const IQoriValue& value) {
  column.typeName = value.getType()->getName().view();
  column.isArray = value.isArray();
}

bool takes(const std::vector<ResultColumn>& columns, const ResultRow& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].IsNull()) continue;
    ResultColumn own;
    adopt(own, *row[i]);
    if (own.typeName != columns[i].typeName || own.isArray != columns[i].isArray) return false;
  }
  return true;
}

QORSmrPtr<IQoriProperty> property(const std::string& name, const QORSmrPtr<IQoriValue>& value) {
  return QORSmrPtr<IQoriProperty>(new CQoriProperty(QORString(name), value, true));
}

}  // namespace

void MofWriter::begin(const ResultHeading& heading) {
  if (!_isFirst) _out << '\n';
  _isFirst = false;
  _columns = heading.columns;
  _keyColumns.clear();
  _resultClasses.clear();
  _rowCount = 0;
}

std::optional<std::vector<std::size_t>> MofWriter::keyColumnsOf(const QORString& className) const {
  std::vector<std::size_t> columns;
  for (const std::string& key : _keysOf(className)) {
    const auto found = std::find_if(_columns.begin(), _columns.end(), [&](const ResultColumn& column) {
      return QORString::equalIgnoringCase(column.name, key);
    });
    if (found == _columns.end()) return std::nullopt;
    columns.push_back(static_cast<std::size_t>(found - _columns.begin()));
  }
  if (columns.empty()) return std::nullopt;
  return columns;
}

// A join may show an object more than once, but a path loads only once.
bool MofWriter::isNewInstance(const ResultRow& row) {
  if (row.className().isEmpty()) return false;
  auto known = _keyColumns.find(row.className());
  if (known == _keyColumns.end()) {
    known = _keyColumns.emplace(row.className(), keyColumnsOf(row.className())).first;
  }
  if (!known->second) return false;
  std::string path = folded(std::string(row.className().view()));
  for (const std::size_t column : *known->second) {
    if (row[column].IsNull()) return false;
    const QORString value(row[column]->toString());
    path.append("\n").append(folded(_columns[column].name)).append("=");
    path.append(std::to_string(value.length())).append(":").append(value.view());
  }
  return _writtenPaths.insert(std::move(path)).second;
}

const MofWriter::ResultClass& MofWriter::resultClassFor(const ResultRow& row) {
  for (const ResultClass& known : _resultClasses) {
    if (takes(known.columns, row)) return known;
  }
  ++_resultClassCount;
  const std::string number = _resultClassCount == 1 ? "" : "_" + std::to_string(_resultClassCount);
  ResultClass& declared = _resultClasses.emplace_back(ResultClass{"QueryResult" + number, _columns});
  nameProperties(declared.columns);
  _out << "class " << declared.name << " {\n  [Key] uint64 " << kRowKey << ";\n";
  for (std::size_t i = 0; i < row.size(); ++i) {
    ResultColumn& column = declared.columns[i];
    if (!row[i].IsNull()) adopt(column, *row[i]);
    _out << "  " << (isText(column) ? "string" : column.typeName) << ' ' << column.name << (column.isArray ? "[]" : "")
         << ";\n";
  }
  _out << "};\n";
  return declared;
}

void MofWriter::writeInstance(const ResultRow& row) {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!row[i].IsNull()) properties->append(property(_columns[i].name, row[i]));
  }
  _out << EmbeddedObjectManager::instanceMof(CQoriBaseObject(QORString(), row.className(), QORString(), properties));
}

void MofWriter::writeResult(const ResultRow& row) {
  const ResultClass& result = resultClassFor(row);
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList());
  properties->append(property(kRowKey, new CQoriValue(_rowCount, CQoriType::uint64)));
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].IsNull()) continue;
    const bool isShownAsText = isText(result.columns[i]) && !row[i]->isArray();
    properties->append(property(result.columns[i].name, isShownAsText ? new CQoriValue(row[i]->toString()) : row[i]));
  }
  _out << EmbeddedObjectManager::instanceMof(
      CQoriBaseObject(QORString(), QORString(result.name), QORString(), properties));
}

void MofWriter::writeRow(const ResultRow& row) {
  ++_rowCount;
  if (isNewInstance(row)) {
    writeInstance(row);
  } else {
    writeResult(row);
  }
}

void MofWriter::end() {}
