// The object model as elements of CIM-XML.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLWRITER_H
#define QORQL_CIMXML_CIMXMLWRITER_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Where a property or a method of a class comes from.
struct CimXmlFeatureMarks {
  QORString origin;
  bool isPropagated = false;      // inherited as it is
  std::size_t ownQualifiers = 0;  // its first ones; the others are inherited
};

// What a class that is shown with all that it inherits says of that, by the positions in its declaration.
struct CimXmlClassMarks {
  bool hasQualifiers = true;
  bool hasOrigins = false;
  std::size_t ownQualifiers = 0;  // the first ones; the others are inherited
  std::vector<CimXmlFeatureMarks> properties;
  std::vector<CimXmlFeatureMarks> methods;
};

// Where the properties of instances come from.
class CimXmlOrigins {
 public:
  virtual ~CimXmlOrigins() = default;
  // For each property, by its position in the object.
  virtual const std::vector<CimXmlFeatureMarks>& marksOf(const IQoriObject& object) const = 0;
};

// Appends elements to a text, without blanks between them. What it writes is
// valid against the document type definition of CIM-XML 2.4. Characters that
// XML forbids are replaced. Objects that nest too deeply THROW QoriBaseException
// (type "CIM_Value"). One thread at a time.
class CimXmlWriter {
 public:
  // BORROWS the text.
  explicit CimXmlWriter(std::string& out) : _out(out) {}
  // The text, for elements that are written otherwise.
  std::string& text() noexcept { return _out; }

  // From now on instances tell the classes that their properties come from, but embedded ones do not; null: no more.
  // BORROWS.
  void setOrigins(const CimXmlOrigins* origins) noexcept { _origins = origins; }

  // LOCALNAMESPACEPATH of "root/cimv2".
  void writeLocalNameSpace(const QORString& nameSpace);
  // CLASSNAME.
  void writeClassName(const QORString& className);
  // INSTANCENAME.
  void writeInstanceName(const IQoriInstanceName& name);
  // INSTANCEPATH. A name that has no host of its own takes the given one.
  void writeInstancePath(const IQoriInstanceName& name, const QORString& host);
  // CLASSPATH.
  void writeClassPath(const QORString& host, const QORString& nameSpace, const QORString& className);
  // OBJECTPATH of an instance, and of a class.
  void writeObjectPath(const IQoriInstanceName& name, const QORString& host);
  void writeClassObjectPath(const QORString& host, const QORString& nameSpace, const QORString& className);
  // VALUE.REFERENCE, with as much of the path as the name has: host and
  // namespace, namespace, or neither; a name without keys is a class's.
  void writeReference(const IQoriInstanceName& name);

  // VALUE of a text.
  void writeText(std::string_view text);
  // VALUE and VALUE.ARRAY; nothing for a null value.
  void writeValue(const IQoriValue::Pointer& value);

  // PROPERTY, PROPERTY.ARRAY or PROPERTY.REFERENCE; REQUIRES null or a value of the type.
  void writeProperty(const QORString& name, const IQoriType& type, const IQoriValue::Pointer& value) {
    writePropertyValue(name, type, value, nullptr);
  }
  // INSTANCE, with all properties in the object's order.
  void writeInstance(const IQoriObject& object);
  // VALUE.NAMEDINSTANCE, VALUE.INSTANCEWITHPATH, VALUE.OBJECTWITHPATH. REQUIRE an object with a name.
  void writeNamedInstance(const IQoriObject& object);
  void writeInstanceWithPath(const IQoriObject& object, const QORString& host);
  void writeObjectWithPath(const IQoriObject& object, const QORString& host);
  // VALUE.OBJECTWITHPATH of a class, of which the caller writes path and CLASS in between.
  void beginObjectWithPath();
  void endObjectWithPath();

  // CLASS, with or without its qualifiers.
  void writeClass(const CimClassDeclaration& declaration, bool withQualifiers = true);
  // The same with what is inherited marked; REQUIRES marks for each property and method.
  void writeClass(const CimClassDeclaration& declaration, const CimXmlClassMarks& marks);
  void writeQualifierDeclaration(const CimQualifierDeclaration& declaration);

  // ` NAME="value"`, escaped.
  void writeAttribute(const char* name, std::string_view value);

 private:
  void writeNameSpacePath(const QORString& host, const QORString& nameSpace);
  void writeKey(const IQoriProperty& key);
  void writeScalar(const IQoriValue& value);
  void writeElements(const IQoriValue& array);
  void writePropertyAt(const IQoriObject& object, QORuint32 position, const CimXmlFeatureMarks* marks);
  void writePropertyValue(const QORString& name, const IQoriType& type, const IQoriValue::Pointer& value,
                          const CimXmlFeatureMarks* marks);
  void writeOrigin(const CimXmlFeatureMarks* marks);
  void beginProperty(const char* element, const QORString& name);
  void writeEmbedded(const IQoriObject& object);
  void writeClassObject(const IQoriObject& object);
  void writeObjectElement(const IQoriObject& object);
  void writeQualifiers(const std::vector<CimQualifier>& qualifiers, const CimXmlClassMarks& marks, std::size_t own);
  void writeFlavors(bool overridable, bool toSubclass, bool translatable);
  void writePropertyDeclaration(const CimPropertyDeclaration& property, const CimXmlClassMarks& marks,
                                const CimXmlFeatureMarks& own);
  void writeMethod(const CimMethodDeclaration& method, const CimXmlClassMarks& marks, const CimXmlFeatureMarks& own);
  void writeParameter(const CimPropertyDeclaration& parameter, const CimXmlClassMarks& marks);
  void writeMarks(const CimXmlClassMarks& marks, const CimXmlFeatureMarks& own);
  void writeFeatureAttributes(const CimPropertyDeclaration& feature);

  std::string& _out;
  const CimXmlOrigins* _origins = nullptr;
};

#endif
