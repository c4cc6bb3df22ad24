// What a class may declare, by itself and against its superclass.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp, tests/unit/Mof/MofClassRulesTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CLASSRULES_H
#define QORQL_EMBEDDED_CLASSRULES_H

#include <initializer_list>
#include <string_view>
#include <vector>

#include "Cimom/Embedded/CimDeclarationRefusal.h"
#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Embedded/RepositoryError.h"

class CQoriClass;

namespace embedded {

// Checks one declaration and collects all that is wrong with it. BORROWS
// declaration and superclass (null at the root).
class ClassRules {
 public:
  ClassRules(const CimClassDeclaration& declaration, const CQoriClass* superClass);

  // THROWS CimDeclarationRefusal with every fault.
  void check();

 private:
  using Parts = std::initializer_list<std::string_view>;

  void addFault(CimStatus status, const QORString& feature, Parts message);
  void checkClass();
  void checkProperty(const CimPropertyDeclaration& declared);
  void checkMethods();
  // `inherited`: null when there is none.
  void checkMethod(const CimMethodDeclaration& declared, const CimMethodDeclaration* inherited);
  void checkDefault(const CimPropertyDeclaration& declared);
  void checkKey(const CimPropertyDeclaration& declared, const CimPropertyDeclaration* inherited);
  void checkOverride(const CimPropertyDeclaration& declared, const CimPropertyDeclaration* inherited);
  // That Override names the element itself, and that there is one to override.
  void checkOverriddenName(std::string_view kind, const QORString& name, const std::vector<CimQualifier>& qualifiers,
                           bool isInherited);
  void checkSignature(const CimMethodDeclaration& declared, const CimMethodDeclaration& inherited);
  void checkQualifiers(const QORString& feature, const std::vector<CimQualifier>& own,
                       const std::vector<CimQualifier>& inherited);
  const CimPropertyDeclaration* inheritedProperty(const QORString& name) const;

  const CimClassDeclaration& _declaration;
  const CQoriClass* _superClass;
  bool _isAssociation;
  std::vector<CimDeclarationFault> _faults;
};

}  // namespace embedded

#endif
