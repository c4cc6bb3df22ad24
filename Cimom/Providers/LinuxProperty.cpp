// What a request says about the instance that is wanted.
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
