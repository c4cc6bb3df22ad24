// Files of MOF with what they include.
// Tested by tests/unit/Mof/MofLoaderTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFREADER_H
#define QORQL_MOF_MOFREADER_H

#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Cimom/Mof/MofInput.h"
#include "Cimom/Mof/MofParser.h"
#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofSyntax.h"

// Reads files and texts into one document. A file is read once for each
// namespace in a load, even when several include it; one that names its namespace
// before it declares anything is read once. Each file or text that is read for
// itself has an alias scope of its own, which its includes share. Belongs to one load.
class MofReader {
 public:
  MofReader(MofDocument& document, MofReport& report, const QORString& nameSpace)
      : _document(document), _report(report), _nameSpace(nameSpace) {}

  // Whether plain instances become rows; at first they do not.
  void setMakesRows(bool makesRows) noexcept { _makesRows = makesRows; }
  // Whether it is kept what was read; at first it is not.
  void setNotesInputs(bool notesInputs) noexcept { _notesInputs = notesInputs; }
  // A file, or every .mof in a folder in the order of their names. Where a lenient load cannot read what it was
  // given, it THROWS MofException.
  void readPath(const std::string& path);
  void readText(std::string_view text, const std::string& name);

  // Scopes that use the aliases of other ones: a file included a file that was
  // read before in another scope.
  struct Import {
    QORuint32 into;
    QORuint32 from;
  };
  // Files and folders that were read, in the order of reading, where they are noted.
  const std::vector<MofInput>& getInputs() const noexcept { return _inputs; }
  const std::vector<Import>& getImports() const noexcept { return _imports; }

 private:
  void readFolder(const std::string& path);
  void readFile(const std::string& path);
  // `includer` is null for a file that is read for itself.
  void readOnce(const std::string& path, MofParser::Context& context, const MofLocation* includer);
  void readInclude(const std::string& named, const MofLocation& at, MofParser::Context& context);
  std::string canonicalPath(const std::string& path);
  bool isRead(const std::string& canonical, MofParser::Context& context);
  void parseOnce(const std::string& path, const std::string& canonical, std::string contents,
                 MofParser::Context& context);
  void parse(const std::string& name, std::string text, MofParser::Context& context);
  MofParser::Context newContext();
  void fail(const std::string& path, const MofLocation* includer, const std::string& message);
  std::string describeLoop(const std::string& path) const;

  MofDocument& _document;
  MofReport& _report;
  QORString _nameSpace;
  QORuint32 _scopes = 0;
  bool _makesRows = false;
  bool _notesInputs = false;
  std::unordered_map<std::string, std::string> _folders;    // canonical paths of folders
  std::unordered_map<std::string, QORuint32> _scopeOfFile;  // by canonical path, with or without a namespace
  std::unordered_set<std::string> _described;               // canonical paths of the files among the inputs
  bool _isFolderOpen = false;                               // the file that is read was found in a folder
  std::vector<std::string> _open;                           // canonical paths from the outermost file inwards
  std::vector<Import> _imports;
  std::vector<MofInput> _inputs;
};

#endif
