// All classes are asked at once, which keeps the order of their instances, and one by one when that fails.
// SPDX-License-Identifier: Apache-2.0
#include "InstanceReader.h"

#include <iostream>

#include "Cimom/Embedded/InstanceProvider.h"
#include "ClassFamily.h"
#include "DisplayText.h"
#include "ExitStatus.h"

namespace {

void handOver(const CIMApi::Instances& instances, const InstanceReader::Take& take) {
  if (instances.IsNull()) return;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*instances);
  while (++each) take(*each.key());
}

}  // namespace

void InstanceReader::read(const QORString& className, const CIMApi::PropertyNames& properties, const Take& take) {
  CIMApi api;
  CIMApi::Instances instances;
  try {
    instances = api.enumerateInstances(_nameSpace, className, properties, CIMApi::DefaultTimeout, nullptr, nullptr,
                                       nullptr, {});
  } catch (const QoriBaseException&) {
    return readEach(className, properties, take);
  }
  handOver(instances, take);
}

void InstanceReader::readEach(const QORString& root, const CIMApi::PropertyNames& properties, const Take& take) {
  const ClassFamily family(_manager, _nameSpace);
  for (const QORString& name : _manager.classNames(_nameSpace)) {
    if (!family.isA(name, root)) continue;
    CIMApi::Instances instances;
    try {
      instances = _manager.ownInstances(_nameSpace, name, properties);
    } catch (const QoriBaseException& failure) {
      note(name, failure);
    }
    handOver(instances, take);
  }
}

void InstanceReader::note(const QORString& className, const QoriBaseException& failure) {
  const bool isAbsent = failure.getCode() == InstanceProvider::kNoSource;
  (isAbsent ? _gaps.absent : _gaps.failed)
      .push_back(std::string(className.view()) + ": " + std::string(failure.getMessage().view()));
}

int reportGaps(const InstanceReader::Gaps& gaps, bool isQuiet) {
  for (const std::string& gap : gaps.absent) {
    if (!isQuiet) std::cerr << "qorql: warning: " << printableText(gap) << '\n';
  }
  for (const std::string& gap : gaps.failed) std::cerr << "qorql: error: " << printableText(gap) << '\n';
  return gaps.failed.empty() ? kExitDone : kExitPlatform;
}
