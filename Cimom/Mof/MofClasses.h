// Classes of a document on their way to the repository.
// Tested by tests/unit/Mof/MofClassTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFCLASSES_H
#define QORQL_MOF_MOFCLASSES_H

#include <string>
#include <unordered_map>

#include "Cimom/Embedded/CimDeclarationRefusal.h"
#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofQualifiers.h"
#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofSyntax.h"
#include "Cimom/Mof/MofValues.h"

// Declares the classes in the order of the text, but a superclass before the
// classes derived from it, wherever it stands. Belongs to one load.
class MofClasses {
 public:
  MofClasses(CimDeclarationSink& sink, MofDocument& document, MofReport& report, MofQualifiers& qualifiers,
             MofValues& values)
      : _sink(sink), _document(document), _report(report), _qualifiers(qualifiers), _values(values) {}

  void declareAll();
  // A class that is the value of an embedded object. THROWS MofFault, without a
  // place when the faults are in the report.
  QORSmrPtr<IQoriObject> makeObject(const MofClassSyntax& syntax);

 private:
  enum class State { Waiting, Open, Done };
  struct Pending {
    MofClassSyntax* syntax = nullptr;
    State state = State::Waiting;
    bool isCircular = false;                   // it is its own superclass
    const MofClassSyntax* declared = nullptr;  // the declaration that the sink has taken
  };

  static std::string keyOf(const QORString& nameSpace, const QORString& name);
  void declareWithSuperClasses(Pending& lowest);
  // `first`: the first declaration of the class's name.
  void declareOnce(MofClassSyntax& syntax, Pending& first);
  void declare(const MofClassSyntax& syntax, Pending& first);
  bool submit(const MofClassSyntax& syntax, const CimClassDeclaration& declaration, bool isSound);
  bool hasSuperClass(const MofClassSyntax& syntax);
  void addFaults(const MofClassSyntax& syntax, const CimDeclarationRefusal& refusal);
  bool checkOverridingReferences(const MofClassSyntax& syntax);
  bool isA(const QORString& nameSpace, const QORString& className, const QORString& ancestor) const;
  std::string placeOfEarlier(const MofClassSyntax& syntax) const;
  bool build(const MofClassSyntax& syntax, CimClassDeclaration& out);
  bool buildMethod(const MofClassSyntax& owner, const MofMethodSyntax& syntax, CimMethodDeclaration& out);
  bool buildFeature(const MofClassSyntax& owner, const MofFeatureSyntax& syntax, bool isParameter,
                    CimPropertyDeclaration& out);
  void setType(const MofFeatureSyntax& syntax, CimPropertyDeclaration& out) const;
  void setDefault(const MofClassSyntax& owner, const MofFeatureSyntax& syntax, CimPropertyDeclaration& out);
  bool hasInheritedDefault(const MofClassSyntax& owner, const QORString& name) const;

  CimDeclarationSink& _sink;
  MofDocument& _document;
  MofReport& _report;
  MofQualifiers& _qualifiers;
  MofValues& _values;
  std::unordered_map<std::string, Pending> _pending;  // first declaration of each class, by namespace and name
};

#endif
