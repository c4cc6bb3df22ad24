// The keys' values become those of an instance, which the reader of MOF makes.
// SPDX-License-Identifier: Apache-2.0
#include "InstancePath.h"

#include <algorithm>
#include <stdexcept>

#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Mof/MofObjectPath.h"
#include "Cimom/QORQL/Face/QORQL_Suggestion.h"
#include "ClassesCommand.h"
#include "cimom/CIMApi.h"
#include "cimom/CQoriType.h"

namespace {

MofObjectPath parsed(const std::string& text) {
  try {
    return readMofObjectPath(QORString(text), {});
  } catch (const MofFault& fault) {
    throw std::runtime_error(fault.message);
  }
}

// The host of "//host/namespace:Class" and "scheme://host/namespace:Class"; empty where there is none.
std::string_view hostOfPath(std::string_view path) {
  constexpr std::string_view kMark = "//";
  path = path.substr(0, path.find_first_of("\"="));
  const std::size_t mark = path.find(kMark);
  if (mark == std::string_view::npos) return {};
  path.remove_prefix(mark + kMark.size());
  return path.substr(0, path.find('/'));
}

std::string textLiteral(std::string_view text) {
  std::string literal = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') literal += '\\';
    c == '\n' ? literal += "\\n" : literal += c;
  }
  return literal + '"';
}

std::string literalOf(const MofValueSyntax& value) {
  switch (value.kind) {
    case MofValueSyntax::Kind::Text:
      return textLiteral(value.text.view());
    case MofValueSyntax::Kind::Boolean:
      return value.flag ? "TRUE" : "FALSE";
    case MofValueSyntax::Kind::Char16:
      return std::to_string(static_cast<unsigned>(value.character));
    default:
      return std::string(value.text.view());
  }
}

void requireKey(const std::vector<CimPropertyDeclaration>& properties, const QORString& className,
                const QORString& name) {
  QORQL_Suggestion suggestion(name.view());
  for (const CimPropertyDeclaration& property : properties) {
    if (!property.hasFlag("Key")) continue;
    if (property.name.isEqualCaseInsensitive(name)) return;
    suggestion.consider(property.name.view());
  }
  const std::string meant = suggestion.best().empty() ? "" : ": did you mean " + suggestion.best() + "?";
  throw std::runtime_error(std::string(className.view()) + " has no key " + std::string(name.view()) + meant);
}

QORSmrPtr<IQoriObject> madeOf(EmbeddedObjectManager& manager, const MofObjectPath& path, const QORString& nameSpace) {
  std::string mof = "instance of " + std::string(path.className.view()) + " { ";
  for (const MofPropertySyntax& key : path.keys) {
    mof += std::string(key.name.text.view()) + " = " + literalOf(key.value) + "; ";
  }
  try {
    return MofLoader(manager.sink(), nameSpace).readInstances(mof + "};", "path").front();
  } catch (const MofException& refusal) {
    throw std::runtime_error(refusal.getDiagnostics().front().message);
  }
}

void requireServer(const std::string& host, const std::vector<std::string>& servers) {
  if (std::find(servers.begin(), servers.end(), host) != servers.end()) return;
  if (servers.empty()) {
    throw std::runtime_error("the path names the host " + host + "; only this machine's instances are there");
  }
  std::string known;
  for (const std::string& server : servers) known += (known.empty() ? "" : ", ") + server;
  throw std::runtime_error("the path names the server " + host + ", which is not asked; those that are: " + known);
}

// The reader of MOF wants the classes of references to be there, and servers tell them when they are asked for.
void provideReferences(const EmbeddedObjectManager& manager, const MofObjectPath& path, const QORString& nameSpace) {
  const std::vector<CimPropertyDeclaration> properties = manager.allProperties(nameSpace, path.className);
  for (const MofPropertySyntax& key : path.keys) {
    const bool isReference = std::any_of(properties.begin(), properties.end(), [&key](const auto& property) {
      return !property.referenceClass.isEmpty() && property.name.isEqualCaseInsensitive(key.name.text);
    });
    if (!isReference || key.value.kind != MofValueSyntax::Kind::Text) continue;
    provideReferences(manager, parsed(std::string(key.value.text.view())), nameSpace);
  }
}

// "//server/" of the path of an object that a named server told; else empty.
std::string serverPrefix(const IQoriObject& instance) {
  const std::string nameSpace(instance.getNameSpace().view());
  if (!nameSpace.starts_with("//")) return {};
  return nameSpace.substr(0, nameSpace.find('/', 2) + 1);
}

// References of a named server begin with its name, which the typed ones were read without.
std::string withoutServer(std::string text, const std::string& prefix) {
  if (prefix.empty()) return text;
  for (std::size_t at = text.find(prefix); at != std::string::npos; at = text.find(prefix, at)) {
    text.erase(at, prefix.size());
  }
  return text;
}

bool isReference(const IQoriValue& value) { return CQoriType::codeOf(*value.getType()) == CQoriType::Code::Reference; }

bool hasKeys(const IQoriObject& instance, const std::vector<CimInstanceProperty>& keys) {
  const std::string prefix = serverPrefix(instance);
  return std::all_of(keys.begin(), keys.end(), [&](const CimInstanceProperty& key) {
    const QORSmrPtr<IQoriProperty> property(instance.getProperty(key.name, true));
    if (property.IsNull() || property->getValue().IsNull()) return false;
    const QORString& held = property->getValue()->toString();
    if (!isReference(*property->getValue())) return held == key.value->toString();
    return withoutServer(std::string(held.view()), prefix) == key.value->toString().view();
  });
}

// One that is asked alone under no name has objects without it.
bool isOf(const std::string& server, const IQoriObject& instance) {
  const std::string prefix = serverPrefix(instance);
  return server.empty() || prefix.empty() || prefix == "//" + server + "/";
}

}  // namespace

InstancePath readInstancePath(EmbeddedObjectManager& manager, const std::string& text, const std::string& nameSpace,
                              const std::vector<std::string>& servers) {
  const MofObjectPath path = parsed(text);
  const std::string host(hostOfPath(text));
  if (!host.empty()) requireServer(host, servers);
  InstancePath result{path.nameSpace.isEmpty() ? QORString(nameSpace) : path.nameSpace, path.className, {}, host};
  if (manager.repository()->getClass(result.nameSpace, path.className).IsNull()) {
    throw std::runtime_error(
        missingClassText(manager, std::string(result.nameSpace.view()), std::string(path.className.view())));
  }
  const std::vector<CimPropertyDeclaration> properties = manager.allProperties(result.nameSpace, path.className);
  for (const MofPropertySyntax& key : path.keys) requireKey(properties, path.className, key.name.text);
  provideReferences(manager, path, result.nameSpace);
  const QORSmrPtr<IQoriObject> made = madeOf(manager, path, result.nameSpace);
  for (const MofPropertySyntax& key : path.keys) {
    result.keys.push_back({key.name.text, made->getProperty(key.name.text, true)->getValue()});
  }
  return result;
}

std::vector<QORSmrPtr<IQoriInstanceName>> instancesAt(const InstancePath& path) {
  const CIMApi::PropertyNames names(new QORValSlist<QORString>());
  for (const CimInstanceProperty& key : path.keys) names->append(key.name);
  CIMApi api;
  const CIMApi::Instances instances = api.enumerateInstances(path.nameSpace, path.className, names,
                                                             CIMApi::DefaultTimeout, nullptr, nullptr, nullptr, {});
  std::vector<QORSmrPtr<IQoriInstanceName>> found;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
  while (++each) {
    if (isOf(path.server, *each.key()) && hasKeys(*each.key(), path.keys))
      found.push_back(each.key()->getInstanceName());
  }
  return found;
}
