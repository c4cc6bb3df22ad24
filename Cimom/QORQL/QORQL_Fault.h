// What an error of the engine is about, and where in the statement's text.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_FAULT_H
#define QORQL_FAULT_H

#include <string_view>

#include "cmpbase.h"

// QORQL_ParseException and QORQL_Exception carry one, and so a caller need not
// read their messages. To show a person where a statement is wrong:
//
//   catch (const QoriBaseException& error) {
//     const QORQL_Fault* const fault = QORQL_faultOf(error);
//     if (fault != nullptr && fault->hasPlace()) {
//       const QORQL_Place place = QORQL_placeOf(text, fault->offset);
//       ... error.getMessage(), place.line, place.column, fault->name ...
//     }
//   }
struct QORQL_Fault {
  enum Kind : QORuint8 {
    kOther,
    kSyntax,  // the text breaks a rule of the language; found while it was read
    // The same, where the rule is one of these:
    kHalfAssociation,        // one end of an association is not followed by the other
    kParenthesisOpen,        // what stands in parentheses goes on where only `)` may stand
    kDirectionMissing,       // the key of ORDER BY is followed by neither ASC nor DESC
    kColumnUnnamed,          // a column is neither a property nor has a name of its own
    kColumnBesideAggregate,  // a column is beside an aggregate, but is none
    kNameExpected,           // no name stands after AS
    kFormatUnknown,          // FORMAT AS names no form
    kFunctionUnknown,        // there is no function `name`
    // What the class repository does not know, found after the text was read:
    kPropertyUnknown,    // `name` is a property of no FROM class
    kPropertyAmbiguous,  // `name` is a property of more than one FROM class
    kFromNameUnknown,    // `name`, before a dot in the select list or where a class is joined, is no FROM name
    kClassUnknown,       // the object manager knows no class `name`
    // What values a row has, found while the statement runs:
    kPropertyMissing,     // an object of `className`, as the statement names the class, has no property `name`
    kValueMissing,        // a value is NULL where the statement needs one: an operand of LIKE, a key of ORDER BY
    kElementMissing,      // the array `name` has `length` elements and not the one that is asked for
    kValuesIncomparable,  // values of the types `type` and `otherType` do not compare
    kNumberExpected,      // an aggregate of numbers has a value of another type
    kPathUnread           // a path asks an object that a property holds for `name`, which a query does not read
  };
  static constexpr QORuint32 kNowhere = 0xFFFFFFFF;

  // Whether a word of the text is at fault.
  bool hasPlace() const noexcept { return offset != kNowhere; }

  Kind kind = kOther;
  // As the kind says; of a text that breaks a rule the word that the message quotes; else empty.
  QORString name{};
  QORString className{};        // empty unless the kind says what it is
  QORuint32 offset = kNowhere;  // the byte of the text at which the word at fault begins
  QORString object{};           // the path of the object whose value is at fault; empty where that is not known
  QORString type{};             // of the value that stands at the offset
  QORString otherType{};        // of the value that it does not compare with
  QORuint32 length = 0;         // of the array, in elements
};

// The fault that an error carries; a null pointer for errors that do not come
// from the engine. BORROWS: as long as the error lives.
const QORQL_Fault* QORQL_faultOf(const QoriBaseException& error) noexcept;

// A place for a person: both count from 1.
struct QORQL_Place {
  QORuint32 line = 1;
  QORuint32 column = 1;  // in characters of UTF-8, whatever their width; a byte of another encoding counts as one
};
// The place of a byte of the text, of the end of the text for any offset after it.
QORQL_Place QORQL_placeOf(std::string_view text, std::size_t offset) noexcept;

#endif
