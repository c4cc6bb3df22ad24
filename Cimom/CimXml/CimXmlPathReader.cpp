// The depth of the recursion is the nesting of references in keys.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlPathReader.h"

#include <algorithm>

#include "Cimom/CimXml/CimXmlValues.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

using cimxml::Element;
using cimxml::XmlAttributes;

namespace {

constexpr int kMaximumNesting = 8;

}  // namespace

CimXmlPathReader::CimXmlPathReader(cimxml::XmlPull& xml, const QORString& nameSpace)
    : _xml(xml), _ownPath(new CQoriNameSpacePath(QORString::emptyString(), nameSpace)), _lastPath(_ownPath) {}

bool CimXmlPathReader::isPath(Element element) noexcept {
  switch (element) {
    case Element::InstancePath:
    case Element::LocalInstancePath:
    case Element::InstanceName:
    case Element::ClassPath:
    case Element::LocalClassPath:
    case Element::ClassName:
    case Element::ObjectPath:
      return true;
    default:
      return false;
  }
}

void CimXmlPathReader::expect(Element element) {
  const Element found = _xml.peek();
  if (found == element) return;
  const std::string what = found == Element::None ? "the end of its element" : std::string(_xml.aheadName());
  _xml.raise("found " + what + ", expected " + std::string(elementName(element)));
}

QORSmrPtr<IQoriInstanceName> CimXmlPathReader::readPath() {
  const Element element = _xml.peek();
  if (element == Element::InstanceName) return readInstanceName(_ownPath);
  if (element == Element::ClassName) return readClassPath(_ownPath);
  if (!isPath(element)) expect(Element::InstancePath);
  _xml.open();
  QORSmrPtr<IQoriInstanceName> name;
  if (element == Element::ObjectPath) {
    name = readPath();
  } else {
    const bool isLocal = element == Element::LocalInstancePath || element == Element::LocalClassPath;
    const QORSmrPtr<IQoriNameSpacePath> path =
        isLocal ? pathOf(QORString::emptyString(), readLocalNameSpace()) : readNameSpacePath();
    const bool isInstance = element == Element::InstancePath || element == Element::LocalInstancePath;
    name = isInstance ? readInstanceName(path) : readClassPath(path);
  }
  _xml.close();
  return name;
}

QORSmrPtr<IQoriInstanceName> CimXmlPathReader::readReference() {
  expect(Element::ValueReference);
  if (_nesting == kMaximumNesting) {
    _xml.raise("references nest deeper than " + std::to_string(kMaximumNesting));
  }
  ++_nesting;
  _xml.open();
  QORSmrPtr<IQoriInstanceName> name = readPath();
  _xml.close();
  --_nesting;
  return name;
}

QORString CimXmlPathReader::readLocalNameSpace() {
  expect(Element::LocalNameSpacePath);
  _xml.open();
  _joined.clear();
  while (_xml.peek() != Element::None) {
    expect(Element::NameSpace);
    const bool isNamed = joinNameSpace(_xml.open().get("NAME"));
    _xml.close();
    if (!isNamed) _xml.raise("a NAMESPACE has no NAME");
  }
  _xml.close();
  return QORString(_joined);
}

// A name may hold several levels, and slashes that separate nothing.
bool CimXmlPathReader::joinNameSpace(std::string_view name) {
  const std::size_t before = _joined.size();
  while (!name.empty()) {
    const std::size_t slash = std::min(name.find('/'), name.size());
    if (slash > 0 && !_joined.empty()) _joined += '/';
    _joined += name.substr(0, slash);
    name.remove_prefix(std::min(slash + 1, name.size()));
  }
  return _joined.size() > before;
}

QORString CimXmlPathReader::readClassName() {
  expect(Element::ClassName);
  const QORString name(_xml.open().get("NAME"));
  _xml.close();
  if (name.isEmpty()) _xml.raise("a CLASSNAME has no NAME");
  return name;
}

// The host is optional here: some servers leave it out.
QORSmrPtr<IQoriNameSpacePath> CimXmlPathReader::readNameSpacePath() {
  expect(Element::NameSpacePath);
  _xml.open();
  QORString host = QORString::emptyString();
  if (_xml.peek() == Element::Host) {
    _xml.open();
    host = QORString(_xml.closeText());
  }
  const QORString nameSpace = readLocalNameSpace();
  _xml.close();
  return pathOf(host, nameSpace);
}

QORSmrPtr<IQoriNameSpacePath> CimXmlPathReader::pathOf(const QORString& host, const QORString& nameSpace) {
  if (!(_lastPath->getHost() == host) || !(_lastPath->getNameSpace() == nameSpace)) {
    _lastPath = QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath(host, nameSpace));
  }
  return _lastPath;
}

QORSmrPtr<IQoriInstanceName> CimXmlPathReader::readClassPath(const QORSmrPtr<IQoriNameSpacePath>& path) {
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(readClassName(), {}, path));
}

// Keys come as bindings; the old form with one bare key gives a key without name.
QORSmrPtr<IQoriInstanceName> CimXmlPathReader::readInstanceName(const QORSmrPtr<IQoriNameSpacePath>& path) {
  expect(Element::InstanceName);
  const QORString className(_xml.open().get("CLASSNAME"));
  if (className.isEmpty()) _xml.raise("an INSTANCENAME has no CLASSNAME");
  QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  while (_xml.peek() != Element::None) {
    if (_xml.peek() != Element::KeyBinding) {
      keys->append(readKey(QORString::emptyString()));
      continue;
    }
    const QORString name(_xml.open().get("NAME"));
    keys->append(readKey(name));
    _xml.close();
  }
  _xml.close();
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(className, keys, path));
}

QORSmrPtr<IQoriProperty> CimXmlPathReader::readKey(const QORString& name) {
  const IQoriValue::Pointer value =
      _xml.peek() == Element::ValueReference ? IQoriValue::Pointer(new CQoriValue(readReference())) : readKeyValue();
  return QORSmrPtr<IQoriProperty>(new CQoriProperty(name, value, false));
}

IQoriValue::Pointer CimXmlPathReader::readKeyValue() {
  expect(Element::KeyValue);
  const XmlAttributes attributes = _xml.open();
  const std::string_view* const typeName = attributes.find("TYPE");
  const CQoriType::Code type = typeName == nullptr ? CQoriType::Code::Unknown : cimxml::typeOf(*typeName);
  // Reading the text invalidates the attributes.
  const std::string valueType(attributes.get("VALUETYPE"));
  const std::string_view text = _xml.closeText();
  if (text.size() > kMaximumKey) _xml.raise("a key is longer than " + std::to_string(kMaximumKey) + " bytes");
  if (type >= CQoriType::Code::Reference) return cimxml::readKeyValue(text, valueType);
  IQoriValue::Pointer value;
  if (cimxml::readValue(text, type, value)) return value;
  _xml.raise(
      "found \"" + std::string(text.substr(0, 60)) + "\" as a key, expected a " + std::string(cimxml::typeName(type)),
      CimXmlException::Kind::Value);
}
