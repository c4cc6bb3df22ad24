// Scalar values as the texts of CIM-XML.
// Tested by tests/unit/CimXml/CimXmlReplyTest.cpp, tests/unit/CimXml/CimXmlWriterTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMXML_CIMXMLVALUES_H
#define QORQL_CIMXML_CIMXMLVALUES_H

#include <string>
#include <string_view>

#include "cimom/CQoriType.h"
#include "cimom/IQoriValue.h"
#include "cmpbase.h"

namespace cimxml {

// The value that a text holds as a type. False when the text is none of that
// type. Blanks around anything but strings and characters do not matter;
// integers may have a sign, leading zeros or a 0x, booleans any case, reals NaN
// and INF. REQUIRES a scalar type that is neither reference nor object.
bool readValue(std::string_view text, CQoriType::Code type, IQoriValue::Pointer& out);

// The value of a key whose type is not given: a number when `valueType` is
// "numeric" and the text is one, likewise "boolean", text otherwise.
IQoriValue::Pointer readKeyValue(std::string_view text, std::string_view valueType);

// The type that an attribute names; Unknown when none has the name. Exact but for case.
CQoriType::Code typeOf(std::string_view name) noexcept;
// The shared type object of a code. REQUIRES another code than Unknown.
const QORSmrPtr<IQoriType>& scalarType(CQoriType::Code code) noexcept;
// As attributes and messages name it.
std::string_view typeName(CQoriType::Code code) noexcept;

// Appends a text as the content of an element, and as the value of an attribute:
// escaped, with U+FFFD in place of what XML forbids, and with the blanks that a
// reader would change as character references.
void appendText(std::string& out, std::string_view text);
void appendAttributeText(std::string& out, std::string_view text);

// Appends the text of a scalar that is neither reference nor object, escaped:
// integers decimal, reals with a point and an exponent, TRUE or FALSE, texts as they are.
void appendValueText(std::string& out, const IQoriValue& value);
// The same of a view of a scalar of that type; false, with nothing appended, for one that has to be a value.
bool appendScalarText(std::string& out, const QoriScalar& scalar, CQoriType::Code type);

}  // namespace cimxml

#endif
