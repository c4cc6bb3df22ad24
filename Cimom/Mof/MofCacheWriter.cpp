// Builds the tables from the leaves up. Equal texts are kept once.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheWriter.h"

#include <MofCacheFormat_generated.h>

#include <bit>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <unordered_map>

#include "Cimom/Embedded/CimDeclarationSource.h"
#include "Cimom/Mof/MofCacheDeclarations.h"
#include "Cimom/Mof/MofSyntax.h"
#include "cimom/CQoriType.h"
#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriProperty.h"
#include "cimom/IQoriValue.h"

namespace {

using flatbuffers::Offset;

template <class Table>
using TablesOffset = Offset<flatbuffers::Vector<Offset<Table>>>;

constexpr QORuint64 paddedSize(QORuint64 size) { return (size + 7) / 8 * 8; }

// Far deeper than any load goes, which bounds nesting itself.
constexpr int kMaximumValueDepth = 100;

class Writer {
 public:
  explicit Writer(const MofRecord& record) : _record(record) {}

  // Gives the tables of one class after the other to `take`; of a class that is declared again once.
  void writeClasses(const std::function<void(std::string_view)>& take) {
    std::unordered_map<std::string, QORsint32> numbers;
    QORuint64 offset = 0;
    for (const auto& entry : _record.classes) {
      const CimClassDeclaration& declared = entry.declaration;
      const auto number = static_cast<QORsint32>(_headings.size());
      if (!numbers.emplace(keyOf(entry.nameSpace, declared.name), number).second) continue;
      const auto above = numbers.find(keyOf(entry.nameSpace, declared.superClass));
      const QORsint32 noNumber = declared.superClass.isEmpty() ? CimClassHeading::kNoSuperClass : kSuperClassElsewhere;
      _out.Clear();
      _out.Finish(definition(entry.nameSpace, declared));
      if (offset > std::numeric_limits<QORuint32>::max()) throw std::runtime_error("there is too much of it");
      _headings.push_back({&entry, above == numbers.end() ? noNumber : above->second, static_cast<QORuint32>(offset),
                           static_cast<QORuint32>(_out.GetSize())});
      take(written());
      offset += paddedSize(_out.GetSize());
    }
    _out.Clear();
  }

  // The tables of the rest. BORROWS from this object.
  std::string_view write(const std::vector<MofInput>& inputs, const std::string& key) {
    const auto files = list<mofcache::Input>(inputs, [this](const MofInput& input) {
      return mofcache::CreateInput(_out, text(input.path), input.isFolder, input.size, input.modified, input.hash);
    });
    const auto nameSpaces =
        list<flatbuffers::String>(_record.nameSpaces, [this](const QORString& s) { return text(s); });
    const auto qualifiers = list<mofcache::QualifierDeclaration>(
        _record.qualifiers, [this](const auto& entry) { return declaration(entry.nameSpace, entry.declaration); });
    const auto classes = list<mofcache::Heading>(_headings, [this](const Heading& kept) {
      return mofcache::CreateHeading(_out, text(kept.entry->nameSpace), text(kept.entry->declaration.name),
                                     kept.superClass, kept.offset, kept.size);
    });
    const auto instances = list<mofcache::Instance>(
        _record.instances, [this](const auto& entry) { return instance(entry.nameSpace, entry.declaration, 0); });
    const auto forms = list<mofcache::Form>(_record.forms, [this](const MofRecord::Form& kept) { return form(kept); });
    std::vector<mofcache::Run> runs;
    for (const MofRecord::Run& run : _record.order) runs.emplace_back(run.form, run.count);
    const auto order = _out.CreateVectorOfStructs(runs);
    _out.Finish(mofcache::CreateLoad(_out, text(key), mofClockNow(), files, nameSpaces, qualifiers, classes, instances,
                                     forms, order));
    return written();
  }

 private:
  // What stands in a table of its own.
  struct Heading {
    const MofRecord::Entry<CimClassDeclaration>* entry;
    QORsint32 superClass;
    QORuint32 offset;
    QORuint32 size;
  };

  static std::string keyOf(const QORString& nameSpace, const QORString& name) {
    return foldMofName(nameSpace) + ':' + foldMofName(name);
  }
  std::string_view written() const { return {reinterpret_cast<const char*>(_out.GetBufferPointer()), _out.GetSize()}; }
  Offset<flatbuffers::String> text(std::string_view content) {
    return _out.CreateSharedString(content.data(), content.size());
  }
  Offset<flatbuffers::String> text(const QORString& content) { return text(content.view()); }

  template <class Table, class Items, class Make>
  TablesOffset<Table> list(const Items& items, Make make) {
    std::vector<Offset<Table>> offsets;
    offsets.reserve(items.size());
    for (const auto& item : items) offsets.push_back(make(item));
    return _out.CreateVector(offsets);
  }

  static std::uint8_t codeOf(const QORSmrPtr<IQoriType>& type) {
    return static_cast<std::uint8_t>(CQoriType::codeOf(*type));
  }
  template <class Flavored>
  static std::uint8_t flavorsOf(const Flavored& flavored) {
    return static_cast<std::uint8_t>((flavored.toSubclass ? 1U : 0U) | (flavored.overridable ? 2U : 0U) |
                                     (flavored.translatable ? 4U : 0U));
  }

  // --- values

  Offset<mofcache::Value> value(const QORSmrPtr<IQoriValue>& given, int depth) {
    if (depth > kMaximumValueDepth) throw std::runtime_error("values are nested too deeply to be kept");
    if (given.IsNull()) return 0;
    const std::uint8_t type = codeOf(given->getType());
    const QoriScalar scalar = given->scalar();
    switch (scalar.kind) {
      case QoriScalarKind::Boolean:
        return mofcache::CreateValue(_out, mofcache::Kind_Boolean, type, scalar.b ? 1 : 0);
      case QoriScalarKind::Unsigned:
        return mofcache::CreateValue(_out, mofcache::Kind_Unsigned, type, scalar.u);
      case QoriScalarKind::Signed:
        return mofcache::CreateValue(_out, mofcache::Kind_Signed, type, static_cast<QORuint64>(scalar.s));
      case QoriScalarKind::Real:
        return mofcache::CreateValue(_out, mofcache::Kind_Real, type, std::bit_cast<QORuint64>(scalar.r));
      case QoriScalarKind::Char16:
        return mofcache::CreateValue(_out, mofcache::Kind_Char16, type, scalar.c);
      case QoriScalarKind::Text:
      case QoriScalarKind::DateTime:
        return mofcache::CreateValue(_out, mofcache::Kind_Text, type, 0, text(*scalar.text));
      default:
        return complex(*given, type, depth);
    }
  }

  Offset<mofcache::Value> complex(const IQoriValue& given, std::uint8_t type, int depth) {
    if (given.isArray()) return array(given, type, depth);
    if (const QORSmrPtr<IQoriInstanceName> named = given.getReference(); !named.IsNull()) {
      return mofcache::CreateValue(_out, mofcache::Kind_Reference, type, 0, 0, 0, name(*named, depth));
    }
    const auto found = _record.objects.find(given.getObject().Get());
    if (found == _record.objects.end()) throw std::runtime_error("an embedded object is not one of the load");
    const MofRecord::Object& object = found->second;
    if (object.isClass) {
      const auto kept = definition(object.definition.nameSpace, object.definition.declaration);
      return mofcache::CreateValue(_out, mofcache::Kind_Definition, type, 0, 0, 0, 0, 0, kept);
    }
    const auto kept = instance(object.instance.nameSpace, object.instance.declaration, depth);
    return mofcache::CreateValue(_out, mofcache::Kind_Instance, type, 0, 0, 0, 0, kept);
  }

  Offset<mofcache::Value> array(const IQoriValue& given, std::uint8_t type, int depth) {
    std::vector<Offset<mofcache::Value>> elements;
    QORValSlistIterator<QORSmrPtr<IQoriValue>> each(*given.getArray());
    while (++each) {
      // A vector holds no absent tables.
      elements.push_back(each.key().IsNull() ? mofcache::CreateValue(_out, mofcache::Kind_Null)
                                             : value(each.key(), depth + 1));
    }
    return mofcache::CreateValue(_out, mofcache::Kind_Array, type, 0, 0, _out.CreateVector(elements));
  }

  Offset<mofcache::Name> name(const IQoriInstanceName& given, int depth) {
    std::vector<Offset<mofcache::Key>> keys;
    QORValSlistIterator<QORSmrPtr<IQoriProperty>> each(*given.getKeys());
    while (++each) {
      const auto content = value(each.key()->getValue(), depth + 1);
      keys.push_back(mofcache::CreateKey(_out, text(each.key()->getName()), content));
    }
    const auto list = _out.CreateVector(keys);
    const IQoriNameSpacePath& path = *given.getNameSpacePath();
    return mofcache::CreateName(_out, text(path.getHost()), text(path.getNameSpace()), text(given.getClassName()),
                                list);
  }

  // --- declarations

  Offset<mofcache::Form> form(const MofRecord::Form& given) {
    const auto names = list<flatbuffers::String>(given.names, [this](const QORString& name) { return text(name); });
    return mofcache::CreateForm(_out, text(given.nameSpace), text(given.className), names);
  }

  Offset<mofcache::Instance> instance(const QORString& nameSpace, const CimInstanceDeclaration& given, int depth) {
    const auto properties = list<mofcache::Key>(given.properties, [this, depth](const CimInstanceProperty& property) {
      const auto content = value(property.value, depth + 1);
      return mofcache::CreateKey(_out, text(property.name), content);
    });
    return mofcache::CreateInstance(_out, text(nameSpace), text(given.className), properties);
  }

  TablesOffset<mofcache::Qualifier> qualifiers(const std::vector<CimQualifier>& given) {
    return list<mofcache::Qualifier>(given, [this](const CimQualifier& qualifier) {
      const auto content = value(qualifier.value, 0);
      return mofcache::CreateQualifier(_out, text(qualifier.name), content, flavorsOf(qualifier));
    });
  }

  Offset<mofcache::Feature> feature(const CimPropertyDeclaration& given) {
    const auto content = value(given.defaultValue, 0);
    const auto own = qualifiers(given.qualifiers);
    return mofcache::CreateFeature(_out, text(given.name), codeOf(given.type), given.type->isArray(), given.arraySize,
                                   text(given.referenceClass), content, own, given.isDefaultNull);
  }

  Offset<mofcache::Method> method(const CimMethodDeclaration& given) {
    const auto parameters = list<mofcache::Feature>(
        given.parameters, [this](const CimPropertyDeclaration& parameter) { return feature(parameter); });
    const auto own = qualifiers(given.qualifiers);
    return mofcache::CreateMethod(_out, text(given.name), codeOf(given.returnType), parameters, own);
  }

  Offset<mofcache::Definition> definition(const QORString& nameSpace, const CimClassDeclaration& given) {
    const auto own = qualifiers(given.qualifiers);
    const auto properties = list<mofcache::Feature>(
        given.properties, [this](const CimPropertyDeclaration& property) { return feature(property); });
    const auto methods = list<mofcache::Method>(
        given.methods, [this](const CimMethodDeclaration& operation) { return method(operation); });
    return mofcache::CreateDefinition(_out, text(nameSpace), text(given.name), text(given.superClass), own, properties,
                                      methods);
  }

  Offset<mofcache::QualifierDeclaration> declaration(const QORString& nameSpace, const CimQualifierDeclaration& given) {
    const auto content = value(given.defaultValue, 0);
    const auto scopes = list<flatbuffers::String>(given.scopes, [this](const QORString& scope) { return text(scope); });
    return mofcache::CreateQualifierDeclaration(_out, text(nameSpace), text(given.name), codeOf(given.type),
                                                given.type->isArray(), given.arraySize, content, scopes,
                                                flavorsOf(given));
  }

  const MofRecord& _record;
  std::vector<Heading> _headings;
  flatbuffers::FlatBufferBuilder _out;
};

}  // namespace

void appendMofCacheRow(MofCacheOutput& output, std::string_view row) {
  const QORuint32 length = static_cast<QORuint32>(row.size());
  output.append({reinterpret_cast<const char*>(&length), sizeof length});
  output.append(row);
}

void appendMofCacheRecord(MofCacheOutput& output, const MofRecord& record, const std::vector<MofInput>& inputs,
                          const std::string& key) {
  const auto pad = [&output] { output.append(std::string(paddedSize(output.size()) - output.size(), '\0')); };
  Writer writer(record);
  pad();
  const QORuint64 begin = output.size();
  writer.writeClasses([&output, &pad](std::string_view tables) {
    output.append(tables);
    pad();
  });
  const QORuint64 classes = output.size() - begin;
  const std::string_view rest = writer.write(inputs, key);
  output.append(rest);
  pad();
  for (const QORuint64 size : {classes, QORuint64{rest.size()}}) {
    output.append({reinterpret_cast<const char*>(&size), sizeof size});
  }
}
