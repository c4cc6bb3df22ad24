// Looks for the parameters of a call.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlRequest.h"

#include <algorithm>
#include <charconv>

#include "Cimom/CimXml/CimXmlException.h"

namespace {

constexpr QORuint32 kInvalidParameter = 4;

// White space around what is no text is met in the field.
std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool isSame(std::string_view a, const char* b) { return QORString(a).isEqualCaseInsensitive(QORString(b)); }

[[noreturn]] void raiseNot(std::string_view name, const char* what) {
  throw CimStatusException(kInvalidParameter, std::string(name) + " is not " + what);
}

// Null where the parameter is left out; one of another kind is refused.
const CimXmlParameter* require(const CimXmlRequest& request, std::string_view name, CimXmlParameter::Kind kind,
                               const char* what) {
  const CimXmlParameter* const found = request.find(name);
  if (found != nullptr && found->kind != kind) raiseNot(name, what);
  return found;
}

// A path of a class may tell where it is; nobody looks for it there.
void requireNameSpace(const CimXmlParameter& parameter, const QORString& nameSpace) {
  const QORString& told = parameter.path->getNameSpacePath()->getNameSpace();
  if (told.isEmpty() || told.isEqualCaseInsensitive(nameSpace)) return;
  throw CimStatusException(kInvalidParameter, parameter.name + " is in namespace " + std::string(told.view()) +
                                                  ", and the call in " + std::string(nameSpace.view()));
}

}  // namespace

const CimXmlParameter* CimXmlRequest::find(std::string_view name) const {
  const QORString wanted(name);
  const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const CimXmlParameter& each) {
    return wanted.isEqualCaseInsensitive(QORString(std::string_view(each.name)));
  });
  return found == parameters.end() || found->kind == CimXmlParameter::Kind::Null ? nullptr : &*found;
}

bool CimXmlRequest::flag(std::string_view name, bool otherwise) const {
  constexpr const char* kWhat = "a boolean";
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::Text, kWhat);
  if (found == nullptr) return otherwise;
  const std::string_view word = trimmed(found->text.view());
  const bool isTrue = isSame(word, "true");
  if (!isTrue && !isSame(word, "false")) raiseNot(name, kWhat);
  return isTrue;
}

std::optional<QORuint32> CimXmlRequest::number(std::string_view name) const {
  constexpr const char* kWhat = "an unsigned number of 32 bits";
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::Text, kWhat);
  if (found == nullptr) return std::nullopt;
  const std::string_view digits = trimmed(found->text.view());
  QORuint32 number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) raiseNot(name, kWhat);
  return number;
}

std::optional<QORString> CimXmlRequest::text(std::string_view name) const {
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::Text, "a text");
  return found == nullptr ? std::nullopt : std::optional(found->text);
}

std::optional<std::vector<QORString>> CimXmlRequest::texts(std::string_view name) const {
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::Texts, "an array of texts");
  return found == nullptr ? std::nullopt : std::optional(found->texts);
}

std::optional<QORString> CimXmlRequest::className(std::string_view name) const {
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::ClassName, "the name of a class");
  if (found != nullptr && !found->path.IsNull()) requireNameSpace(*found, nameSpace);
  return found == nullptr ? std::nullopt : std::optional(found->text);
}

QORSmrPtr<IQoriInstanceName> CimXmlRequest::instanceName(std::string_view name) const {
  const CimXmlParameter* const found =
      require(*this, name, CimXmlParameter::Kind::InstanceName, "the name of an instance");
  return found == nullptr ? QORSmrPtr<IQoriInstanceName>() : found->path;
}

const CimXmlInstance* CimXmlRequest::instance(std::string_view name) const {
  const CimXmlParameter* const found = require(*this, name, CimXmlParameter::Kind::Instance, "an instance");
  return found == nullptr ? nullptr : &found->instance;
}
