// The codec makes the values; classes, keys and references are settled here.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Remote/RemoteObjects.h"

#include "Cimom/CimXml/CimXmlObjects.h"
#include "Cimom/CimXml/CimXmlValues.h"
#include "Cimom/Embedded/DeclarationHelpers.h"
#include "Cimom/Embedded/RepositoryError.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriValue.h"

namespace {

// As the standard writes the path of a namespace on another host.
QORString pathOn(const RemoteServer& server, const QORString& nameSpace) {
  return server.hasGivenName() ? QORString("//" + server.name() + "/") + nameSpace : nameSpace;
}

// BORROWS: the key of that name; of a name with one key that has no name, that one; null when absent.
const IQoriProperty* keyOf(const IQoriInstanceName& name, const QORString& keyName) {
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> keys(*name.getKeys());
  while (++keys) {
    const QORString& given = keys.key()->getName();
    if (given.isEqualCaseInsensitive(keyName) || given.isEmpty()) return &*keys.key();
  }
  return nullptr;
}

CQoriType::Code codeOf(const IQoriValue& value) { return CQoriType::codeOf(*value.getType()); }

// A key's value as the declared type; of a text, what it says.
QORSmrPtr<IQoriValue> readAs(const QORSmrPtr<IQoriValue>& value, const QORSmrPtr<IQoriType>& type) {
  const QoriScalar scalar = value->scalar();
  const CQoriType::Code code = CQoriType::codeOf(*type);
  QORSmrPtr<IQoriValue> read;
  const bool isRead = scalar.kind == QoriScalarKind::Text && code < CQoriType::Code::Reference &&
                      cimxml::readValue(scalar.text->view(), code, read);
  return isRead ? read : QORSmrPtr<IQoriValue>(new CQoriValue(*value, type));
}

}  // namespace

RemoteObjects::RemoteObjects(const RemoteServer& server, RemoteClasses& classes, CimDeclarationSink& sink,
                             const QORString& nameSpace, const QORString& className)
    : _server(server),
      _classes(classes),
      _sink(sink),
      _nameSpace(nameSpace),
      _className(className),
      _path(pathOn(server, nameSpace)),
      _nameSpacePath(new CQoriNameSpacePath(QORString::emptyString(), _path)),
      _serverName(new CQoriValue(QORString(server.name()))) {}

QORSmrPtr<IQoriObject> RemoteObjects::make(CimXmlInstance& instance) {
  const Known& found = known(instance.className);
  if (found.model == nullptr) return {};
  completeKeys(instance);
  if (found.hasServerProperty) nameServer(instance);
  if (!found.model->referencePositions().empty()) spellReferences(instance);
  instance.name = QORSmrPtr<IQoriInstanceName>();
  return CimXmlObjects::make(instance, found.shape, 0);
}

// It may derive from a class that nobody has asked for yet.
QORSmrPtr<IQoriObject> RemoteObjects::makeClassObject(CimClassDeclaration declaration) {
  const bool hasSuperClass =
      !declaration.superClass.isEmpty() && !_classes.find(_sink, _nameSpace, declaration.superClass).IsNull();
  if (!hasSuperClass) declaration.superClass = QORString::emptyString();
  return _sink.makeClassObject(_nameSpace, declaration);
}

const RemoteObjects::Known& RemoteObjects::known(const QORString& className) {
  if (_last != nullptr && _lastName == className) return *_last;
  auto found = _known.find(className.view());
  if (found == _known.end()) found = _known.emplace(std::string(className.view()), describe(className)).first;
  _lastName = className;
  _last = &found->second;
  return *_last;
}

RemoteObjects::Known RemoteObjects::describe(const QORString& className) {
  Known found;
  found.handle = _classes.find(_sink, _nameSpace, className);
  if (found.handle.IsNull() && _className.isEmpty()) {
    const QORString who(_server.name());
    throw CQoriProviderException(who, who + " has an instance of class " + className + ", but not the class",
                                 static_cast<QORuint32>(embedded::CimStatus::Failed));
  }
  if (found.handle.IsNull()) found.handle = _classes.find(_sink, _nameSpace, _className);
  if (found.handle.IsNull()) return found;
  found.model = static_cast<const CQoriClass*>(&*found.handle);
  const ModelShape& declared = *found.model->shape();
  found.shape =
      _server.hasGivenName()
          ? QORSmrPtr<ModelShape>(new ModelShape(_path, declared.className, declared.layout, declared.keyPositions))
          : found.model->shape();
  found.hasServerProperty = _server.hasGivenName() && declared.layout->getPosition(kRemoteServerProperty) >= 0;
  return found;
}

// Of a property that occurs twice the first counts, so that a key that was sent as a property stays as it is.
// A text is read as what the key is declared as, since servers tell numbers and booleans so, too.
void RemoteObjects::completeKeys(CimXmlInstance& instance) {
  if (instance.name.IsNull()) return;
  const QORSmrPtr<IQoriInstanceName> name = instance.name;
  for (const QORuint32 position : _last->model->keyPositions()) {
    const QORString& keyName = _last->shape->layout->getName(position);
    const IQoriProperty* const key = keyOf(*name, keyName);
    if (key == nullptr || key->getValue().IsNull()) continue;
    CimXmlProperty& added = instance.add(keyName.view());
    added.value = key->getValue();
    added.type = codeOf(*added.value);
    const CQoriType::Code declared = CQoriType::codeOf(*_last->model->type(position));
    if (added.type == CQoriType::Code::String && declared != added.type) added.type = CQoriType::Code::Unknown;
  }
}

void RemoteObjects::nameServer(CimXmlInstance& instance) const {
  CimXmlProperty& added = instance.add(kRemoteServerProperty);
  added.type = CQoriType::Code::String;
  added.value = _serverName;
}

void RemoteObjects::spellReferences(CimXmlInstance& instance) {
  for (CimXmlProperty& property : instance.changeableProperties()) {
    if (property.type == CQoriType::Code::Reference && !property.isArray) property.value = spelled(property.value);
  }
}

QORSmrPtr<IQoriValue> RemoteObjects::spelled(const QORSmrPtr<IQoriValue>& reference) {
  const QORSmrPtr<IQoriInstanceName> name =
      reference.IsNull() ? QORSmrPtr<IQoriInstanceName>() : reference->getReference();
  if (name.IsNull()) return reference;
  return QORSmrPtr<IQoriValue>(new CQoriValue(spelled(*name)));
}

// A reference is to an instance of the same server, whatever host it tells; one to another namespace stays as it is.
QORSmrPtr<IQoriInstanceName> RemoteObjects::spelled(const IQoriInstanceName& name) {
  const QORString& given = name.getNameSpacePath()->getNameSpace();
  const bool isOwn = given.isEmpty() || given.isEqualCaseInsensitive(_server.nameSpaceFor(_nameSpace));
  const QORSmrPtr<IQoriClass> found =
      isOwn ? _classes.find(_sink, _nameSpace, name.getClassName()) : QORSmrPtr<IQoriClass>();
  if (!found.IsNull()) return spelledAs(name, static_cast<const CQoriClass&>(*found));
  const QORSmrPtr<IQoriNameSpacePath> path =
      isOwn ? _nameSpacePath
            : QORSmrPtr<IQoriNameSpacePath>(new CQoriNameSpacePath(QORString::emptyString(), pathOn(_server, given)));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(name.getClassName(), name.getKeys(), path));
}

QORSmrPtr<IQoriInstanceName> RemoteObjects::spelledAs(const IQoriInstanceName& name, const CQoriClass& model) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList);
  for (const QORuint32 position : model.keyPositions()) {
    const QORString& keyName = model.shape()->layout->getName(position);
    const IQoriProperty* const key = keyOf(name, keyName);
    if (key == nullptr) continue;
    QORSmrPtr<IQoriValue> value = key->getValue();
    const QORSmrPtr<IQoriType>& type = model.type(position);
    if (!value.IsNull() && CQoriType::codeOf(*type) == CQoriType::Code::Reference) {
      value = spelled(value);
    } else if (!value.IsNull() && !embedded::sameType(*value->getType(), *type)) {
      value = readAs(value, type);
    }
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(keyName, type, value)));
  }
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(model.getClassName(), keys, _nameSpacePath));
}
