// Engine objects from instances as documents give them.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLOBJECTS_H
#define QORQL_CIMXML_CIMXMLOBJECTS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/CimXml/CimXmlInstance.h"
#include "Cimom/Model/ModelShape.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Keeps the layouts that instances had, so that those of one class share one.
// One thread at a time; the objects may be shared.
class CimXmlObjects {
 public:
  explicit CimXmlObjects(const QORString& nameSpace);
  CimXmlObjects(const CimXmlObjects&) = delete;
  CimXmlObjects& operator=(const CimXmlObjects&) = delete;

  // The object with the properties of the document, in their order; of a name that
  // occurs twice the first counts. Properties of unknown type are text.
  QORSmrPtr<IQoriObject> make(const CimXmlInstance& instance);

  // An object of a known class: properties by their names; those that are missing
  // are NULL, those that the class lacks are left out, and those of unknown
  // type are read as the declared one. THROWS QoriBaseException (type
  // "CIM_Value") naming class and property when a value cannot be of its type.
  // `identity` is what the object's getIdentity() gives.
  static QORSmrPtr<IQoriObject> make(const CimXmlInstance& instance, const QORSmrPtr<ModelShape>& shape,
                                     QORuint64 identity);

 private:
  // How many layouts of a class are kept; for a server that sends more, some are made again.
  static constexpr std::size_t kLayouts = 16;

  struct Known {
    QORSmrPtr<ModelShape> shape;
    std::vector<std::size_t> kept;  // the properties that repeat no other one, when some do
    std::size_t count = 0;          // of the properties in the document
  };

  static bool hasColumns(const Known& known, const CimXmlInstance& instance) noexcept;
  bool fits(const Known& known, const CimXmlInstance& instance) const;
  QORString nameSpaceOf(const CimXmlInstance& instance) const;
  const Known& shapeOf(const CimXmlInstance& instance);
  Known makeShape(const CimXmlInstance& instance) const;

  const QORString _nameSpace;
  std::unordered_map<std::string, std::vector<Known>> _known;  // by class name as in the document
};

#endif
