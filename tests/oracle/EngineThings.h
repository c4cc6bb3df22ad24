// The things of the filter model as the engine's objects and classes.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TESTS_ENGINETHINGS_H
#define QORQL_TESTS_ENGINETHINGS_H

#include "FilterModel.h"
#include "cimom/IQoriObject.h"
#include "cmpbase.h"

// The namespace of the schema, and another one that has no classes.
inline constexpr char kNameSpace[] = "root/a";
inline constexpr char kOther[] = "root/b";

// Of the current object manager.
void declare(const filter_model::Schema& schema);
QORSmrPtr<IQoriObject> laidOutObject(const filter_model::Thing& thing);
// Read by name, since it has no layout.
QORSmrPtr<IQoriObject> loneObject(const filter_model::Thing& thing);

#endif
