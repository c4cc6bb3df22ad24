// Objects as MOF instance text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_MODEL_MODELMOF_H
#define QORQL_MODEL_MODELMOF_H

#include "cimom/IQoriObject.h"
#include "cmpbase.h"

namespace model {

// The object on one line: `instance of C { a = 1; b = "t"; c = NULL; };`. A
// class object is `class C { ... };` as it was declared.
// Embedded objects are quoted MOF texts of their own. THROWS QoriBaseException
// (type "CIM_Value") when they nest deeper than a text can hold.
QORString mofText(const IQoriObject& object);
// A value as an initialiser; NULL for a null pointer. THROWS as above.
void appendMofValue(QORString& out, const QORSmrPtr<IQoriValue>& value);

}  // namespace model

#endif
