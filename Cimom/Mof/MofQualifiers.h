// What qualifiers mean: their types, values and flavors.
// Tested by tests/unit/Mof/MofClassTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFQUALIFIERS_H
#define QORQL_MOF_MOFQUALIFIERS_H

#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofSyntax.h"
#include "Cimom/Mof/MofType.h"

// Declares the qualifiers of a document and gives those on classes, properties,
// methods and parameters their meaning. A qualifier that the namespace does not
// declare has the standard's type and flavors when it is one of the standard's,
// otherwise the type of its value. Belongs to one load.
class MofQualifiers {
 public:
  // What a qualifier stands on.
  enum class Element { Class, Property, Reference, Method, Parameter, ReferenceParameter };

  MofQualifiers(CimDeclarationSink& sink, MofReport& report) : _sink(sink), _report(report) {}

  void declare(const MofQualifierDeclarationSyntax& syntax);
  // Faults go to the report; the return value tells whether there were none.
  bool resolve(const QORString& nameSpace, const std::vector<MofQualifierSyntax>& syntax, Element element,
               std::vector<CimQualifier>& out);

 private:
  struct Meaning {
    const MofType* type = nullptr;  // null: that of the value
    bool isArray = false;
    QORSmrPtr<IQoriValue> defaultValue;
    bool toSubclass = true;
    bool overridable = true;
    bool translatable = false;
    std::vector<QORString> scopes;  // empty: it may stand anywhere
    unsigned refusing = 0;          // the elements that the scopes leave out, a bit for each
  };
  std::string placeOfEarlier(const MofQualifierDeclarationSyntax& syntax) const;
  MofNameMap<Meaning>& meaningsIn(const QORString& nameSpace);
  const Meaning& meaningOf(const QORString& nameSpace, const QORString& name, MofNameMap<Meaning>& known);
  CimQualifier resolve(const Meaning& meaning, const MofQualifierSyntax& syntax);
  static unsigned elementsRefusing(const std::vector<QORString>& scopes);
  static void checkScope(const Meaning& meaning, const MofQualifierSyntax& syntax, Element element);

  CimDeclarationSink& _sink;
  MofReport& _report;
  QORSlabs _values;                                        // they live as long as their classes
  MofNameMap<MofNameMap<Meaning>> _meanings;               // by namespace and name
  QORString _lastNameSpace;                                // the one asked for last
  MofNameMap<Meaning>* _lastMeanings = nullptr;            // its meanings; null at first
  std::unordered_map<std::string, MofLocation> _declared;  // likewise, folded; in this load
};

#endif
