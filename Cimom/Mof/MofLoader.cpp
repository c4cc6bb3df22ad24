// A load has two passes: all texts are read into one document, then the document
// is declared, qualifiers first, then classes, then instances.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofLoader.h"

#include <utility>

#include "Cimom/Mof/MofClasses.h"
#include "Cimom/Mof/MofInstances.h"
#include "Cimom/Mof/MofQualifiers.h"
#include "Cimom/Mof/MofReader.h"
#include "Cimom/Mof/MofValues.h"

// One load: its document, its faults and what becomes of them.
class MofLoader::Load {
 public:
  Load(CimDeclarationSink& sink, const QORString& nameSpace)
      : _sink(sink),
        _nameSpace(nameSpace),
        _reader(_document, _report, nameSpace),
        _values(sink, _document, _report),
        _qualifiers(sink, _report),
        _classes(sink, _document, _report, _qualifiers, _values) {
    _values.setClassMaker([this](const MofClassSyntax& definition) { return _classes.makeObject(definition); });
  }
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;

  MofReader& reader() noexcept { return _reader; }

  void store() {
    _sink.begin();
    try {
      declare();
      _report.raise();
      _sink.commit();
    } catch (...) {
      _sink.rollback();
      throw;
    }
  }

  std::vector<QORSmrPtr<IQoriObject>> makeObjects() {
    for (const auto& declared : _document.classes) {
      _report.add(declared->name.at, "a class cannot be declared here, only instances");
    }
    for (const MofQualifierDeclarationSyntax& declared : _document.qualifiers) {
      _report.add(declared.name.at, "a qualifier cannot be declared here, only instances");
    }
    MofInstances instances(_sink, _document, _report, _values);
    shareAliases(instances);
    std::vector<QORSmrPtr<IQoriObject>> objects = instances.makeObjects();
    _report.raise();
    return objects;
  }

 private:
  void declare() {
    _sink.createNamespace(_nameSpace);
    for (const QORString& nameSpace : _document.nameSpaces) _sink.createNamespace(nameSpace);
    for (const MofQualifierDeclarationSyntax& declaration : _document.qualifiers) _qualifiers.declare(declaration);
    MofInstances instances(_sink, _document, _report, _values);
    shareAliases(instances);
    _classes.declareAll();
    instances.createAll();
  }

  void shareAliases(MofInstances& instances) {
    for (const MofReader::Import& import : _reader.getImports()) _values.importScope(import.into, import.from);
    instances.defineAliases();
  }

  CimDeclarationSink& _sink;
  const QORString _nameSpace;
  MofDocument _document;
  MofReport _report;
  MofReader _reader;
  MofValues _values;
  MofQualifiers _qualifiers;
  MofClasses _classes;
};

MofLoader::MofLoader(CimDeclarationSink& sink, QORString nameSpace) : _sink(sink), _nameSpace(std::move(nameSpace)) {}

void MofLoader::loadFile(const std::string& path) { loadFiles({path}); }

void MofLoader::loadFiles(const std::vector<std::string>& paths) {
  Load load(_sink, _nameSpace);
  for (const std::string& path : paths) load.reader().readPath(path);
  load.store();
  _inputs = load.reader().getInputs();
}

void MofLoader::loadText(std::string_view text, const std::string& nameForMessages) {
  Load load(_sink, _nameSpace);
  load.reader().readText(text, nameForMessages);
  load.store();
}

std::vector<QORSmrPtr<IQoriObject>> MofLoader::readInstances(std::string_view text,
                                                             const std::string& nameForMessages) {
  Load load(_sink, _nameSpace);
  load.reader().readText(text, nameForMessages);
  return load.makeObjects();
}

std::vector<QORSmrPtr<IQoriObject>> MofLoader::readInstanceFile(const std::string& path) {
  Load load(_sink, _nameSpace);
  load.reader().readPath(path);
  return load.makeObjects();
}
