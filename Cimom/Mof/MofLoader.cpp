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
  explicit Load(MofLoader& loader)
      : _sink(loader._sink),
        _nameSpace(loader._nameSpace),
        _report(loader._isLenient),
        _reader(_document, _report, _nameSpace),
        _values(_sink, _document, _report),
        _qualifiers(_sink, _report),
        _classes(_sink, _document, _report, _qualifiers, _values) {
    _values.setClassMaker([this](const MofClassSyntax& definition) { return _classes.makeObject(definition); });
  }
  Load(const Load&) = delete;
  Load& operator=(const Load&) = delete;

  MofReader& reader() noexcept { return _reader; }
  MofFaults faults() const { return _report.faults(); }

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
  Load load(*this);
  load.reader().setMakesRows(true);
  load.reader().setNotesInputs(_notesInputs);
  for (const std::string& path : paths) load.reader().readPath(path);
  load.store();
  _inputs = load.reader().getInputs();
  _faults = load.faults();
}

void MofLoader::loadText(std::string_view text, const std::string& nameForMessages) {
  Load load(*this);
  load.reader().setMakesRows(true);
  load.reader().readText(text, nameForMessages);
  load.store();
  _faults = load.faults();
}

std::vector<QORSmrPtr<IQoriObject>> MofLoader::readInstances(std::string_view text,
                                                             const std::string& nameForMessages) {
  Load load(*this);
  load.reader().readText(text, nameForMessages);
  std::vector<QORSmrPtr<IQoriObject>> objects = load.makeObjects();
  _faults = load.faults();
  return objects;
}

std::vector<QORSmrPtr<IQoriObject>> MofLoader::readInstanceFile(const std::string& path) {
  Load load(*this);
  load.reader().readPath(path);
  std::vector<QORSmrPtr<IQoriObject>> objects = load.makeObjects();
  _faults = load.faults();
  return objects;
}
