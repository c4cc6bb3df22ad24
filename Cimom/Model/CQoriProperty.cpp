// Properties.
// Tested by tests/unit/Model/CQoriInstanceNameTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#include "cimom/CQoriProperty.h"

#include "cimom/CQoriType.h"

CQoriProperty::CQoriProperty(const QORString& name, const QORSmrPtr<IQoriValue>& value, bool /*flag*/)
    : CQoriProperty(name, value.IsNull() ? CQoriType::string : value->getType(), value) {}

CQoriProperty::CQoriProperty(const QORString& name, const QORSmrPtr<IQoriType>& type,
                             const QORSmrPtr<IQoriValue>& value)
    : _name(name), _type(type), _value(value) {}

CQoriProperty::~CQoriProperty() = default;
