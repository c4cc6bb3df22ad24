// The content is not trusted more than a MOF text is: whoever takes the declarations checks them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheDeclarations.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>
#include <utility>

#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

// Tables within tables; a load nests far less.
constexpr flatbuffers::uoffset_t kMaximumDepth = 500;

template <class Table>
using Tables = flatbuffers::Vector<flatbuffers::Offset<Table>>;

// A vector that the format does not require may be absent.
template <class Table, class Take>
void each(const Tables<Table>* tables, Take take) {
  if (tables == nullptr) return;
  for (const auto* const table : *tables) take(*table);
}

QORSmrPtr<IQoriType> typeOf(std::uint8_t code, bool isArray) {
  const QORSmrPtr<IQoriType>* const types[] = {
      &CQoriType::sint8,    &CQoriType::uint8,  &CQoriType::sint16,    &CQoriType::uint16,
      &CQoriType::sint32,   &CQoriType::uint32, &CQoriType::sint64,    &CQoriType::uint64,
      &CQoriType::real32,   &CQoriType::real64, &CQoriType::boolean,   &CQoriType::string,
      &CQoriType::datetime, &CQoriType::char16, &CQoriType::reference, &CQoriType::object};
  if (code >= std::size(types)) refuseMofCache("an unknown type");
  return isArray ? CQoriType::arrayOf(*types[code]) : *types[code];
}

template <class Content>
QORSmrPtr<IQoriValue> make(const Content& content, const QORSmrPtr<IQoriType>& type) {
  return QORSmrPtr<IQoriValue>(new CQoriValue(content, type));
}

template <class Flavored>
void setFlavors(std::uint8_t flavors, Flavored& out) {
  out.toSubclass = (flavors & 1U) != 0;
  out.overridable = (flavors & 2U) != 0;
  out.translatable = (flavors & 4U) != 0;
}

}  // namespace

void refuseMofCache(const char* reason) { throw std::runtime_error(reason); }

// Every table takes some bytes, so that the number of tables that a sound
// cache has is bounded by its size; a table that many others share is counted
// each time, which bounds the work as well.
template <class Root>
const Root& checkedMofCacheTables(std::string_view bytes) {
  const std::size_t tables = std::min<std::size_t>(bytes.size() / 4 + 1, std::numeric_limits<std::int32_t>::max());
  flatbuffers::Verifier verifier(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), kMaximumDepth,
                                 static_cast<flatbuffers::uoffset_t>(tables));
  if (!verifier.VerifyBuffer<Root>(nullptr)) refuseMofCache("its content is damaged");
  return *flatbuffers::GetRoot<Root>(bytes.data());
}

template const mofcache::Load& checkedMofCacheTables<mofcache::Load>(std::string_view);
template const mofcache::Definition& checkedMofCacheTables<mofcache::Definition>(std::string_view);

CimDeclarationSink& MofCacheDeclarations::requireSink() const {
  if (_sink == nullptr) refuseMofCache("an embedded object where there is none");
  return *_sink;
}

QORString MofCacheDeclarations::text(const flatbuffers::String* given) {
  if (given == nullptr || given->size() == 0) return QORString::emptyString();
  const auto [known, isNew] = _texts.try_emplace(given);
  if (isNew) known->second = QORString(std::string_view(given->c_str(), given->size()));
  return known->second;
}

QORSmrPtr<IQoriValue> MofCacheDeclarations::value(const mofcache::Value* given) {
  if (given == nullptr || given->kind() == mofcache::Kind_Null) return {};
  const QORSmrPtr<IQoriType> type = typeOf(given->type(), false);
  const QORuint64 bits = given->bits();
  switch (given->kind()) {
    case mofcache::Kind_Unsigned:
      return make(static_cast<unsigned long long>(bits), type);
    case mofcache::Kind_Signed:
      return make(static_cast<long long>(bits), type);
    case mofcache::Kind_Real:
      return make(std::bit_cast<double>(bits), type);
    case mofcache::Kind_Boolean:
      return make(bits != 0, type);
    case mofcache::Kind_Char16:
      return make(static_cast<char16_t>(bits & 0xFFFFU), type);
    case mofcache::Kind_Text:
      return make(text(given->text()), type);
    case mofcache::Kind_Array:
      return array(*given, type);
    default:
      return complex(*given);
  }
}

QORSmrPtr<IQoriValue> MofCacheDeclarations::array(const mofcache::Value& given, const QORSmrPtr<IQoriType>& type) {
  const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
  each(given.elements(), [this, &elements](const mofcache::Value& element) { elements->append(value(&element)); });
  return make(elements, CQoriType::arrayOf(type));
}

QORSmrPtr<IQoriValue> MofCacheDeclarations::complex(const mofcache::Value& given) {
  const bool isReference = given.kind() == mofcache::Kind_Reference && given.name() != nullptr;
  const bool isInstance = given.kind() == mofcache::Kind_Instance && given.instance() != nullptr;
  const bool isDefinition = given.kind() == mofcache::Kind_Definition && given.definition() != nullptr;
  if (isReference) return QORSmrPtr<IQoriValue>(new CQoriValue(name(*given.name())));
  if (isInstance) {
    const mofcache::Instance& kept = *given.instance();
    return QORSmrPtr<IQoriValue>(new CQoriValue(requireSink().makeObject(text(kept.name_space()), instance(kept))));
  }
  if (!isDefinition) refuseMofCache("a value without content");
  const mofcache::Definition& kept = *given.definition();
  return QORSmrPtr<IQoriValue>(
      new CQoriValue(requireSink().makeClassObject(text(kept.name_space()), definition(kept))));
}

QORSmrPtr<IQoriInstanceName> MofCacheDeclarations::name(const mofcache::Name& given) {
  const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList());
  each(given.keys(), [this, &keys](const mofcache::Key& key) {
    const QORSmrPtr<IQoriValue> content = value(key.value());
    keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(text(key.name()), content, false)));
  });
  const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(text(given.host()), text(given.name_space())));
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(text(given.class_name()), keys, path));
}

CimInstanceDeclaration MofCacheDeclarations::instance(const mofcache::Instance& given) {
  CimInstanceDeclaration out;
  out.className = text(given.class_name());
  out.properties.reserve(given.properties()->size());
  each(given.properties(), [this, &out](const mofcache::Key& property) {
    out.properties.push_back({text(property.name()), value(property.value())});
  });
  return out;
}

void MofCacheDeclarations::qualifiers(const Tables<mofcache::Qualifier>* given, std::vector<CimQualifier>& out) {
  each(given, [this, &out](const mofcache::Qualifier& kept) {
    CimQualifier qualifier;
    qualifier.name = text(kept.name());
    qualifier.value = value(kept.value());
    setFlavors(kept.flavors(), qualifier);
    out.push_back(std::move(qualifier));
  });
}

CimPropertyDeclaration MofCacheDeclarations::feature(const mofcache::Feature& given) {
  CimPropertyDeclaration out;
  out.name = text(given.name());
  out.type = typeOf(given.type(), given.is_array());
  out.arraySize = given.array_size();
  out.referenceClass = text(given.reference_class());
  out.isDefaultNull = given.is_default_null();
  out.defaultValue = value(given.default_value());
  qualifiers(given.qualifiers(), out.qualifiers);
  return out;
}

CimMethodDeclaration MofCacheDeclarations::method(const mofcache::Method& given) {
  CimMethodDeclaration out;
  out.name = text(given.name());
  out.returnType = typeOf(given.type(), false);
  each(given.parameters(), [&](const mofcache::Feature& parameter) { out.parameters.push_back(feature(parameter)); });
  qualifiers(given.qualifiers(), out.qualifiers);
  return out;
}

CimClassDeclaration MofCacheDeclarations::definition(const mofcache::Definition& given) {
  CimClassDeclaration out;
  out.name = text(given.name());
  out.superClass = text(given.super_class());
  qualifiers(given.qualifiers(), out.qualifiers);
  each(given.properties(), [&](const mofcache::Feature& property) { out.properties.push_back(feature(property)); });
  each(given.methods(), [&](const mofcache::Method& operation) { out.methods.push_back(method(operation)); });
  return out;
}

CimQualifierDeclaration MofCacheDeclarations::qualifier(const mofcache::QualifierDeclaration& given) {
  CimQualifierDeclaration out;
  out.name = text(given.name());
  out.type = typeOf(given.type(), given.is_array());
  out.arraySize = given.array_size();
  out.defaultValue = value(given.default_value());
  for (const auto* const scope : *given.scopes()) out.scopes.push_back(text(scope));
  setFlavors(given.flavors(), out);
  return out;
}
