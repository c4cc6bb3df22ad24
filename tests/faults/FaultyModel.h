// Objects, names, values and classes that pass each call on, unless the plan
// lets it go wrong.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_FAULTYMODEL_H
#define QORQL_TESTS_FAULTYMODEL_H

#include "cimom/IQoriObject.h"
#include "cimom/IQoriRepository.h"

namespace faulty {

// A null pointer stays one. Objects keep their layout when the flag is set, and
// are read by name otherwise.
QORSmrPtr<IQoriValue> wrap(const QORSmrPtr<IQoriValue>& value);
QORSmrPtr<IQoriProperty> wrap(const QORSmrPtr<IQoriProperty>& property);
QORSmrPtr<IQoriInstanceName> wrap(const QORSmrPtr<IQoriInstanceName>& name);
QORSmrPtr<IQoriObject> wrap(const QORSmrPtr<IQoriObject>& object, bool keepsLayout);
QORSmrPtr<IQoriClass> wrap(const QORSmrPtr<IQoriClass>& declaration);
QORSmrPtr<IQoriRepository> wrap(const QORSmrPtr<IQoriRepository>& repository);

}  // namespace faulty

#endif
