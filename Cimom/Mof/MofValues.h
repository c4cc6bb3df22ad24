// The values of instances: references and embedded objects among them.
// Tested by tests/unit/Mof/MofValueTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFVALUES_H
#define QORQL_MOF_MOFVALUES_H

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Mof/MofObjectPath.h"
#include "Cimom/Mof/MofReport.h"
#include "Cimom/Mof/MofShapes.h"
#include "Cimom/Mof/MofSyntax.h"

// For messages of a load.
inline std::string textOf(const QORString& text) { return std::string(text.view()); }

// Makes the sink's declarations of instances from their syntax. An alias may be
// used before its instance and in a circle; its path comes from the keys alone.
// Recursion follows nesting and is bounded. Belongs to one load.
class MofValues {
 public:
  MofValues(CimDeclarationSink& sink, MofDocument& document, MofReport& report)
      : _sink(sink), _document(document), _report(report), _shapes(sink) {}

  // Makes the objects of embedded classes; set before the first value is made.
  using ClassMaker = std::function<QORSmrPtr<IQoriObject>(const MofClassSyntax&)>;
  void setClassMaker(ClassMaker maker) { _makeClass = std::move(maker); }

  // Files that were read before in the same load lend their aliases to the one
  // that includes them again.
  void importScope(QORuint32 into, QORuint32 from);
  // Makes the alias of an instance known. Where several instances have it, it is a fault to use it, unless one alone
  // is in the namespace of the use.
  void defineAlias(const MofInstanceSyntax& instance);
  // To be called when the instance of the alias has been stored under this name.
  void resolveAlias(const MofInstanceSyntax& instance, const QORSmrPtr<IQoriInstanceName>& name);

  // The class of an instance. THROWS MofFault when it is unknown or can have no instances.
  const MofClassShape& shapeOf(const MofInstanceSyntax& instance);
  // False when anything was at fault; all of it goes to the report.
  bool declare(const MofInstanceSyntax& instance, const MofClassShape& shape, QORuint32 depth,
               CimInstanceDeclaration& out);
  // The text of an instance's path; empty when its keys do not tell.
  std::string pathOf(const MofInstanceSyntax& instance);
  // A key without value goes to the report.
  bool checkKeys(const MofInstanceSyntax& instance, const CimInstanceDeclaration& declaration,
                 const MofClassShape& shape);
  // The value of a property; null for NULL. THROWS MofFault.
  IQoriValue::Pointer make(const MofValueSyntax& value, const MofPropertyShape& property, const QORString& nameSpace,
                           QORuint32 scope, QORuint32 depth);

 private:
  struct Alias {
    const MofInstanceSyntax* instance = nullptr;
    const MofInstanceSyntax* rival = nullptr;  // another one of its namespace that has the same alias
    std::unique_ptr<Alias> elsewhere;          // the same alias in another namespace
    QORSmrPtr<IQoriInstanceName> name;         // null until it is known
    bool isOpen = false;                       // its keys are being read
    bool isRefused = false;                    // its keys have faults, which have been reported
  };
  struct Scope {
    std::unordered_map<std::string, Alias> aliases;  // by folded name
    std::vector<QORuint32> imports;
  };
  // What surrounds a value.
  struct Place {
    const MofPropertyShape& property;
    const QORString& nameSpace;
    QORuint32 scope;
    QORuint32 depth;
  };

  IQoriValue::Pointer makeElement(const MofValueSyntax& value, const Place& place);
  IQoriValue::Pointer makeReference(const MofValueSyntax& value, const Place& place);
  QORSmrPtr<IQoriInstanceName> nameOfAlias(const MofValueSyntax& value, const Place& place);
  QORSmrPtr<IQoriInstanceName> nameOfPath(const MofValueSyntax& value, const Place& place);
  QORSmrPtr<IQoriInstanceName> nameAsWritten(const MofObjectPath& path) const;
  const MofClassShape& requireShape(const QORString& nameSpace, const MofName& className);
  void requireDerived(const QORString& nameSpace, const QORString& className, const QORString& ancestor,
                      const MofLocation& at) const;
  QORSmrPtr<IQoriInstanceName> nameFromKeys(const MofClassShape& shape, const std::vector<MofPropertySyntax>& values,
                                            const Place& place, const MofLocation& at);
  IQoriValue::Pointer makeObject(const MofInstanceSyntax& instance, const Place& place);
  IQoriValue::Pointer makeObjectFromText(const MofValueSyntax& value, const Place& place);
  IQoriValue::Pointer makeClassObject(const MofClassSyntax& definition, const Place& place) const;
  Alias* findAlias(const QORString& name, QORuint32 scope);
  Alias& chooseAlias(Alias& first, const MofValueSyntax& value, const Place& place) const;
  [[noreturn]] void refuseAmbiguous(const MofValueSyntax& value, const Place& place, const MofInstanceSyntax& first,
                                    const MofInstanceSyntax& second) const;
  QORSmrPtr<IQoriInstanceName> nameOfInstance(Alias& alias, const MofValueSyntax& value, const Place& place);
  // Refuses what only follows from another fault; a strict load says nothing of it.
  [[noreturn]] void refuseConsequence(const MofFault& fault) const;
  Scope& scopeAt(QORuint32 index);
  static const MofPropertyShape& requireProperty(const MofName& name, const MofClassShape& shape);

  CimDeclarationSink& _sink;
  MofDocument& _document;
  MofReport& _report;
  MofShapes _shapes;
  std::vector<Scope> _scopes;
  ClassMaker _makeClass;
};

#endif
