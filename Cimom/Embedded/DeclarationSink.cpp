// Each operation under the store's lock, with the loader's view.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Embedded/DeclarationSink.h"

#include <mutex>

namespace embedded {

namespace {

using ReadLock = std::shared_lock<std::shared_mutex>;
using WriteLock = std::unique_lock<std::shared_mutex>;

class RowMaker final : public CimInstanceMaker {
 public:
  RowMaker(std::shared_ptr<ObjectStore> store, std::unique_ptr<RowPlan> plan, std::vector<QORString> propertyNames)
      : _store(std::move(store)), _plan(std::move(plan)), _propertyNames(std::move(propertyNames)) {}

  bool create(std::string_view row) override {
    const WriteLock lock(_store->mutex());
    return _store->createInstance(*_plan, row, View::Loader);
  }
  // Each time with a plan of its own, which lives as long as the rows.
  bool createLater(std::string_view rows, QORuint32 count, const std::shared_ptr<const void>& owner) override {
    const WriteLock lock(_store->mutex());
    const QORString& nameSpace = _plan->nameSpace().name;
    std::unique_ptr<RowPlan> plan = _store->planRows(nameSpace, _plan->entry().name(), _propertyNames, View::Loader);
    return plan != nullptr && _store->createLater(std::move(plan), rows, count, owner, View::Loader);
  }

 private:
  std::shared_ptr<ObjectStore> _store;
  std::unique_ptr<RowPlan> _plan;
  std::vector<QORString> _propertyNames;
};

}  // namespace

void DeclarationSink::begin() {
  const WriteLock lock(_store->mutex());
  _store->begin();
}

void DeclarationSink::commit() {
  const WriteLock lock(_store->mutex());
  _store->commit();
}

void DeclarationSink::rollback() noexcept {
  const WriteLock lock(_store->mutex());
  _store->rollback();
}

void DeclarationSink::createNamespace(const QORString& nameSpace) {
  const WriteLock lock(_store->mutex());
  _store->createNameSpace(nameSpace, View::Loader);
}

void DeclarationSink::declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) {
  const WriteLock lock(_store->mutex());
  _store->declareQualifier(nameSpace, declaration, View::Loader);
}

void DeclarationSink::declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) {
  const WriteLock lock(_store->mutex());
  _store->declareClass(nameSpace, declaration, View::Loader);
}

bool DeclarationSink::declareClasses(const std::vector<CimClassHeading>& headings,
                                     const std::shared_ptr<CimDeclarationSource>& source) {
  const WriteLock lock(_store->mutex());
  return _store->declareClasses(headings, source, View::Loader);
}

std::unique_ptr<CimDeclarationSink> DeclarationSink::makeEmpty() const {
  return std::make_unique<DeclarationSink>(std::make_shared<ObjectStore>());
}

QORSmrPtr<IQoriInstanceName> DeclarationSink::createInstance(const QORString& nameSpace,
                                                             const CimInstanceDeclaration& declaration) {
  const WriteLock lock(_store->mutex());
  return _store->createInstance(nameSpace, declaration, View::Loader).object->getInstanceName();
}

std::unique_ptr<CimInstanceMaker> DeclarationSink::instanceMaker(const QORString& nameSpace, const QORString& className,
                                                                 const std::vector<QORString>& propertyNames) {
  const ReadLock lock(_store->mutex());
  std::unique_ptr<RowPlan> plan = _store->planRows(nameSpace, className, propertyNames, View::Loader);
  return plan == nullptr ? nullptr : std::make_unique<RowMaker>(_store, std::move(plan), propertyNames);
}

QORSmrPtr<IQoriObject> DeclarationSink::makeObject(const QORString& nameSpace,
                                                   const CimInstanceDeclaration& declaration) {
  const ReadLock lock(_store->mutex());
  return _store->makeObject(nameSpace, declaration, View::Loader);
}

QORSmrPtr<IQoriObject> DeclarationSink::makeClassObject(const QORString& nameSpace,
                                                        const CimClassDeclaration& declaration) {
  const ReadLock lock(_store->mutex());
  return _store->makeClassObject(nameSpace, declaration, View::Loader);
}

QORSmrPtr<IQoriClass> DeclarationSink::findClass(const QORString& nameSpace, const QORString& className) const {
  const ReadLock lock(_store->mutex());
  const ClassEntry* const entry = _store->findClass(nameSpace, className, View::Loader);
  return entry == nullptr ? QORSmrPtr<IQoriClass>() : entry->handle();
}

bool DeclarationSink::describeProperty(const QORString& nameSpace, const QORString& className,
                                       const QORString& propertyName, CimPropertyDeclaration& out) const {
  const ReadLock lock(_store->mutex());
  const ClassEntry* const entry = _store->findClass(nameSpace, className, View::Loader);
  const QORsint32 position = entry == nullptr ? -1 : entry->model().position(propertyName);
  if (position < 0) return false;
  out = entry->model().properties()[static_cast<std::size_t>(position)];
  return true;
}

bool DeclarationSink::describeQualifier(const QORString& nameSpace, const QORString& name,
                                        CimQualifierDeclaration& out) const {
  const ReadLock lock(_store->mutex());
  const NameSpace* const space = _store->findNameSpace(nameSpace, View::Loader);
  if (space == nullptr) return false;
  const auto found = space->qualifiers.find(name.view());
  if (found == space->qualifiers.end()) return false;
  out = found->second;
  return true;
}

}  // namespace embedded
