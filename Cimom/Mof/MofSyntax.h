// What MOF text says, before it is given meaning: the declarations as they are
// written, with their places.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFSYNTAX_H
#define QORQL_MOF_MOFSYNTAX_H

#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Cimom/Mof/MofRows.h"
#include "Cimom/Mof/MofSource.h"
#include "cmpbase.h"

// Instance values inside instance values and inside embedded texts, aliases in
// keys, and references in keys of references may nest this deep.
inline constexpr QORuint32 kMofMaximumNesting = 32;

struct MofName {
  QORString text;
  MofLocation at;
};

struct MofInstanceSyntax;

struct MofValueSyntax {
  enum class Kind { Null, Boolean, Integer, Real, Char16, Text, Alias, Array, Instance };

  Kind kind = Kind::Null;
  bool flag = false;  // Boolean: the value; Integer: negative
  char16_t character = 0;
  QORuint64 magnitude = 0;
  QORreal64 real = 0;
  QORString text;  // Text: the value; Alias: its name; numbers: as written
  std::vector<MofValueSyntax> elements;
  std::unique_ptr<MofInstanceSyntax> instance;
  MofLocation at;
};

enum class MofFlavor { EnableOverride, DisableOverride, ToSubclass, Restricted, Translatable };

struct MofQualifierSyntax {
  MofName name;
  bool hasValue = false;
  MofValueSyntax value;
  std::vector<MofFlavor> flavors;
};

struct MofQualifierDeclarationSyntax {
  QORString nameSpace;
  MofName name;
  MofName type;
  bool isArray = false;
  QORsint32 arraySize = -1;
  bool hasDefault = false;
  MofValueSyntax defaultValue;
  std::vector<QORString> scopes;
  std::vector<MofFlavor> flavors;
};

// A property, a reference or a parameter.
struct MofFeatureSyntax {
  MofName name;
  MofName type;  // of a reference: the class
  bool isReference = false;
  bool isArray = false;
  QORsint32 arraySize = -1;
  bool hasDefault = false;
  MofValueSyntax defaultValue;
  std::vector<MofQualifierSyntax> qualifiers;
};

struct MofMethodSyntax {
  MofName name;
  MofName type;
  std::vector<MofFeatureSyntax> parameters;
  std::vector<MofQualifierSyntax> qualifiers;
};

struct MofClassSyntax {
  QORString nameSpace;
  QORuint32 scope = 0;  // the alias scope it belongs to
  MofName name;
  MofName superClass;  // an empty text at the root
  std::vector<MofQualifierSyntax> qualifiers;
  std::vector<MofFeatureSyntax> properties;
  std::vector<MofMethodSyntax> methods;
};

struct MofPropertySyntax {
  MofName name;
  MofValueSyntax value;
};

struct MofInstanceSyntax {
  QORString nameSpace;
  QORuint32 scope = 0;  // the alias scope it belongs to
  MofLocation at;
  MofName className;
  MofName alias;  // an empty text when it has none
  std::vector<MofPropertySyntax> properties;
};

// A list that is being read. Its elements wait on a stack, which all lists of their kind share, so that the list itself
// is allocated once, in its size. REQUIRES that lists are ended in the reverse order of their beginning.
template <class Element>
class MofListReader {
 public:
  explicit MofListReader(std::vector<Element>& stack) noexcept : _stack(stack), _start(stack.size()) {}
  MofListReader(const MofListReader&) = delete;
  MofListReader& operator=(const MofListReader&) = delete;
  ~MofListReader() { _stack.erase(begin(), _stack.end()); }

  void add(Element&& element) { _stack.push_back(std::move(element)); }
  // Moves what was added.
  std::vector<Element> take() {
    return std::vector<Element>(std::make_move_iterator(begin()), std::make_move_iterator(_stack.end()));
  }

 private:
  auto begin() const noexcept { return _stack.begin() + static_cast<std::ptrdiff_t>(_start); }

  std::vector<Element>& _stack;
  const std::size_t _start;
};

// Gives one string to the names that occur again and again in a load.
class MofNamePool {
 public:
  QORString nameOf(std::string_view name);

 private:
  std::array<QORString, 1024> _recent;  // the last one of each hash
};

// A name in the form in which names are compared.
std::string foldMofName(const QORString& name);

// Maps whose keys are names: found as written, without a folded copy. Keys are kept as first written.
struct MofNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const noexcept;
};
struct MofNameEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept { return QORString::equalIgnoringCase(a, b); }
};
template <class Value>
using MofNameMap = std::unordered_map<std::string, Value, MofNameHash, MofNameEqual>;

// An instance of a document: what is written, or, where that is plain, a row.
struct MofInstanceEntry {
  std::unique_ptr<MofInstanceSyntax> syntax;  // null: a row, which stands for the text at this place
  MofRow row;
};

// All that one load declares, in the order of the text. Instances have fixed
// addresses.
struct MofDocument {
  MofNamePool names;
  QORSlabs texts;  // of qualifiers, which live as long as their classes
  std::vector<std::unique_ptr<MofSource>> sources;
  std::vector<QORString> nameSpaces;
  std::vector<MofQualifierDeclarationSyntax> qualifiers;
  std::vector<std::unique_ptr<MofClassSyntax>> classes;
  std::vector<MofInstanceEntry> instances;
  MofRows rows;

  // Names (folded) whose declaration is refused: what depends on them is passed
  // over in silence, unless the load is lenient, so that one fault gives one diagnostic.
  std::unordered_set<std::string> refusedClasses;
  std::unordered_set<std::string> refusedAliases;
  // A file is missing: it may declare any unknown name.
  bool isIncomplete = false;

  // Marks the class, and whatever depends on it, as refused.
  void refuseClass(const QORString& name);
  void refuseAlias(const QORString& name);
  // Whether the class, or the instance with the alias, is refused.
  bool hasRefusedClass(const QORString& name) const {
    return !refusedClasses.empty() && refusedClasses.contains(foldMofName(name));
  }
  bool hasRefusedAlias(const QORString& name) const { return refusedAliases.contains(foldMofName(name)); }
};

// The subject of faults about an undeclared class.
std::string subjectOfMofClass(const QORString& nameSpace, const QORString& name);
// The namespace in a path such as "root/cimv2", "/root/cimv2" or
// "//./root/cimv2", whose host is skipped; empty when it is none.
QORString localMofNameSpace(std::string_view path);
// Whether a string and a word of the language are equal, ignoring case.
bool isMofWord(std::string_view text, const char* word) noexcept;

#endif
