// A class of the repository with everything that it inherits worked out.
// Tested by tests/unit/Embedded/ClassRepositoryTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_CQORICLASS_H
#define QORQL_EMBEDDED_CQORICLASS_H

#include <deque>
#include <memory>
#include <vector>

#include "Cimom/Embedded/CimDeclarations.h"
#include "Cimom/Model/ModelInstance.h"
#include "cimom/CQoriProperty.h"
#include "cimom/IQoriClass.h"

// Immutable.
class CQoriQualifier final : public IQoriQualifier {
 public:
  explicit CQoriQualifier(const CimQualifier& qualifier) : _name(qualifier.name), _value(qualifier.value) {}
  const QORString& getName() const noexcept override { return _name; }
  const QORSmrPtr<IQoriValue>& getValue() const noexcept override { return _value; }

 private:
  QORString _name;
  QORSmrPtr<IQoriValue> _value;
};

// Made by the class repository when a class is declared; immutable; threads may
// share one. It does not hold its superclass: what it inherits is copied, so
// that every look-up is one step.
class CQoriClass final : public IQoriClass {
 public:
  // Levels of inheritance that a class may have.
  static constexpr QORuint32 kMaximumDepth = 500;

  // `superClass`: null at the root. THROWS CimDeclarationRefusal when the
  // declaration contradicts itself or the superclass, QoriBaseException (type
  // "CIM_Repository") when inheritance is nested too deeply.
  CQoriClass(const QORString& nameSpace, const CimClassDeclaration& declaration, const CQoriClass* superClass);
  CQoriClass(const CQoriClass&) = delete;
  CQoriClass& operator=(const CQoriClass&) = delete;
  ~CQoriClass() override;

  const QORString& getClassName() const noexcept override { return _declaration.name; }
  const QORString& getSuperClassName() const noexcept override { return _declaration.superClass; }
  const IQoriQualifier* getQualifier(const QORString& name, bool includeInherited) const noexcept override;
  const IQoriProperty* getProperty(const QORString& name, bool includeInherited) const noexcept override;

  const CimClassDeclaration& declaration() const noexcept { return _declaration; }
  // Own and inherited ones, own ones first.
  const std::vector<CimQualifier>& qualifiersInForce() const noexcept { return _qualifiersInForce; }
  // By the positions of instances: inherited first, an overriding declaration in
  // the place of the overridden one, each with the qualifiers in force.
  const std::vector<CimPropertyDeclaration>& properties() const noexcept { return _properties; }
  // Own and inherited ones, an overriding declaration in the place of the
  // overridden one, each with the qualifiers in force; shared with the superclass.
  using Methods = std::vector<std::shared_ptr<const CimMethodDeclaration>>;
  const Methods& methods() const noexcept { return _methods; }
  const QORSmrPtr<ModelShape>& shape() const noexcept { return _shape; }
  // -1 when there is no such property.
  QORsint32 position(const QORString& name) const noexcept { return _shape->layout->getPosition(name); }
  const QORSmrPtr<IQoriType>& type(QORuint32 position) const noexcept { return _shape->layout->getType(position); }
  const std::vector<QORuint32>& keyPositions() const noexcept { return _shape->keyPositions; }
  const std::vector<QORuint32>& referencePositions() const noexcept { return _referencePositions; }
  bool isKey(QORuint32 position) const noexcept;
  bool isAssociation() const noexcept { return _isAssociation; }
  bool isAbstract() const noexcept { return _isAbstract; }
  QORuint32 depth() const noexcept { return _depth; }

 private:
  void inheritFrom(const CQoriClass& superClass);
  void addQualifiers();
  // `superClass`: null at the root.
  void addOwnProperties(const CQoriClass* superClass);
  void addOwnMethods();
  void finish(const QORString& nameSpace);

  CimClassDeclaration _declaration;
  std::vector<CimQualifier> _qualifiersInForce;  // own ones first
  std::deque<CQoriQualifier> _qualifiers;        // the same, as the interface shows them
  std::vector<CimPropertyDeclaration> _properties;
  Methods _methods;
  std::vector<bool> _isOwn;                  // by position: declared or overridden here
  std::deque<CQoriProperty> _propertyViews;  // by position, with the default as value
  std::vector<QORuint32> _referencePositions;
  QORSmrPtr<ModelShape> _shape;
  QORuint32 _depth = 0;
  bool _isAssociation = false;
  bool _isAbstract = false;
};

#endif
