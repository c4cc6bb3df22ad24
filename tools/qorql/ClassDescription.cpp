// What a class says of itself and of its properties, inherited ones among them.
// SPDX-License-Identifier: Apache-2.0
#include "ClassDescription.h"

#include <algorithm>

namespace {

constexpr std::string_view kBetweenWords = " \t\r\n";

std::string descriptionText(const std::vector<CimQualifier>& qualifiers) {
  for (const CimQualifier& qualifier : qualifiers) {
    if (!QORString::equalIgnoringCase(qualifier.name.view(), "Description") || qualifier.value.IsNull()) continue;
    return std::string(qualifier.value->toString().view());
  }
  return {};
}

std::string typeOf(const CimPropertyDeclaration& property) {
  std::string type(property.type->getName().view());
  if (!property.referenceClass.isEmpty()) type = std::string(property.referenceClass.view()) + " REF";
  const CimQualifier* const held = property.findQualifier("EmbeddedInstance");
  if (held != nullptr && !held->value.IsNull()) type = held->value->toString().view();
  if (!property.type->isArray()) return type;
  return type + '[' + (property.arraySize < 0 ? "" : std::to_string(property.arraySize)) + ']';
}

bool isLower(char c) { return c >= 'a' && c <= 'z'; }

// Abbreviations such as "e.g." hold a dot themselves.
bool isAbbreviation(std::string_view word) {
  return word.find('.') != std::string_view::npos && word.find_first_of("0123456789") == std::string_view::npos;
}

std::string lastWord(std::string_view text) {
  const std::size_t blank = text.find_last_of(" (");
  return std::string(blank == std::string_view::npos ? text : text.substr(blank + 1));
}

std::string withSingleBlanks(std::string_view text) {
  std::string result;
  while (true) {
    const std::size_t first = text.find_first_not_of(kBetweenWords);
    if (first == std::string_view::npos) return result;
    const std::size_t end = std::min(text.find_first_of(kBetweenWords, first), text.size());
    result.append(result.empty() ? "" : " ").append(text.substr(first, end - first));
    text.remove_prefix(end);
  }
}

}  // namespace

std::string firstSentence(std::string_view text) {
  std::string words = withSingleBlanks(text);
  for (std::size_t stop = words.find(". "); stop != std::string::npos; stop = words.find(". ", stop + 1)) {
    const bool isEnd = !isLower(words[stop + 2]) && !isAbbreviation(lastWord(std::string_view(words).substr(0, stop)));
    if (isEnd) return words.substr(0, stop + 1);
  }
  return words;
}

ClassDescription descriptionOf(const EmbeddedObjectManager& manager, const QORString& nameSpace,
                               const QORString& className) {
  std::vector<QORSmrPtr<IQoriClass>> line;  // from the class to the root
  for (QORString name = className; !name.isEmpty(); name = line.back()->getSuperClassName()) {
    line.push_back(manager.repository()->getClass(nameSpace, name));
  }
  ClassDescription description;
  description.name = line.front()->getClassName().view();
  for (std::size_t i = 1; i < line.size(); ++i) description.superclasses.emplace_back(line[i]->getClassName().view());
  CimClassDeclaration declared;
  if (manager.describeClass(nameSpace, className, declared)) {
    description.sentence = firstSentence(descriptionText(declared.qualifiers));
  }
  for (const CimPropertyDeclaration& property : manager.allProperties(nameSpace, className)) {
    const auto introduces = [&](const QORSmrPtr<IQoriClass>& candidate) {
      return candidate->getProperty(property.name, true) != nullptr;
    };
    const auto origin = std::find_if(line.rbegin(), line.rend(), introduces);
    description.properties.push_back(
        {std::string(property.name.view()), typeOf(property), property.hasFlag("Key"),
         std::string(origin == line.rend() ? std::string_view() : (*origin)->getClassName().view()),
         firstSentence(descriptionText(property.qualifiers)), ValueTexts(property)});
  }
  return description;
}
