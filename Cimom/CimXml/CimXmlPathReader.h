// Namespaces, class names and instance paths of a CIM-XML document.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLPATHREADER_H
#define QORQL_CIMXML_CIMXMLPATHREADER_H

#include <string>
#include <string_view>

#include "Cimom/CimXml/XmlPull.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

// Each operation reads the next element and closes it; an element that it
// cannot read is a fault. THROWS CimXmlException. One thread at a time.
class CimXmlPathReader {
 public:
  // Bytes that the text of a key has at most; one that has more is a fault.
  static constexpr std::size_t kMaximumKey = std::size_t{1} << 16;

  // BORROWS the document. `nameSpace`: of names that have none of their own.
  CimXmlPathReader(cimxml::XmlPull& xml, const QORString& nameSpace);

  // Whether it is an element that readPath() reads.
  static bool isPath(cimxml::Element element) noexcept;

  // INSTANCEPATH, LOCALINSTANCEPATH, INSTANCENAME, CLASSPATH, LOCALCLASSPATH,
  // CLASSNAME, or OBJECTPATH around one of them. A class's path has no keys.
  QORSmrPtr<IQoriInstanceName> readPath();
  // VALUE.REFERENCE. The nesting of references in keys is bounded, because the text of a path
  // doubles with each level.
  QORSmrPtr<IQoriInstanceName> readReference();
  // LOCALNAMESPACEPATH: "root/cimv2".
  QORString readLocalNameSpace();
  // False when there is nothing in it.
  bool joinNameSpace(std::string_view name);
  // CLASSNAME.
  QORString readClassName();

 private:
  QORSmrPtr<IQoriNameSpacePath> readNameSpacePath();
  QORSmrPtr<IQoriInstanceName> readInstanceName(const QORSmrPtr<IQoriNameSpacePath>& path);
  QORSmrPtr<IQoriInstanceName> readClassPath(const QORSmrPtr<IQoriNameSpacePath>& path);
  QORSmrPtr<IQoriProperty> readKey(const QORString& name);
  IQoriValue::Pointer readKeyValue();
  // Shared with the path before, as long as nothing changes.
  QORSmrPtr<IQoriNameSpacePath> pathOf(const QORString& host, const QORString& nameSpace);
  void expect(cimxml::Element element);

  cimxml::XmlPull& _xml;
  const QORSmrPtr<IQoriNameSpacePath> _ownPath;
  QORSmrPtr<IQoriNameSpacePath> _lastPath;
  std::string _joined;  // of the namespace that is being read
  int _nesting = 0;     // of references in keys
};

#endif
