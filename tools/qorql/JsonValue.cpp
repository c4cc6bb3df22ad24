// CIM values and objects as JSON text.
// SPDX-License-Identifier: Apache-2.0
#include "JsonValue.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace {

// An embedded object that lies deeper than this is printed as its text.
constexpr int kMaximumDepth = 32;

class JsonText {
 public:
  JsonText(std::string& out, JsonObjects objects) : _out(out), _objects(objects) {}

  void appendValue(const IQoriValue* value, int depth) {
    if (value == nullptr) {
      _out += "null";
      return;
    }
    const QoriScalar scalar = value->scalar();
    if (scalar.kind == QoriScalarKind::Boolean) {
      _out += scalar.b ? "true" : "false";
    } else if (scalar.kind == QoriScalarKind::Real && !std::isfinite(scalar.r)) {
      _out += "null";
    } else if (scalar.isNumber()) {
      _out += value->toString().view();
    } else if (scalar.kind == QoriScalarKind::Complex) {
      appendComplex(*value, depth);
    } else {
      _out += jsonText(value->toString().view());
    }
  }

 private:
  void appendComplex(const IQoriValue& value, int depth) {
    if (value.isArray()) return appendArray(value, depth);
    const QORSmrPtr<IQoriObject> object = value.getObject();
    if (!object.IsNull() && depth < kMaximumDepth) return appendObject(*object, depth);
    _out += jsonText(value.toString().view());
  }

  void appendArray(const IQoriValue& value, int depth) {
    _out += '[';
    bool isFirst = true;
    const auto elements = value.getArray();
    QORValSlistIterator<QORSmrPtr<IQoriValue>> element(*elements);
    while (element()) {
      if (!isFirst) _out += ", ";
      isFirst = false;
      appendValue(element.key().Get(), depth + 1);
    }
    _out += ']';
  }

  void appendObject(const IQoriObject& object, int depth) {
    _out += '{';
    bool isFirst = true;
    if (_objects == JsonObjects::WithClass) {
      _out += "\"class\": " + jsonText(object.getClassName().view());
      isFirst = false;
    }
    for (QORuint32 i = 0; i < object.getPropertyCount(); ++i) {
      const QORSmrPtr<IQoriProperty> property = object.getPropertyAt(i);
      if (!isFirst) _out += ", ";
      isFirst = false;
      _out += jsonText(property->getName().view()) + ": ";
      appendValue(property->getValue().Get(), depth + 1);
    }
    _out += '}';
  }

  std::string& _out;
  JsonObjects _objects;
};

}  // namespace

std::string jsonText(std::string_view text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendJson(std::string& out, const IQoriValue* value, JsonObjects objects) {
  JsonText(out, objects).appendValue(value, 0);
}
