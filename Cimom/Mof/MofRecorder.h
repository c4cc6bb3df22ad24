// Keeps what a load declares, so that it can be declared again.
// Tested by tests/unit/Mof/MofCacheTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MOF_MOFRECORDER_H
#define QORQL_MOF_MOFRECORDER_H

#include <functional>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Cimom/Embedded/CimDeclarationSink.h"

// What a load declared, in its order.
struct MofRecord {
  template <class Declaration>
  struct Entry {
    QORString nameSpace;
    Declaration declaration;
  };
  // An embedded object as it was declared: one of the two.
  struct Object {
    QORSmrPtr<IQoriObject> object;  // kept, so that no other object gets its address
    Entry<CimInstanceDeclaration> instance;
    Entry<CimClassDeclaration> definition;
    bool isClass = false;
  };

  // What rows have in common, and so many instances in the order of the load: rows of that form, or, with kNoForm,
  // those of `instances`.
  struct Form {
    QORString nameSpace;
    QORString className;
    std::vector<QORString> names;
  };
  struct Run {
    QORsint32 form;
    QORuint32 count;
  };
  static constexpr QORsint32 kNoForm = -1;

  std::vector<QORString> nameSpaces;
  std::vector<Entry<CimQualifierDeclaration>> qualifiers;
  std::vector<Entry<CimClassDeclaration>> classes;
  std::vector<Entry<CimInstanceDeclaration>> instances;
  std::vector<Form> forms;
  std::vector<Run> order;
  std::unordered_map<const IQoriObject*, Object> objects;  // the values in those above

  // One instance more of that form.
  void addInstance(QORsint32 form);
};

// Passes everything on to another sink and keeps a record of what that
// accepted. BORROWS the sink. One load at a time.
class MofRecorder final : public CimDeclarationSink {
 public:
  explicit MofRecorder(CimDeclarationSink& target) : _target(target) {}
  // Rows go to `keepRow` as they come, in their order. Without it there are none.
  using RowKeeper = std::function<void(std::string_view)>;
  MofRecorder(CimDeclarationSink& target, RowKeeper keepRow) : _target(target), _keepRow(std::move(keepRow)) {}

  const MofRecord& record() const& noexcept { return _record; }
  MofRecord record() && { return std::move(_record); }

  void begin() override;
  void commit() override { _target.commit(); }
  void rollback() noexcept override;
  void createNamespace(const QORString& nameSpace) override;
  void declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) override;
  void declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) override;
  QORSmrPtr<IQoriInstanceName> createInstance(const QORString& nameSpace,
                                              const CimInstanceDeclaration& declaration) override;
  std::unique_ptr<CimInstanceMaker> instanceMaker(const QORString& nameSpace, const QORString& className,
                                                  const std::vector<QORString>& propertyNames) override;
  QORSmrPtr<IQoriObject> makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration) override;
  QORSmrPtr<IQoriObject> makeClassObject(const QORString& nameSpace, const CimClassDeclaration& declaration) override;
  std::unique_ptr<CimDeclarationSink> makeEmpty() const override { return _target.makeEmpty(); }
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
  class RowRecorder;

  CimDeclarationSink& _target;
  RowKeeper _keepRow;
  MofRecord _record;
};

#endif
