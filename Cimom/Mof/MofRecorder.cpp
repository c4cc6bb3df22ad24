// Keeps what a load declares.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRecorder.h"

#include <limits>

#include "Cimom/Embedded/CimDeclarationRows.h"

class MofRecorder::RowRecorder final : public CimInstanceMaker {
 public:
  RowRecorder(MofRecorder& recorder, std::unique_ptr<CimInstanceMaker> target, QORsint32 form)
      : _recorder(recorder), _target(std::move(target)), _form(form) {}

  bool create(std::string_view row) override {
    if (!_target->create(row)) return false;
    _recorder._keepRow(row);
    _recorder._record.addInstance(_form);
    return true;
  }

 private:
  MofRecorder& _recorder;
  std::unique_ptr<CimInstanceMaker> _target;
  const QORsint32 _form;
};

void MofRecord::addInstance(QORsint32 form) {
  const bool isFull = !order.empty() && order.back().count == std::numeric_limits<QORuint32>::max();
  if (order.empty() || order.back().form != form || isFull) order.push_back({form, 0});
  ++order.back().count;
}

void MofRecorder::begin() {
  _target.begin();
  _record = {};
}

void MofRecorder::rollback() noexcept {
  _target.rollback();
  _record = {};
}

void MofRecorder::createNamespace(const QORString& nameSpace) {
  _target.createNamespace(nameSpace);
  _record.nameSpaces.push_back(nameSpace);
}

void MofRecorder::declareQualifier(const QORString& nameSpace, const CimQualifierDeclaration& declaration) {
  _target.declareQualifier(nameSpace, declaration);
  _record.qualifiers.push_back({nameSpace, declaration});
}

void MofRecorder::declareClass(const QORString& nameSpace, const CimClassDeclaration& declaration) {
  _target.declareClass(nameSpace, declaration);
  _record.classes.push_back({nameSpace, declaration});
}

QORSmrPtr<IQoriInstanceName> MofRecorder::createInstance(const QORString& nameSpace,
                                                         const CimInstanceDeclaration& declaration) {
  QORSmrPtr<IQoriInstanceName> name = _target.createInstance(nameSpace, declaration);
  _record.instances.push_back({nameSpace, declaration});
  _record.addInstance(MofRecord::kNoForm);
  return name;
}

std::unique_ptr<CimInstanceMaker> MofRecorder::instanceMaker(const QORString& nameSpace, const QORString& className,
                                                             const std::vector<QORString>& propertyNames) {
  if (!_keepRow) return nullptr;
  std::unique_ptr<CimInstanceMaker> target = _target.instanceMaker(nameSpace, className, propertyNames);
  if (target == nullptr) return nullptr;
  const QORsint32 form = static_cast<QORsint32>(_record.forms.size());
  _record.forms.push_back({nameSpace, className, propertyNames});
  return std::make_unique<RowRecorder>(*this, std::move(target), form);
}

QORSmrPtr<IQoriObject> MofRecorder::makeObject(const QORString& nameSpace, const CimInstanceDeclaration& declaration) {
  QORSmrPtr<IQoriObject> object = _target.makeObject(nameSpace, declaration);
  _record.objects[object.Get()] = {object, {nameSpace, declaration}, {}, false};
  return object;
}

QORSmrPtr<IQoriObject> MofRecorder::makeClassObject(const QORString& nameSpace,
                                                    const CimClassDeclaration& declaration) {
  QORSmrPtr<IQoriObject> object = _target.makeClassObject(nameSpace, declaration);
  _record.objects[object.Get()] = {object, {}, {nameSpace, declaration}, true};
  return object;
}
