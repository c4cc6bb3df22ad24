// Clients leave out the types of keys, which are texts then, and of one key the name, too.
// Tested by tests/unit/Server/InstanceOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Server/DeclaredKeys.h"

#include <string>

#include "Cimom/CimXml/CimXmlException.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Embedded/CQoriClass.h"
#include "Cimom/Server/StatusCodes.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

using Name = QORSmrPtr<IQoriInstanceName>;
using Value = QORSmrPtr<IQoriValue>;
using Code = CQoriType::Code;

const QORString& declaredKeyName(const CQoriClass& model, const QORString& given) {
  if (!given.isEmpty()) return given;
  const std::vector<QORuint32>& keys = model.keyPositions();
  if (keys.size() == 1) return model.shape()->layout->getName(keys.front());
  throw CimStatusException(cimstatus::kInvalidParameter, "a key without a name does not do for class " +
                                                             std::string(model.getClassName().view()) + ", which has " +
                                                             std::to_string(keys.size()) + " keys");
}

// A text as the declared type; where it does not read as such it stays, and no instance has it.
Value textAsDeclared(const Value& value, Code declared) {
  const bool isText = CQoriType::codeOf(*value->getType()) == Code::String;
  Value read;
  if (!isText || declared == Code::String || declared >= Code::Reference) return value;
  return cimxml::readValue(value->toString().view(), declared, read) ? read : value;
}

Value keyAsDeclared(const EmbeddedObjectManager& manager, const QORString& nameSpace, const Value& value,
                    Code declared) {
  if (value.IsNull()) return value;
  if (CQoriType::codeOf(*value->getType()) != Code::Reference) return textAsDeclared(value, declared);
  const Name given(value->getReference());
  const Name path = withDeclaredKeys(manager, nameSpace, given);
  return path.Get() == given.Get() ? value : Value(new CQoriValue(path));
}

}  // namespace

QORSmrPtr<IQoriInstanceName> withDeclaredKeys(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                                              const QORSmrPtr<IQoriInstanceName>& given) {
  const QORString& told = given->getNameSpacePath()->getNameSpace();
  const QORString& space = told.isEmpty() ? nameSpace : told;
  const QORSmrPtr<IQoriClass> found(manager.repository()->getClass(space, given->getClassName()));
  if (found.IsNull()) return given;
  const auto& model = static_cast<const CQoriClass&>(*found);
  bool isOther = false;
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  given->getKeys()->forEach([&](const QORSmrPtr<IQoriProperty>& key) {
    const QORString& name = declaredKeyName(model, key->getName());
    const QORsint32 position = model.position(name);
    const Code declared =
        position < 0 ? Code::Unknown : CQoriType::codeOf(*model.type(static_cast<QORuint32>(position)));
    const Value value = keyAsDeclared(manager, space, key->getValue(), declared);
    const bool isSame = !key->getName().isEmpty() && value.Get() == key->getValue().Get();
    isOther = isOther || !isSame;
    keys->append(isSame ? key : QORSmrPtr<IQoriProperty>(new CQoriProperty(name, value, false)));
  });
  return isOther ? Name(new CQoriInstanceName(given->getClassName(), keys, given->getNameSpacePath())) : given;
}
