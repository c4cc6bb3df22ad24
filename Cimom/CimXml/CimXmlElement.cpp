// The names of the elements, and their look-up by a perfect hash.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlElement.h"

#include <array>
#include <iterator>

namespace {

using cimxml::Element;

// In the order of the enumeration.
constexpr std::string_view kNames[] = {
    "nothing",
    "an unknown element",
    "CIM",
    "CLASS",
    "CLASSNAME",
    "CLASSPATH",
    "CORRELATOR",
    "ERROR",
    "EXPMETHODCALL",
    "EXPMETHODRESPONSE",
    "EXPPARAMVALUE",
    "HOST",
    "IMETHODCALL",
    "IMETHODRESPONSE",
    "IPARAMVALUE",
    "IRETURNVALUE",
    "INSTANCE",
    "INSTANCENAME",
    "INSTANCEPATH",
    "KEYBINDING",
    "KEYVALUE",
    "LOCALCLASSPATH",
    "LOCALINSTANCEPATH",
    "LOCALNAMESPACEPATH",
    "MESSAGE",
    "METHOD",
    "METHODCALL",
    "METHODRESPONSE",
    "MULTIEXPREQ",
    "MULTIREQ",
    "NAMESPACE",
    "NAMESPACEPATH",
    "OBJECTPATH",
    "PARAMETER",
    "PARAMETER.ARRAY",
    "PARAMETER.REFARRAY",
    "PARAMETER.REFERENCE",
    "PARAMVALUE",
    "PROPERTY",
    "PROPERTY.ARRAY",
    "PROPERTY.REFERENCE",
    "QUALIFIER",
    "QUALIFIER.DECLARATION",
    "SCOPE",
    "SIMPLEEXPREQ",
    "SIMPLEEXPRSP",
    "SIMPLEREQ",
    "SIMPLERSP",
    "VALUE",
    "VALUE.ARRAY",
    "VALUE.INSTANCEWITHPATH",
    "VALUE.NAMEDINSTANCE",
    "VALUE.NAMEDOBJECT",
    "VALUE.NULL",
    "VALUE.OBJECT",
    "VALUE.OBJECTWITHLOCALPATH",
    "VALUE.OBJECTWITHPATH",
    "VALUE.REFARRAY",
    "VALUE.REFERENCE",
};
static_assert(std::size(kNames) == static_cast<std::size_t>(Element::ValueReference) + 1);

// A hash that tells all names apart, by length and five letters.
constexpr std::size_t kBuckets = 512;
constexpr std::size_t bucketOf(std::string_view name) noexcept {
  const auto letter = [name](std::size_t at) { return static_cast<std::size_t>(static_cast<unsigned char>(name[at])); };
  const std::size_t last = name.size() - 1;
  return (name.size() * 57 + letter(0) * 320 + letter(last) * 95 + letter(last / 2) * 177 +
          letter(last - last / 4) * 149 + letter(last / 3) * 36) %
         kBuckets;
}

using Buckets = std::array<Element, kBuckets>;
constexpr Buckets makeBuckets() {
  Buckets buckets{};
  for (std::size_t i = 2; i < std::size(kNames); ++i) buckets[bucketOf(kNames[i])] = static_cast<Element>(i);
  return buckets;
}
constexpr Buckets kElements = makeBuckets();

constexpr bool tellsAllApart() {
  for (std::size_t i = 2; i < std::size(kNames); ++i) {
    if (kElements[bucketOf(kNames[i])] != static_cast<Element>(i)) return false;
  }
  return true;
}
static_assert(tellsAllApart(), "two elements share a bucket: change the factors of bucketOf");

}  // namespace

cimxml::Element cimxml::elementOf(std::string_view name) noexcept {
  if (name.empty()) return Element::Unknown;
  const Element element = kElements[bucketOf(name)];
  return element != Element::None && elementName(element) == name ? element : Element::Unknown;
}

std::string_view cimxml::elementName(Element element) noexcept { return kNames[static_cast<std::size_t>(element)]; }
