// The live view of a Linux machine: its schema and its providers.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROVIDERS_H
#define QORQL_PROVIDERS_LINUXPROVIDERS_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"

// MOF text: the qualifiers, the CIM base classes in short form and the Linux
// classes that the providers serve. A program that loads a fuller CIM schema
// first can load this text through LinuxSchemaSink, which leaves alone what is
// there already.
const char* linuxSchemaMof();
// The same text without the Description qualifiers, which loads in two thirds of
// the time: for a program that shows no descriptions.
const char* linuxSchemaMofWithoutDescriptions();

// Registers the provider of each Linux class that the namespace declares, but
// for those in `except`, whose names another model has given to classes of its
// own. The providers live as long as the object manager.
void registerLinuxProviders(EmbeddedObjectManager& manager, const QORString& nameSpace,
                            const std::vector<std::string>& except = {});

// Passes declarations on to another sink, but for classes and qualifiers that
// exist already. BORROWS the sink, which must outlive this object.
class LinuxSchemaSink : public CimDeclarationSink {
 public:
  // Where the declarations go.
  explicit LinuxSchemaSink(CimDeclarationSink& target) : _target(target) {}

  void begin() override { _target.begin(); }
  void commit() override { _target.commit(); }
  void rollback() noexcept override { _target.rollback(); }
  void createNamespace(const QORString& nameSpace) override { _target.createNamespace(nameSpace); }
  void declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) override;
  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) override;
  QORSmrPtr<IQoriInstanceName> createInstance(const QORString& nameSpace,
                                              const CimInstanceDeclaration& declaration) override {
    return _target.createInstance(nameSpace, declaration);
  }
  QORSmrPtr<IQoriObject> makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration) override {
    return _target.makeObject(nameSpace, declaration);
  }
  QORSmrPtr<IQoriObject> makeClassObject(const QORString& nameSpace, const CimClassDeclaration& declaration) override {
    return _target.makeClassObject(nameSpace, declaration);
  }
  QORSmrPtr<IQoriClass> findClass(const QORString& nameSpace, const QORString& className) const override {
    return _target.findClass(nameSpace, className);
  }
  bool describeProperty(const QORString& nameSpace, const QORString& className, const QORString& propertyName,
                        CimPropertyDeclaration& out) const override {
    return _target.describeProperty(nameSpace, className, propertyName, out);
  }
  bool describeQualifier(const QORString& nameSpace, const QORString& name,
                         CimQualifierDeclaration& out) const override {
    return _target.describeQualifier(nameSpace, name, out);
  }

 private:
  CimDeclarationSink& _target;
};

#endif
