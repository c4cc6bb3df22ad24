// A class definition as the value of an embedded object.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/Model/ModelClassObject.h"

ModelClassObject::~ModelClassObject() = default;
