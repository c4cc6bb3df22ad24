// The tables are checked when they are read: those of a class when it is declared, the others at once. Their content is
// not trusted more than a MOF text is: the sink checks every declaration.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofCacheReader.h"

#include <MofCacheFormat_generated.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Mof/MofCacheDeclarations.h"
#include "Cimom/Mof/MofSyntax.h"

namespace {

// Rows, and what stands behind them, end where this divides their size: fewer bytes behind the last one are a gap.
constexpr std::size_t kUnit = 8;

const mofcache::Load& loadIn(std::string_view tables) { return *mofcache::GetLoad(tables.data()); }

// The buffers of the classes. BORROWS the bytes.
class KeptClasses {
 public:
  KeptClasses(const mofcache::Load& load, std::string_view bytes) : _headings(*load.classes()), _bytes(bytes) {}

  QORuint32 size() const { return _headings.size(); }
  const mofcache::Heading& heading(QORuint32 number) const { return *_headings.Get(number); }
  // THROWS std::runtime_error when the buffer is damaged or holds another class than the heading tells.
  CimClassDeclaration read(QORuint32 number, MofCacheDeclarations& tables) const {
    const mofcache::Heading& heading = this->heading(number);
    if (heading.offset() > _bytes.size() || heading.offset() % kUnit != 0 ||
        heading.size() > _bytes.size() - heading.offset()) {
      refuseMofCache("its content is damaged");
    }
    const auto& kept = checkedMofCacheTables<mofcache::Definition>(_bytes.substr(heading.offset(), heading.size()));
    if (kept.name()->string_view() != heading.name()->string_view() || !hasSuperClass(kept, heading)) {
      refuseMofCache("a class that is not the one of its heading");
    }
    return tables.definition(kept);
  }

 private:
  bool hasSuperClass(const mofcache::Definition& kept, const mofcache::Heading& heading) const {
    const std::string_view name = kept.super_class()->string_view();
    if (heading.super_class() < 0) return name.empty() == (heading.super_class() == CimClassHeading::kNoSuperClass);
    const auto number = static_cast<QORuint32>(heading.super_class());
    return QORString::equalIgnoringCase(name, this->heading(number).name()->string_view());
  }

  const flatbuffers::Vector<flatbuffers::Offset<mofcache::Heading>>& _headings;
  std::string_view _bytes;
};

// Reads a class when it is asked for.
class ClassSource final : public CimDeclarationSource {
 public:
  ClassSource(const KeptClasses& classes, std::shared_ptr<const void> owner, MofCacheReader::Text text)
      : _classes(classes), _owner(std::move(owner)), _text(std::move(text)) {}

  CimClassDeclaration read(QORuint32 number) override {
    MofCacheDeclarations tables(nullptr);
    return _classes.read(number, tables);
  }
  CimClassDeclaration readElsewhere(QORuint32 number) override {
    const mofcache::Heading& heading = _classes.heading(number);
    const QORString name(heading.name()->string_view());
    if (_text) return _text(QORString(heading.name_space()->string_view()), name);
    throw QoriBaseException("CIM_Repository", "MofCache", "", "class " + name + ": the cache is damaged", 1);
  }

 private:
  const KeptClasses _classes;
  const std::shared_ptr<const void> _owner;  // of the bytes
  const MofCacheReader::Text _text;
};

class Reader {
 public:
  // `owner` of the bytes: null when nothing is to be left for later.
  Reader(const mofcache::Load& load, const KeptClasses& classes, std::string_view rows, CimDeclarationSink& sink,
         const std::shared_ptr<const void>& owner)
      : _load(load), _classes(classes), _rows(rows), _sink(sink), _owner(owner), _tables(&sink) {}

  void declareAll(const MofCacheReader::Text& text) {
    for (const auto* const nameSpace : *_load.name_spaces()) _sink.createNamespace(_tables.text(nameSpace));
    for (const auto* const given : *_load.qualifiers()) {
      _sink.declareQualifier(_tables.text(given->name_space()), _tables.qualifier(*given));
    }
    if (!declareLater(text)) declareClasses();
    createInstances();
  }

 private:
  // --- classes

  bool declareLater(const MofCacheReader::Text& text) {
    std::vector<CimClassHeading> headings;
    const bool isPossible = makeHeadings(headings) && _owner != nullptr;
    return isPossible && _sink.declareClasses(headings, std::make_shared<ClassSource>(_classes, _owner, text));
  }

  // False when some derive from classes of elsewhere, which may be others by now.
  bool makeHeadings(std::vector<CimClassHeading>& headings) {
    bool isComplete = true;
    headings.reserve(_classes.size());
    for (QORuint32 i = 0; i < _classes.size(); ++i) {
      const mofcache::Heading& given = _classes.heading(i);
      const QORsint32 superClass = given.super_class();
      if (!isEarlier(superClass, given, i)) refuseMofCache("a superclass that does not come before its class");
      isComplete = isComplete && superClass != kSuperClassElsewhere;
      headings.push_back({_tables.text(given.name_space()), QORString(given.name()->string_view()), superClass});
    }
    return isComplete;
  }

  // Or that there is none to look for.
  bool isEarlier(QORsint32 superClass, const mofcache::Heading& of, QORuint32 number) const {
    if (superClass < 0) return superClass >= kSuperClassElsewhere;
    if (static_cast<QORuint32>(superClass) >= number) return false;
    const mofcache::Heading& above = _classes.heading(static_cast<QORuint32>(superClass));
    return QORString::equalIgnoringCase(above.name_space()->string_view(), of.name_space()->string_view());
  }

  void declareClasses() {
    MofCacheDeclarations tables(nullptr);
    std::unordered_set<std::string> names;
    for (QORuint32 i = 0; i < _classes.size(); ++i) {
      const mofcache::Heading& heading = _classes.heading(i);
      if (!names.insert(keyOf(*heading.name_space(), *heading.name())).second) refuseMofCache("a class occurs twice");
      _sink.declareClass(_tables.text(heading.name_space()), _classes.read(i, tables));
    }
  }

  // --- instances in their order

  void createInstances() {
    if (_load.order() == nullptr) refuseMofCache("the order of its instances is missing");
    _isLater = isForLater();
    for (const mofcache::Run* const run : *_load.order()) {
      if (run->form() < 0) {
        createListed(run->count());
      } else {
        createRows(static_cast<std::size_t>(run->form()), run->count());
      }
    }
    if (_listed != _load.instances()->size() || _rows.size() >= kUnit) refuseMofCache("instances that belong nowhere");
  }

  // Long runs of rows alone: any other instance needs those before it.
  bool isForLater() const {
    constexpr std::size_t kLeastRun = 64;
    const auto isLong = [](const mofcache::Run* run) { return run->form() >= 0 && run->count() >= kLeastRun; };
    return _owner != nullptr && std::all_of(_load.order()->begin(), _load.order()->end(), isLong) && hasOwnClasses();
  }

  // Whether the classes of the rows are declared here, up to their roots. The keys of others may have changed since the
  // rows were found to have different paths.
  bool hasOwnClasses() const {
    if (_load.forms() == nullptr || _load.forms()->size() == 0) return true;
    std::unordered_map<std::string, flatbuffers::uoffset_t> numbers;
    for (flatbuffers::uoffset_t i = 0; i < _load.classes()->size(); ++i) {
      const mofcache::Heading& heading = *_load.classes()->Get(i);
      numbers.emplace(keyOf(*heading.name_space(), *heading.name()), i);
    }
    return std::all_of(_load.forms()->begin(), _load.forms()->end(), [&](const mofcache::Form* form) {
      const auto found = numbers.find(keyOf(*form->name_space(), *form->class_name()));
      return found != numbers.end() && isOwnLine(found->second);
    });
  }
  // Superclasses have been found to come before.
  bool isOwnLine(flatbuffers::uoffset_t number) const {
    QORsint32 superClass = _load.classes()->Get(number)->super_class();
    while (superClass >= 0) {
      superClass = _load.classes()->Get(static_cast<flatbuffers::uoffset_t>(superClass))->super_class();
    }
    return superClass == CimClassHeading::kNoSuperClass;
  }
  static std::string keyOf(const flatbuffers::String& nameSpace, const flatbuffers::String& name) {
    return foldMofName(QORString(nameSpace.str().append(1, ':').append(name.str())));
  }

  void createListed(QORuint32 count) {
    if (count > _load.instances()->size() - _listed) refuseMofCache("an instance is missing");
    for (; count != 0; --count) {
      const mofcache::Instance& given = *_load.instances()->Get(_listed++);
      _sink.createInstance(_tables.text(given.name_space()), _tables.instance(given));
    }
  }

  void createRows(std::size_t form, QORuint32 count) {
    CimInstanceMaker& maker = makerOf(form);
    const std::string_view from = _rows;
    std::string_view row;
    for (QORuint32 i = 0; i < count; ++i) {
      if (!takeCimRow(_rows, row)) refuseMofCache("a row is missing");
      if (!_isLater && !maker.create(row)) refuseMofCache("a row does not fit its class");
    }
    const std::string_view run = from.substr(0, from.size() - _rows.size());
    if (_isLater && !maker.createLater(run, count, _owner)) refuseMofCache("a row does not fit its class");
  }

  CimInstanceMaker& makerOf(std::size_t form) {
    if (_load.forms() == nullptr || form >= _load.forms()->size()) refuseMofCache("an unknown form of rows");
    if (_makers.size() <= form) _makers.resize(_load.forms()->size());
    if (_makers[form] == nullptr) {
      const mofcache::Form& given = *_load.forms()->Get(static_cast<flatbuffers::uoffset_t>(form));
      std::vector<QORString> names;
      for (const auto* const name : *given.names()) names.push_back(_tables.text(name));
      _makers[form] = _sink.instanceMaker(_tables.text(given.name_space()), _tables.text(given.class_name()), names);
    }
    if (_makers[form] == nullptr) refuseMofCache("rows of a class that takes none");
    return *_makers[form];
  }

  const mofcache::Load& _load;
  const KeptClasses& _classes;
  std::string_view _rows;  // those that have not been read
  CimDeclarationSink& _sink;
  const std::shared_ptr<const void>& _owner;
  MofCacheDeclarations _tables;
  bool _isLater = false;
  std::vector<std::unique_ptr<CimInstanceMaker>> _makers;  // by form; null: not made yet
  flatbuffers::uoffset_t _listed = 0;                      // so many of the load's listed instances have been made
};

}  // namespace

// At the end stand two sizes; what they measure lies in front of them, each padded.
MofCacheReader::MofCacheReader(std::string_view bytes) {
  std::array<QORuint64, 2> sizes{};
  if (bytes.size() < sizeof sizes || bytes.size() % kUnit != 0) refuseMofCache("its content is damaged");
  bytes.remove_suffix(sizeof sizes);
  std::memcpy(sizes.data(), bytes.data() + bytes.size(), sizeof sizes);
  const auto takeLast = [&bytes](QORuint64 size) {
    const std::size_t gap = (kUnit - size % kUnit) % kUnit;
    if (size > bytes.size() || gap > bytes.size() - size) refuseMofCache("its content is damaged");
    const std::size_t begin = bytes.size() - gap - static_cast<std::size_t>(size);
    const std::string_view taken = bytes.substr(begin, static_cast<std::size_t>(size));
    bytes = bytes.substr(0, begin);
    return taken;
  };
  _tables = takeLast(sizes[1]);
  _classes = takeLast(sizes[0]);
  _rows = bytes;
  checkedMofCacheTables<mofcache::Load>(_tables);
}

std::string MofCacheReader::key() const { return loadIn(_tables).key()->str(); }

QORsint64 MofCacheReader::written() const { return loadIn(_tables).written(); }

std::vector<MofInput> MofCacheReader::inputs() const {
  std::vector<MofInput> inputs;
  inputs.reserve(loadIn(_tables).inputs()->size());
  for (const auto* const input : *loadIn(_tables).inputs()) {
    inputs.push_back({input->path()->str(), input->is_folder(), input->size(), input->modified(), input->hash()});
  }
  return inputs;
}

void MofCacheReader::declare(CimDeclarationSink& sink, const std::shared_ptr<const void>& owner,
                             const Text& text) const {
  const mofcache::Load& load = loadIn(_tables);
  const KeptClasses classes(load, _classes);
  sink.begin();
  try {
    Reader(load, classes, _rows, sink, owner).declareAll(text);
    sink.commit();
  } catch (...) {
    sink.rollback();
    throw;
  }
}
