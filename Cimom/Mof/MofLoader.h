// Loads MOF (version 2 syntax) into an object manager.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFLOADER_H
#define QORQL_MOF_MOFLOADER_H

#include <string>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofError.h"
#include "Cimom/Mof/MofInput.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// Reads MOF files and texts: qualifiers, classes, instances, and the pragmas
// include (a path relative to the file that it stands in), namespace and
// locale (ignored, as other pragmas are). Texts are UTF-8, with or without byte
// order mark, or UTF-16 with one; lines may end either way.
//
// Each load is one transaction: either all of it is stored or, with a
// MofException that lists up to 20 faults, nothing. Within a load the order does
// not matter: classes come before their subclasses, qualifiers before their
// uses, and aliases and paths may be used before their instances. Classes and
// instances are declared in the order of the text, but a superclass before its
// subclasses. A file that several others include is read once for each
// namespace.
//
// A lenient load stores what is sound and leaves out each declaration with a
// fault, and what cannot be without it: a class whose superclass is left out, an
// instance of such a class, a reference to an alias without instance. It reads
// the Windows forms of MOF as well.
//
// A namespace that a pragma names holds from there to the end of the outermost
// file, as if included text stood in the place of its pragma; it is created when
// it does not exist. Aliases belong to the outermost file and what it includes.
//
// Time and memory grow linearly with the text. One loader belongs to one thread
// at a time. BORROWS the sink, which outlives the loader.
class MofLoader {
 public:
  // The namespace is where texts declare until a pragma names another; it is created when it does not exist.
  explicit MofLoader(CimDeclarationSink& sink, QORString nameSpace = "root/cimv2");

  // Loads from now on are lenient or not, at first they are not.
  void setLenient(bool isLenient) noexcept { _isLenient = isLenient; }
  // Whether loads from now on note what they read, which takes time; at first they do not.
  void setNotesInputs(bool notesInputs) noexcept { _notesInputs = notesInputs; }
  // What the last lenient load or reading left out.
  const MofFaults& getFaults() const noexcept { return _faults; }

  // A file; or a folder: every .mof in it, in the order of their names. THROWS MofException.
  void loadFile(const std::string& path);
  // The same for several files and folders, as one transaction. THROWS MofException, a lenient load only when one of
  // them cannot be read.
  void loadFiles(const std::vector<std::string>& paths);
  // What the last loadFile() or loadFiles() read, includes among it; empty unless it is noted.
  const std::vector<MofInput>& getInputs() const noexcept { return _inputs; }
  // A text; includes in it are relative to the working folder, or to the folder
  // of the name when that is a path. THROWS MofException.
  void loadText(std::string_view text, const std::string& nameForMessages);

  // The instances of a text or file in their order, as objects that are not
  // stored and need no keys. Nothing else may be declared in it, their classes
  // exist already. THROWS MofException.
  std::vector<QORSmrPtr<IQoriObject>> readInstances(std::string_view text, const std::string& nameForMessages);
  std::vector<QORSmrPtr<IQoriObject>> readInstanceFile(const std::string& path);

 private:
  class Load;

  CimDeclarationSink& _sink;
  QORString _nameSpace;
  bool _isLenient = false;
  bool _notesInputs = false;
  std::vector<MofInput> _inputs;
  MofFaults _faults;
};

#endif
