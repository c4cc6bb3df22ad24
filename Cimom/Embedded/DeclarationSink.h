// The object store as loaders of declarations see it.
// Tested by tests/unit/Embedded/LoadTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_EMBEDDED_DECLARATIONSINK_H
#define QORQL_EMBEDDED_DECLARATIONSINK_H

#include <memory>
#include <utility>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"
#include "Cimom/Embedded/ObjectStore.h"

namespace embedded {

// Outside begin() and commit() every operation takes effect at once.
class DeclarationSink final : public CimDeclarationSink {
 public:
  explicit DeclarationSink(std::shared_ptr<ObjectStore> store) : _store(std::move(store)) {}

  void begin() override;
  void commit() override;
  void rollback() noexcept override;
  void createNamespace(const QORString& nameSpace) override;
  void declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) override;
  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) override;
  bool declareClasses(const std::vector<CimClassHeading>& headings,
                      const std::shared_ptr<CimDeclarationSource>& source) override;
  std::unique_ptr<CimDeclarationSink> makeEmpty() const override;
  QORSmrPtr<IQoriInstanceName> createInstance(const QORString& nameSpace,
                                              const CimInstanceDeclaration& declaration) override;
  std::unique_ptr<CimInstanceMaker> instanceMaker(const QORString& nameSpace, const QORString& className,
                                                  const std::vector<QORString>& propertyNames) override;
  QORSmrPtr<IQoriObject> makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration) override;
  QORSmrPtr<IQoriObject> makeClassObject(const QORString& nameSpace, const CimClassDeclaration& declaration) override;
  QORSmrPtr<IQoriClass> findClass(const QORString& nameSpace, const QORString& className) const override;
  bool describeProperty(const QORString& nameSpace, const QORString& className, const QORString& propertyName,
                        CimPropertyDeclaration& out) const override;
  bool describeQualifier(const QORString& nameSpace, const QORString& name,
                         CimQualifierDeclaration& out) const override;

 private:
  std::shared_ptr<ObjectStore> _store;
};

}  // namespace embedded

#endif
