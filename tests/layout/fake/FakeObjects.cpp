// Objects, names, properties, values and types of the plainest kind.
// SPDX-License-Identifier: Apache-2.0
#include "tests/layout/fake/FakeObjects.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <stdexcept>

namespace {

QORString text(const std::string& plain) { return QORString(plain.c_str()); }

class FakeType : public IQoriType {
 public:
  FakeType(const char* name, bool isArray) : _name(name), _isArray(isArray) {}
  const QORString& getName() const noexcept override { return _name; }
  bool isArray() const noexcept override { return _isArray; }

 private:
  QORString _name;
  bool _isArray;
};

class FakeNameSpacePath : public IQoriNameSpacePath {
 public:
  explicit FakeNameSpacePath(const std::string& nameSpace) : _nameSpace(text(nameSpace)) {}
  const QORString& getNameSpace() const noexcept override { return _nameSpace; }

 private:
  QORString _nameSpace;
};

class FakeName : public IQoriInstanceName {
 public:
  // Of `namespace:Class.keys`.
  explicit FakeName(const std::string& path) : _path(text(path)) {
    const std::size_t colon = path.find(':');
    _className = text(path.substr(colon + 1, path.find('.', colon) - colon - 1));
    _nameSpacePath = new FakeNameSpacePath(path.substr(0, colon));
  }
  const QORString& getClassName() const noexcept override { return _className; }
  const QORSmrPtr<IQoriNameSpacePath>& getNameSpacePath() const noexcept override { return _nameSpacePath; }
  QORString toString() const override { return _path; }

 private:
  QORString _path;
  QORString _className;
  QORSmrPtr<IQoriNameSpacePath> _nameSpacePath;
};

// A value that keeps its text, and reads it whenever it is asked for a scalar.
class FakeValue : public IQoriValue {
 public:
  FakeValue(const char* type, const std::string& written) : _type(new FakeType(type, false)), _written(written) {}
  FakeValue(const QORSmrPtr<List>& elements, const char* type) : _type(new FakeType(type, true)), _elements(elements) {}
  explicit FakeValue(const QORSmrPtr<IQoriObject>& object) : _type(new FakeType("object", false)), _object(object) {}
  explicit FakeValue(const QORSmrPtr<IQoriInstanceName>& name)
      : _type(new FakeType("reference", false)), _written(name->toString().c_str()), _reference(name) {}

  const QORSmrPtr<IQoriType>& getType() const noexcept override { return _type; }
  QORString toString() const override { return text(_elements.IsNull() ? _written : joined()); }
  bool isArray() const noexcept override { return !_elements.IsNull(); }
  QORSmrPtr<List> getArray() const override { return _elements; }
  QORSmrPtr<IQoriInstanceName> getReference() const override { return _reference; }
  QORSmrPtr<IQoriObject> getObject() const override { return _object; }
  QORsint8 getSint8() const override { return static_cast<QORsint8>(signedNumber()); }
  QORuint8 getUint8() const override { return static_cast<QORuint8>(unsignedNumber()); }
  QORsint16 getSint16() const override { return static_cast<QORsint16>(signedNumber()); }
  QORuint16 getUint16() const override { return static_cast<QORuint16>(unsignedNumber()); }
  QORsint32 getSint32() const override { return static_cast<QORsint32>(signedNumber()); }
  QORuint32 getUint32() const override { return static_cast<QORuint32>(unsignedNumber()); }
  QORsint64 getSint64() const override { return signedNumber(); }
  QORuint64 getUint64() const override { return unsignedNumber(); }
  QORreal64 getReal64() const override { return std::strtod(_written.c_str(), nullptr); }
  char16_t getChar16() const override { return static_cast<char16_t>(_written.at(0)); }
  bool getBoolean() const noexcept override { return _written == "TRUE"; }

 private:
  QORsint64 signedNumber() const { return std::strtoll(_written.c_str(), nullptr, 10); }
  QORuint64 unsignedNumber() const { return std::strtoull(_written.c_str(), nullptr, 10); }
  std::string joined() const {
    std::string all;
    for (QORuint32 i = 0; i < _elements->entries(); ++i) {
      all += (i == 0 ? "" : ",") + std::string(_elements->at(i)->toString().view());
    }
    return all;
  }

  QORSmrPtr<IQoriType> _type;
  std::string _written;
  QORSmrPtr<List> _elements;
  QORSmrPtr<IQoriInstanceName> _reference;
  QORSmrPtr<IQoriObject> _object;
};

class FakeProperty : public IQoriProperty {
 public:
  FakeProperty(const std::string& name, const QORSmrPtr<IQoriValue>& value)
      : _name(text(name)),
        _type(value.IsNull() ? QORSmrPtr<IQoriType>(new FakeType("string", false)) : value->getType()),
        _value(value) {}
  const QORString& getName() const noexcept override { return _name; }
  const QORSmrPtr<IQoriType>& getType() const noexcept override { return _type; }
  const QORSmrPtr<IQoriValue>& getValue() const noexcept override { return _value; }

 private:
  QORString _name;
  QORSmrPtr<IQoriType> _type;
  QORSmrPtr<IQoriValue> _value;
};

// Makes its properties anew whenever somebody asks: nothing that it gives may be
// taken to live as long as the object.
class FakeObject : public IQoriObject {
 public:
  using Property = std::pair<std::string, QORSmrPtr<IQoriValue>>;

  FakeObject(const std::string& className, const std::string& path, std::vector<Property> properties)
      : _className(text(className)), _path(path), _properties(std::move(properties)) {}

  const QORString& getClassName() const noexcept override { return _className; }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return new FakeName(_path); }
  QORuint32 getPropertyCount() const noexcept override { return static_cast<QORuint32>(_properties.size()); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
    return new FakeProperty(_properties.at(position).first, _properties[position].second);
  }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool) const override {
    for (const auto& [known, value] : _properties) {
      if (text(known).isEqualCaseInsensitive(name)) return new FakeProperty(known, value);
    }
    return {};
  }

 private:
  QORString _className;
  std::string _path;
  std::vector<Property> _properties;
};

bool isDigits(const std::string& written, std::size_t from) {
  return from < written.size() && std::all_of(written.begin() + static_cast<std::ptrdiff_t>(from), written.end(),
                                              [](unsigned char c) { return std::isdigit(c) != 0; });
}

bool isReal(const std::string& written) {
  const std::size_t dot = written.find('.');
  const std::size_t start = written.starts_with("-") ? 1 : 0;
  return dot != std::string::npos && dot > start && isDigits(written.substr(0, dot), start) &&
         isDigits(written, dot + 1);
}

const char* typeOf(const std::string& written) {
  if (isDigits(written, 0)) return "uint64";
  if (written.starts_with("-") && isDigits(written, 1)) return "sint32";
  if (written.size() == 25 && written[14] == '.') return "datetime";
  if (isReal(written)) return "real64";
  return written == "TRUE" || written == "FALSE" ? "boolean" : "string";
}

QORSmrPtr<IQoriValue> arrayOf(const std::string& written) {
  std::vector<std::string> parts;
  for (std::size_t start = 1; start + 1 < written.size();) {
    const std::size_t end = std::min(written.find(',', start), written.size() - 1);
    parts.push_back(written.substr(start, end - start));
    start = end + 1;
  }
  const char* type = parts.empty() ? "string" : typeOf(parts.front());
  for (const std::string& part : parts) type = std::string(typeOf(part)) == type ? type : "string";
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
  for (const std::string& part : parts) elements->append(QORSmrPtr<IQoriValue>(new FakeValue(type, part)));
  return new FakeValue(elements, type);
}

QORSmrPtr<IQoriValue> valueOf(const std::string& written) {
  if (written.empty()) return {};
  if (written.starts_with("{")) return arrayOf(written);
  if (written.starts_with("->")) {
    return new FakeValue(QORSmrPtr<IQoriInstanceName>(new FakeName(written.substr(2))));
  }
  return new FakeValue(typeOf(written), written);
}

std::string keyText(const std::string& written) {
  return std::string(typeOf(written)) == "string" ? "\"" + written + "\"" : written;
}

}  // namespace

QORSmrPtr<IQoriObject> makeFakeObject(const std::string& nameSpace, const std::string& className,
                                      const FakeProperties& properties) {
  return makeFakeObject(nameSpace, className, properties, {});
}

QORSmrPtr<IQoriObject> makeFakeObject(const std::string& nameSpace, const std::string& className,
                                      const FakeProperties& properties, const std::vector<FakeEmbedded>& embedded) {
  std::vector<FakeObject::Property> values;
  for (const auto& [name, written] : properties) values.emplace_back(name, valueOf(written));
  for (const auto& [name, object] : embedded) values.emplace_back(name, QORSmrPtr<IQoriValue>(new FakeValue(object)));
  const std::string key = properties.front().first + "=" + keyText(properties.front().second);
  return new FakeObject(className, nameSpace + ":" + className + "." + key, std::move(values));
}
