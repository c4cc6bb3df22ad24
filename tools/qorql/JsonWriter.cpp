// Results as JSON.
#include "JsonWriter.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>
#include <set>

#include "cimom/IQoriObject.h"

namespace {

// An embedded object that lies deeper than this is printed as its text.
constexpr int kMaximumDepth = 32;

// Bytes that are no UTF-8 become U+FFFD.
std::string jsonText(std::string_view text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendValue(std::string& out, const IQoriValue* value, int depth);

void appendArray(std::string& out, const IQoriValue& value, int depth) {
  out += '[';
  bool isFirst = true;
  const auto elements = value.getArray();
  QORValSlistIterator<QORSmrPtr<IQoriValue>> element(*elements);
  while (element()) {
    if (!isFirst) out += ", ";
    isFirst = false;
    appendValue(out, element.key().Get(), depth + 1);
  }
  out += ']';
}

void appendObject(std::string& out, const IQoriObject& object, int depth) {
  out += '{';
  for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
    const QORSmrPtr<IQoriProperty> property = object.getPropertyAt(i);
    if (i != 0) out += ", ";
    out += jsonText(property->getName().view()) + ": ";
    appendValue(out, property->getValue().Get(), depth + 1);
  }
  out += '}';
}

void appendComplex(std::string& out, const IQoriValue& value, int depth) {
  if (value.isArray()) return appendArray(out, value, depth);
  const QORSmrPtr<IQoriObject> object = value.getObject();
  if (!object.IsNull() && depth < kMaximumDepth) return appendObject(out, *object, depth);
  out += jsonText(value.toString().view());
}

void appendValue(std::string& out, const IQoriValue* value, int depth) {
  if (value == nullptr) {
    out += "null";
    return;
  }
  const QoriScalar scalar = value->scalar();
  if (scalar.kind == QoriScalarKind::Boolean) {
    out += scalar.b ? "true" : "false";
  } else if (scalar.kind == QoriScalarKind::Real && !std::isfinite(scalar.r)) {
    out += "null";
  } else if (scalar.isNumber()) {
    out += value->toString().view();
  } else if (scalar.kind == QoriScalarKind::Complex) {
    appendComplex(out, *value, depth);
  } else {
    out += jsonText(value->toString().view());
  }
}

std::string freeName(const std::string& name, const std::set<std::string>& given, std::set<std::string>& used) {
  if (used.insert(name).second) return name;
  for (int number = 2;; ++number) {
    const std::string numbered = name + "_" + std::to_string(number);
    if (!given.contains(numbered) && used.insert(numbered).second) return numbered;
  }
}

// A different key for each column; quoted, with the colon.
std::vector<std::string> uniqueKeys(const std::vector<ResultColumn>& columns) {
  std::set<std::string> given;
  for (const ResultColumn& column : columns) given.insert(column.name);
  std::set<std::string> used;
  std::vector<std::string> keys;
  for (const ResultColumn& column : columns) keys.push_back(jsonText(freeName(column.name, given, used)) + ": ");
  return keys;
}

}  // namespace

void JsonWriter::begin(const ResultHeading& heading) {
  _keys = uniqueKeys(heading.columns);
  _isFirstRow = true;
  if (_isArray) _out << '[';
}

void JsonWriter::writeRow(const ResultRow& row) {
  _line = !_isArray ? "{" : _isFirstRow ? "\n  {" : ",\n  {";
  _isFirstRow = false;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i != 0) _line += ", ";
    _line += _keys[i];
    appendValue(_line, row[i].Get(), 0);
  }
  _line += _isArray ? "}" : "}\n";
  _out << _line;
}

void JsonWriter::end() {
  if (_isArray) _out << (_isFirstRow ? "]\n" : "\n]\n");
}
