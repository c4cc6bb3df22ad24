// Instances of a document on their way to the object manager.
// Tested by tests/unit/Mof/MofInstanceTest.cpp, tests/unit/Mof/MofRowTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFINSTANCES_H
#define QORQL_MOF_MOFINSTANCES_H

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/CimDeclarationRows.h"
#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofSyntax.h"
#include "Cimom/Mof/MofValues.h"

// Creates the instances in the order of the text. Belongs to one load, after
// its classes have been declared.
class MofInstances {
 public:
  MofInstances(CimDeclarationSink& sink, MofDocument& document, MofReport& report, MofValues& values)
      : _sink(sink), _document(document), _report(report), _values(values) {}

  // Makes all aliases known, so that they may be used before their instances.
  void defineAliases();
  void createAll();
  // The instances as objects that are not stored; they need no keys. REQUIRES a document without rows.
  std::vector<QORSmrPtr<IQoriObject>> makeObjects();

 private:
  // How the rows of one form are stored.
  struct RowWay {
    bool isKnown = false;
    std::unique_ptr<CimInstanceMaker> maker;  // null: as any other instance
    std::vector<bool> isDateTime;             // by column; empty when none is
  };

  bool createRow(const MofRow& row);
  RowWay findWay(const MofRowForm& form);
  // What the row stands for, read again from the text: for what is not stored just so.
  std::unique_ptr<MofInstanceSyntax> readAgain(const MofRow& row);
  void create(const MofInstanceSyntax& instance);
  void createOrReport(const MofInstanceSyntax& instance);
  std::string describeEarlier(const MofInstanceSyntax& instance);
  void indexPath(const MofInstanceSyntax& instance);

  CimDeclarationSink& _sink;
  MofDocument& _document;
  MofReport& _report;
  MofValues& _values;
  std::vector<RowWay> _ways;                             // by form
  std::vector<std::size_t> _created;                     // places in the document
  std::size_t _current = 0;                              // that of the instance which is being created
  std::unordered_map<std::string, MofLocation> _byPath;  // of those created, as far as it was needed
  std::size_t _indexed = 0;                              // so many of them
};

#endif
