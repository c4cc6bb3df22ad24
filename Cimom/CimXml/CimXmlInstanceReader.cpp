// Forgiving about what a server adds or leaves out; a value that cannot be of its type is a fault.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlInstanceReader.h"

#include <string>
#include <utility>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "cimom/CQoriValue.h"

using cimxml::Element;
using cimxml::XmlAttributes;
using Code = CQoriType::Code;

namespace {

// Servers use both spellings of the attribute.
bool isEmbedded(const XmlAttributes& attributes) noexcept {
  return attributes.find("EmbeddedObject") != nullptr || attributes.find("EMBEDDEDOBJECT") != nullptr;
}

// A text as a message shows it.
std::string shown(std::string_view text) {
  constexpr std::size_t kShown = 60;
  return '"' + std::string(text.substr(0, kShown)) + (text.size() > kShown ? "..." : "") + '"';
}

// A text in a document may be a document itself; each level has a reader of its own.
class EmbeddingLevel {
 public:
  explicit EmbeddingLevel(cimxml::XmlPull& xml) {
    constexpr int kMaximum = 16;
    if (_level == kMaximum) xml.raise("embedded objects nest deeper than " + std::to_string(kMaximum));
    ++_level;
  }
  EmbeddingLevel(const EmbeddingLevel&) = delete;
  EmbeddingLevel& operator=(const EmbeddingLevel&) = delete;
  ~EmbeddingLevel() { --_level; }

 private:
  static thread_local int _level;
};

thread_local int EmbeddingLevel::_level = 0;

}  // namespace

CimXmlInstanceReader::CimXmlInstanceReader(cimxml::XmlPull& xml, const QORString& nameSpace, CimXmlObjects& objects,
                                           EmbeddedClass embeddedClass)
    : _xml(xml),
      _paths(xml, nameSpace),
      _nameSpace(nameSpace),
      _objects(objects),
      _embeddedClass(std::move(embeddedClass)) {}

void CimXmlInstanceReader::raiseUnexpected(const char* within) {
  _xml.raise(std::string(_xml.aheadName()) + " is not allowed within " + within);
}

void CimXmlInstanceReader::readInstance(CimXmlInstance& out) {
  if (_xml.peek() != Element::Instance) raiseUnexpected("the place of an INSTANCE");
  out.clear();
  const std::string_view className = _xml.open().get("CLASSNAME");
  if (className.empty()) _xml.raise("an INSTANCE has no CLASSNAME");
  if (out.className.view() != className) out.className = QORString(className);
  for (;;) {
    switch (_xml.peek()) {
      case Element::Property:
      case Element::PropertyArray:
        readProperty(out);
        break;
      case Element::PropertyReference:
        readReferenceProperty(out);
        break;
      case Element::Qualifier:
      case Element::Unknown:
        _xml.skip();
        break;
      case Element::None:
        _xml.close();
        return;
      default:
        raiseUnexpected("INSTANCE");
    }
  }
}

void CimXmlInstanceReader::readNamedInstance(CimXmlInstance& out) {
  if (_xml.peek() == Element::Instance) return readInstance(out);
  _xml.open();
  QORSmrPtr<IQoriInstanceName> name;
  if (CimXmlPathReader::isPath(_xml.peek())) name = _paths.readPath();
  readInstance(out);
  out.name = name;
  _xml.close();
}

void CimXmlInstanceReader::readProperty(CimXmlInstance& out) {
  const bool isArray = _xml.peek() == Element::PropertyArray;
  const XmlAttributes attributes = _xml.open();
  const std::string_view name = attributes.get("NAME");
  if (name.empty()) _xml.raise("a PROPERTY has no NAME");
  CimXmlProperty& property = out.add(name);
  const std::string_view type = attributes.get("TYPE");
  property.isArray = isArray;
  const bool holdsObject = isEmbedded(attributes);
  property.type = holdsObject ? Code::Object : type.empty() ? Code::Unknown : cimxml::typeOf(type);
  // References and objects have forms of their own.
  if (!holdsObject && !type.empty() && property.type >= Code::Reference) {
    _xml.raise("property " + std::string(name) + " has the unknown type " + shown(type));
  }
  while (_xml.peek() != Element::None) {
    if (_xml.peek() == Element::Value || _xml.peek() == Element::ValueArray) {
      property.value = readValue(property.type, property.name.view());
      property.isArray = !property.value.IsNull() && property.value->isArray();
    } else if (_xml.peek() == Element::Qualifier || _xml.peek() == Element::Unknown ||
               _xml.peek() == Element::ValueNull) {
      _xml.skip();
    } else {
      raiseUnexpected("PROPERTY");
    }
  }
  _xml.close();
}

void CimXmlInstanceReader::readReferenceProperty(CimXmlInstance& out) {
  const std::string_view name = _xml.open().get("NAME");
  if (name.empty()) _xml.raise("a PROPERTY.REFERENCE has no NAME");
  CimXmlProperty& property = out.add(name);
  property.type = Code::Reference;
  while (_xml.peek() != Element::None) {
    if (_xml.peek() == Element::ValueReference) {
      property.value = IQoriValue::Pointer(new CQoriValue(_paths.readReference()));
    } else if (_xml.peek() == Element::Qualifier || _xml.peek() == Element::Unknown ||
               _xml.peek() == Element::ValueNull) {
      _xml.skip();
    } else {
      raiseUnexpected("PROPERTY.REFERENCE");
    }
  }
  _xml.close();
}

IQoriValue::Pointer CimXmlInstanceReader::readValue(Code type, std::string_view what) {
  const Element element = _xml.peek();
  if (element != Element::Value && element != Element::ValueArray) raiseUnexpected("the place of a value");
  _xml.open();
  return element == Element::Value ? readText(type, what) : readArray(type, what);
}

IQoriValue::Pointer CimXmlInstanceReader::readText(Code type, std::string_view what) {
  const std::string_view text = _xml.closeText();
  if (type == Code::Object) return embeddedObject(text, what);
  IQoriValue::Pointer value;
  if (cimxml::readValue(text, type, value)) return value;
  _xml.raise(
      "found " + shown(text) + " for " + std::string(what) + ", expected a " + std::string(cimxml::typeName(type)),
      CimXmlException::Kind::Value);
}

IQoriValue::Pointer CimXmlInstanceReader::readArray(Code type, std::string_view what) {
  QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List);
  while (_xml.peek() != Element::None) {
    switch (_xml.peek()) {
      case Element::Value:
        _xml.open();
        elements->append(readText(type, what));
        break;
      case Element::ValueNull:
        _xml.skip();
        elements->append(IQoriValue::Pointer());
        break;
      default:
        raiseUnexpected("VALUE.ARRAY");
    }
  }
  _xml.close();
  const QORSmrPtr<IQoriType>& element = type == Code::Unknown ? CQoriType::string : cimxml::scalarType(type);
  return IQoriValue::Pointer(new CQoriValue(elements, CQoriType::arrayOf(element)));
}

// The text is a document of its own; its faults are reported at the place of the text.
IQoriValue::Pointer CimXmlInstanceReader::embeddedObject(std::string_view text, std::string_view what) {
  const EmbeddingLevel level(_xml);
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) return {};
  try {
    cimxml::XmlPull document(text, _xml.limits());
    QORSmrPtr<IQoriObject> object;
    if (document.peek() == Element::Class && _embeddedClass) {
      object = _embeddedClass(document);
    } else {
      CimXmlInstance instance;
      CimXmlInstanceReader(document, _nameSpace, _objects, _embeddedClass).readNamedInstance(instance);
      object = _objects.make(instance);
    }
    document.finish();
    return IQoriValue::Pointer(new CQoriValue(object));
  } catch (const CimXmlException& fault) {
    _xml.raise("the object in " + std::string(what) + " cannot be read: " + std::string(fault.getFault().view()),
               CimXmlException::Kind::Value);
  }
}
