// What a filter's validation found wrong.
#ifndef QORQL_CQLQUERYFAULT_H
#define QORQL_CQLQUERYFAULT_H

#include "cmpbase.h"

struct CQLQueryFault {
  enum Kind {
    kNone,
    kLanguage,   // `name` is no language of filters
    kSyntax,     // the text does not parse
    kClass,      // `name`, in FROM, is no class
    kProperty,   // `name` is no property of `className`, or of any FROM class when that is empty
    kAmbiguous,  // `name` is a property of more than one FROM class
    kQualifier,  // `name`, before a dot in the select list, is no FROM name
    kOther
  };
  static constexpr QORuint32 kNoOffset = 0xFFFFFFFF;

  Kind kind = kNone;
  QORString message;             // for a person; empty when nothing is wrong
  QORString name;                // ignoring case
  QORString className;           // ignoring case
  QORuint32 offset = kNoOffset;  // of the token at fault, as a byte of the text; only where the text does not parse
};

#endif
