// From the tables of a cache to declarations.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCACHEDECLARATIONS_H
#define QORQL_MOF_MOFCACHEDECLARATIONS_H

#include <MofCacheFormat_generated.h>

#include <string_view>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"

// In place of a superclass's number: the superclass was declared before this load.
inline constexpr QORsint32 kSuperClassElsewhere = -2;

// THROWS std::runtime_error: the cache is passed over for that reason.
[[noreturn]] void refuseMofCache(const char* reason);

// That each offset and length in the tables below the root lies among the bytes. THROWS as above when one does not.
template <class Root>
const Root& checkedMofCacheTables(std::string_view bytes);

// Makes declarations of checked tables. Texts that several of them share become one string. BORROWS both.
class MofCacheDeclarations {
 public:
  // `sink`: what makes the embedded objects; null: there are none.
  explicit MofCacheDeclarations(CimDeclarationSink* sink) : _sink(sink) {}

  // For so many texts.
  void reserve(std::size_t count) { _texts.reserve(count); }

  // THROW std::runtime_error when the content makes no sense, and what the sink throws.
  QORString text(const flatbuffers::String* given);
  CimInstanceDeclaration instance(const mofcache::Instance& given);
  CimClassDeclaration definition(const mofcache::Definition& given);
  CimQualifierDeclaration qualifier(const mofcache::QualifierDeclaration& given);

 private:
  template <class Table>
  using Tables = flatbuffers::Vector<flatbuffers::Offset<Table>>;

  QORSmrPtr<IQoriValue> value(const mofcache::Value* given);
  QORSmrPtr<IQoriValue> array(const mofcache::Value& given, const QORSmrPtr<IQoriType>& type);
  QORSmrPtr<IQoriValue> complex(const mofcache::Value& given);
  CimDeclarationSink& requireSink() const;
  QORSmrPtr<IQoriInstanceName> name(const mofcache::Name& given);
  void qualifiers(const Tables<mofcache::Qualifier>* given, std::vector<CimQualifier>& out);
  CimPropertyDeclaration feature(const mofcache::Feature& given);
  CimMethodDeclaration method(const mofcache::Method& given);

  CimDeclarationSink* const _sink;
  std::unordered_map<const flatbuffers::String*, QORString> _texts;
};

#endif
