// Keeps what a load declares.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Mof/MofRecorder.h"

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
  return name;
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
