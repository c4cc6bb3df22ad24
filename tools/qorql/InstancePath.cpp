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

namespace {

MofObjectPath parsed(const std::string& text) {
  try {
    return readMofObjectPath(QORString(text), {});
  } catch (const MofFault& fault) {
    throw std::runtime_error(fault.message);
  }
}

// The host of "//host/namespace:Class" and "scheme://host/namespace:Class"; empty where there is none.
std::string_view hostOf(std::string_view path) {
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

bool hasKeys(const IQoriObject& instance, const std::vector<CimInstanceProperty>& keys) {
  return std::all_of(keys.begin(), keys.end(), [&instance](const CimInstanceProperty& key) {
    const QORSmrPtr<IQoriProperty> property(instance.getProperty(key.name, true));
    return !property.IsNull() && !property->getValue().IsNull() &&
           property->getValue()->toString() == key.value->toString();
  });
}

}  // namespace

InstancePath readInstancePath(EmbeddedObjectManager& manager, const std::string& text, const std::string& nameSpace) {
  const MofObjectPath path = parsed(text);
  if (const std::string_view host = hostOf(text); !host.empty()) {
    throw std::runtime_error("the path names the host " + std::string(host) +
                             "; only this machine's instances are there");
  }
  InstancePath result{path.nameSpace.isEmpty() ? QORString(nameSpace) : path.nameSpace, path.className, {}};
  if (manager.repository()->getClass(result.nameSpace, path.className).IsNull()) {
    throw std::runtime_error(
        missingClassText(manager, std::string(result.nameSpace.view()), std::string(path.className.view())));
  }
  const std::vector<CimPropertyDeclaration> properties = manager.allProperties(result.nameSpace, path.className);
  for (const MofPropertySyntax& key : path.keys) requireKey(properties, path.className, key.name.text);
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
    if (hasKeys(*each.key(), path.keys)) found.push_back(each.key()->getInstanceName());
  }
  return found;
}
