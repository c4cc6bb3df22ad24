// How a live provider ties the properties of a class to the operations that read them.
// Tested by tests/unit/Providers/LinuxProvidersTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_PROVIDERS_LINUXPROPERTY_H
#define QORQL_PROVIDERS_LINUXPROPERTY_H

#include <span>
#include <utility>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Providers/LinuxValues.h"

// One property of a class: `Source` is one instance that is being read.
template <class Source>
struct LinuxProperty {
  const char* name;
  LinuxValue (*read)(Source& source);
};

// The properties of a request, bound once: null where the class declares a
// property that the provider does not know. Entries point into `table`.
template <class Property>
std::vector<const Property*> bindProperties(const InstanceProvider::Request& request, std::span<const Property> table) {
  std::vector<const Property*> bound;
  bound.reserve(request.propertyNames.size());
  for (const QORString& name : request.propertyNames) {
    const Property* found = nullptr;
    for (const Property& property : table) {
      if (QORString::equalIgnoringCase(name.view(), property.name)) found = &property;
    }
    bound.push_back(found);
  }
  return bound;
}

// The value of a key of the one instance that is wanted; a null string when every instance is.
QORString wantedKey(const InstanceProvider::Request& request, const char* keyName);

// Reads the bound properties of one instance and hands them over.
template <class Source>
void emitInstance(Source& source, const std::vector<const LinuxProperty<Source>*>& properties,
                  const InstanceProvider::Emit& emit) {
  std::vector<LinuxValue> values;
  values.reserve(properties.size());
  for (const LinuxProperty<Source>* property : properties) {
    values.push_back(property == nullptr ? LinuxValue() : property->read(source));
  }
  emit(std::move(values));
}

// Takes the two ends of an association's instances; the other properties of the
// class are NULL. Belongs to one enumeration; BORROWS request and emit.
class LinuxPairs {
 public:
  LinuxPairs(const InstanceProvider::Request& request, const InstanceProvider::Emit& emit, const char* firstName,
             const char* secondName)
      : _request(request), _emit(emit), _firstName(firstName), _secondName(secondName) {}

  void emit(const LinuxValue& first, const LinuxValue& second) const;

 private:
  const InstanceProvider::Request& _request;
  const InstanceProvider::Emit& _emit;
  const char* _firstName;
  const char* _secondName;
};

#endif
