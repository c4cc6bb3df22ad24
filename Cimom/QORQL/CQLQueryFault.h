// What a filter's validation found wrong.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLQUERYFAULT_H
#define QORQL_CQLQUERYFAULT_H

#include "Cimom/QORQL/QORQL_Fault.h"
#include "cmpbase.h"

// Values: made by a filter, copied freely.
struct CQLQueryFault {
  enum Kind {
    kNone,
    kLanguage,   // `name` is no language of filters
    kSyntax,     // the text does not parse
    kClass,      // `name`, in FROM, is no class
    kProperty,   // `name` is no property of `className`, or of any FROM class when that is empty
    kAmbiguous,  // `name` is a property of more than one FROM class
    kQualifier,  // `name`, before a dot in the select list or where a class is joined, is no FROM name
    kOther
  };
  // No place in the text.
  static constexpr QORuint32 kNoOffset = 0xFFFFFFFF;

  Kind kind = kNone;
  QORQL_Fault::Kind cause = QORQL_Fault::kOther;  // which rule of the language is broken, and the like
  QORString message;                              // for a person; empty when nothing is wrong
  QORString name;                                 // ignoring case
  QORString className;                            // ignoring case
  // Where the word at fault begins, as a byte of the text: QORQL_placeOf tells line and column. kNoOffset where no word
  // is at fault.
  QORuint32 offset = kNoOffset;
};

// What an error of parsing or running a statement is about, without its message; kOther for errors of no statement.
CQLQueryFault CQLQueryFaultOf(const QoriBaseException& error);

#endif
