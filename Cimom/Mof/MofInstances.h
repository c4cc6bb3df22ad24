// Instances of a document on their way to the object manager.
// Tested by tests/unit/Mof/MofInstanceTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFINSTANCES_H
#define QORQL_MOF_MOFINSTANCES_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

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
  // The instances as objects that are not stored; they need no keys.
  std::vector<QORSmrPtr<IQoriObject>> makeObjects();

 private:
  void create(const MofInstanceSyntax& instance);
  std::string describeEarlier(const MofInstanceSyntax& instance);

  CimDeclarationSink& _sink;
  MofDocument& _document;
  MofReport& _report;
  MofValues& _values;
  std::vector<const MofInstanceSyntax*> _created;
  std::unordered_map<std::string, const MofInstanceSyntax*> _byPath;  // of those created, as far as it was needed
  std::size_t _indexed = 0;                                           // so many of them
};

#endif
