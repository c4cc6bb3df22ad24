// What a request says about the instance that is wanted, and the pairs of associations.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Providers/LinuxProperty.h"

#include "cimom/IQoriInstanceName.h"
#include "cimom/IQoriProperty.h"

QORString wantedKey(const InstanceProvider::Request& request, const char* keyName) {
  if (request.only.IsNull()) return {};
  QORValSlistIterator<QORSmrPtr<IQoriProperty>> keys(*request.only->getKeys());
  while (++keys) {
    const IQoriProperty& key = *keys.key();
    const bool isNamed = QORString::equalIgnoringCase(key.getName().view(), keyName);
    if (isNamed && !key.getValue().IsNull()) return key.getValue()->toString();
  }
  return {};
}

void LinuxPairs::emit(const LinuxValue& first, const LinuxValue& second) const {
  std::vector<LinuxValue> values;
  values.reserve(_request.propertyNames.size());
  for (const QORString& name : _request.propertyNames) {
    const bool isFirst = QORString::equalIgnoringCase(name.view(), _firstName);
    const bool isSecond = QORString::equalIgnoringCase(name.view(), _secondName);
    values.push_back(isFirst ? first : isSecond ? second : LinuxValue());
  }
  _emit(std::move(values));
}
