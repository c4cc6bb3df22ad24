// Checked once as a whole, the bytes are read in place. Their content is not
// trusted more than a MOF text is: the sink checks every declaration.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheReader.h"

#include <MofCacheFormat_generated.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Mof/MofSyntax.h"
#include "cimom/CQoriInstanceName.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriType.h"
#include "cimom/CQoriValue.h"

namespace {

// Tables within tables; a load nests far less.
constexpr flatbuffers::uoffset_t kMaximumDepth = 500;

// Rows end where this divides their size: fewer bytes behind the last one are a gap.
constexpr std::size_t kRowsUnit = 8;

[[noreturn]] void refuse(const char* what) { throw std::runtime_error(what); }

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
  if (code >= std::size(types)) refuse("an unknown type");
  return isArray ? CQoriType::arrayOf(*types[code]) : *types[code];
}

class Reader {
 public:
  // `owner` of the rows: null when they are to become instances at once.
  Reader(const mofcache::Load& load, std::string_view rows, CimDeclarationSink& sink,
         const std::shared_ptr<const void>& owner)
      : _load(load), _rows(rows), _sink(sink), _owner(owner) {}

  void declareAll() {
    _texts.reserve(4 * static_cast<std::size_t>(_load.classes()->size()));
    for (const auto* const nameSpace : *_load.name_spaces()) _sink.createNamespace(text(nameSpace));
    each(_load.qualifiers(), [this](const mofcache::QualifierDeclaration& given) {
      _sink.declareQualifier(text(given.name_space()), declaration(given));
    });
    each(_load.classes(), [this](const mofcache::Definition& given) {
      _sink.declareClass(text(given.name_space()), definition(given));
    });
    createInstances();
  }

 private:
  // --- instances in their order

  void createInstances() {
    if (_load.order() == nullptr) refuse("the order of its instances is missing");
    _isLater = isForLater();
    for (const mofcache::Run* const run : *_load.order()) {
      if (run->form() < 0) {
        createListed(run->count());
      } else {
        createRows(static_cast<std::size_t>(run->form()), run->count());
      }
    }
    if (_listed != _load.instances()->size() || _rows.size() >= kRowsUnit) refuse("instances that belong nowhere");
  }

  // Long runs of rows alone: any other instance needs those before it.
  bool isForLater() const {
    constexpr std::size_t kLeastRun = 64;
    const auto isLong = [](const mofcache::Run* run) { return run->form() >= 0 && run->count() >= kLeastRun; };
    return _owner != nullptr && std::all_of(_load.order()->begin(), _load.order()->end(), isLong) && hasOwnClasses();
  }

  using Declared = std::unordered_map<std::string, const mofcache::Definition*>;
  static std::string declaredKey(const flatbuffers::String& nameSpace, std::string_view name) {
    return foldMofName(QORString(nameSpace.str().append(1, ':').append(name)));
  }

  // Whether the classes of the rows are declared here, up to their roots. The keys of others may have changed since the
  // rows were found to have different paths.
  bool hasOwnClasses() const {
    if (_load.forms() == nullptr || _load.forms()->size() == 0) return true;
    Declared declared;
    each(_load.classes(), [&declared](const mofcache::Definition& given) {
      declared.emplace(declaredKey(*given.name_space(), given.name()->string_view()), &given);
    });
    return std::all_of(_load.forms()->begin(), _load.forms()->end(), [&declared](const mofcache::Form* form) {
      return isDeclaredIn(declared, *form->name_space(), form->class_name()->string_view());
    });
  }
  static bool isDeclaredIn(const Declared& declared, const flatbuffers::String& nameSpace, std::string_view name) {
    for (std::size_t steps = 0; !name.empty() && steps <= declared.size(); ++steps) {
      const auto found = declared.find(declaredKey(nameSpace, name));
      if (found == declared.end()) return false;
      name = found->second->super_class()->string_view();
    }
    return name.empty();
  }

  void createListed(QORuint32 count) {
    if (count > _load.instances()->size() - _listed) refuse("an instance is missing");
    for (; count != 0; --count) {
      const mofcache::Instance& given = *_load.instances()->Get(_listed++);
      _sink.createInstance(text(given.name_space()), instance(given));
    }
  }

  void createRows(std::size_t form, QORuint32 count) {
    CimInstanceMaker& maker = makerOf(form);
    const std::string_view from = _rows;
    std::string_view row;
    for (QORuint32 i = 0; i < count; ++i) {
      if (!takeCimRow(_rows, row)) refuse("a row is missing");
      if (!_isLater && !maker.create(row)) refuse("a row does not fit its class");
    }
    const std::string_view run = from.substr(0, from.size() - _rows.size());
    if (_isLater && !maker.createLater(run, count, _owner)) refuse("a row does not fit its class");
  }

  CimInstanceMaker& makerOf(std::size_t form) {
    if (_load.forms() == nullptr || form >= _load.forms()->size()) refuse("an unknown form of rows");
    if (_makers.size() <= form) _makers.resize(_load.forms()->size());
    if (_makers[form] == nullptr) {
      const mofcache::Form& given = *_load.forms()->Get(static_cast<flatbuffers::uoffset_t>(form));
      std::vector<QORString> names;
      for (const auto* const name : *given.names()) names.push_back(text(name));
      _makers[form] = _sink.instanceMaker(text(given.name_space()), text(given.class_name()), names);
    }
    if (_makers[form] == nullptr) refuse("rows of a class that takes none");
    return *_makers[form];
  }

  // A text that several tables share becomes one string.
  QORString text(const flatbuffers::String* given) {
    if (given == nullptr || given->size() == 0) return QORString::emptyString();
    const auto [known, isNew] = _texts.try_emplace(given);
    if (isNew) known->second = QORString(std::string_view(given->c_str(), given->size()));
    return known->second;
  }

  // --- values

  QORSmrPtr<IQoriValue> value(const mofcache::Value* given) {
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

  template <class Content>
  static QORSmrPtr<IQoriValue> make(const Content& content, const QORSmrPtr<IQoriType>& type) {
    return QORSmrPtr<IQoriValue>(new CQoriValue(content, type));
  }

  QORSmrPtr<IQoriValue> array(const mofcache::Value& given, const QORSmrPtr<IQoriType>& type) {
    const QORSmrPtr<IQoriValue::List> elements(new IQoriValue::List());
    each(given.elements(), [this, &elements](const mofcache::Value& element) { elements->append(value(&element)); });
    return make(elements, CQoriType::arrayOf(type));
  }

  QORSmrPtr<IQoriValue> complex(const mofcache::Value& given) {
    const bool isReference = given.kind() == mofcache::Kind_Reference && given.name() != nullptr;
    const bool isInstance = given.kind() == mofcache::Kind_Instance && given.instance() != nullptr;
    const bool isDefinition = given.kind() == mofcache::Kind_Definition && given.definition() != nullptr;
    if (isReference) return QORSmrPtr<IQoriValue>(new CQoriValue(name(*given.name())));
    if (isInstance) {
      const mofcache::Instance& kept = *given.instance();
      return QORSmrPtr<IQoriValue>(new CQoriValue(_sink.makeObject(text(kept.name_space()), instance(kept))));
    }
    if (!isDefinition) refuse("a value without content");
    const mofcache::Definition& kept = *given.definition();
    return QORSmrPtr<IQoriValue>(new CQoriValue(_sink.makeClassObject(text(kept.name_space()), definition(kept))));
  }

  QORSmrPtr<IQoriInstanceName> name(const mofcache::Name& given) {
    const QORSmrPtr<IQoriInstanceName::KeyList> keys(new IQoriInstanceName::KeyList());
    each(given.keys(), [this, &keys](const mofcache::Key& key) {
      const QORSmrPtr<IQoriValue> content = value(key.value());
      keys->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(text(key.name()), content, false)));
    });
    const QORSmrPtr<IQoriNameSpacePath> path(new CQoriNameSpacePath(text(given.host()), text(given.name_space())));
    return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(text(given.class_name()), keys, path));
  }

  // --- declarations

  CimInstanceDeclaration instance(const mofcache::Instance& given) {
    CimInstanceDeclaration out;
    out.className = text(given.class_name());
    out.properties.reserve(given.properties()->size());
    each(given.properties(), [this, &out](const mofcache::Key& property) {
      out.properties.push_back({text(property.name()), value(property.value())});
    });
    return out;
  }

  template <class Flavored>
  static void setFlavors(std::uint8_t flavors, Flavored& out) {
    out.toSubclass = (flavors & 1U) != 0;
    out.overridable = (flavors & 2U) != 0;
    out.translatable = (flavors & 4U) != 0;
  }

  void qualifiers(const Tables<mofcache::Qualifier>* given, std::vector<CimQualifier>& out) {
    each(given, [this, &out](const mofcache::Qualifier& kept) {
      CimQualifier qualifier;
      qualifier.name = text(kept.name());
      qualifier.value = value(kept.value());
      setFlavors(kept.flavors(), qualifier);
      out.push_back(std::move(qualifier));
    });
  }

  CimPropertyDeclaration feature(const mofcache::Feature& given) {
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

  CimMethodDeclaration method(const mofcache::Method& given) {
    CimMethodDeclaration out;
    out.name = text(given.name());
    out.returnType = typeOf(given.type(), false);
    each(given.parameters(), [&](const mofcache::Feature& parameter) { out.parameters.push_back(feature(parameter)); });
    qualifiers(given.qualifiers(), out.qualifiers);
    return out;
  }

  CimClassDeclaration definition(const mofcache::Definition& given) {
    CimClassDeclaration out;
    out.name = text(given.name());
    out.superClass = text(given.super_class());
    qualifiers(given.qualifiers(), out.qualifiers);
    each(given.properties(), [&](const mofcache::Feature& property) { out.properties.push_back(feature(property)); });
    each(given.methods(), [&](const mofcache::Method& operation) { out.methods.push_back(method(operation)); });
    return out;
  }

  CimQualifierDeclaration declaration(const mofcache::QualifierDeclaration& given) {
    CimQualifierDeclaration out;
    out.name = text(given.name());
    out.type = typeOf(given.type(), given.is_array());
    out.arraySize = given.array_size();
    out.defaultValue = value(given.default_value());
    for (const auto* const scope : *given.scopes()) out.scopes.push_back(text(scope));
    setFlavors(given.flavors(), out);
    return out;
  }

  const mofcache::Load& _load;
  std::string_view _rows;  // those that have not been read
  CimDeclarationSink& _sink;
  const std::shared_ptr<const void>& _owner;
  bool _isLater = false;
  std::vector<std::unique_ptr<CimInstanceMaker>> _makers;  // by form; null: not made yet
  flatbuffers::uoffset_t _listed = 0;                      // so many of the load's listed instances have been made
  std::unordered_map<const flatbuffers::String*, QORString> _texts;
};

}  // namespace

// Every table takes some bytes, so that the number of tables that a sound
// cache has is bounded by its size; a table that many others share is counted
// each time, which bounds the work as well.
MofCacheReader::MofCacheReader(std::string_view bytes) {
  QORuint64 size = 0;
  if (bytes.size() < sizeof size) refuse("its content is damaged");
  bytes.remove_suffix(sizeof size);
  std::memcpy(&size, bytes.data() + bytes.size(), sizeof size);
  const std::size_t gap = (sizeof size - size % sizeof size) % sizeof size;
  if (size > bytes.size() || gap > bytes.size() - size || bytes.size() % sizeof size != 0) {
    refuse("its content is damaged");
  }
  _rows = bytes.substr(0, bytes.size() - gap - static_cast<std::size_t>(size));
  _bytes = bytes.substr(_rows.size(), static_cast<std::size_t>(size));
  const std::size_t tables = std::min<std::size_t>(_bytes.size() / 4 + 1, std::numeric_limits<std::int32_t>::max());
  flatbuffers::Verifier verifier(reinterpret_cast<const std::uint8_t*>(_bytes.data()), _bytes.size(), kMaximumDepth,
                                 static_cast<flatbuffers::uoffset_t>(tables));
  if (!mofcache::VerifyLoadBuffer(verifier)) refuse("its content is damaged");
}

std::string MofCacheReader::key() const { return mofcache::GetLoad(_bytes.data())->key()->str(); }

QORsint64 MofCacheReader::written() const { return mofcache::GetLoad(_bytes.data())->written(); }

std::vector<MofInput> MofCacheReader::inputs() const {
  std::vector<MofInput> inputs;
  each(mofcache::GetLoad(_bytes.data())->inputs(), [&inputs](const mofcache::Input& input) {
    inputs.push_back({input.path()->str(), input.is_folder(), input.size(), input.modified(), input.hash()});
  });
  return inputs;
}

void MofCacheReader::declare(CimDeclarationSink& sink, const std::shared_ptr<const void>& owner) const {
  sink.begin();
  try {
    Reader(*mofcache::GetLoad(_bytes.data()), _rows, sink, owner).declareAll();
    sink.commit();
  } catch (...) {
    sink.rollback();
    throw;
  }
}
