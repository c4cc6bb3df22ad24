// The predefined type objects.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CIMOM_CQORITYPE_H
#define QORQL_CIMOM_CQORITYPE_H

#include "cimom/IQoriType.h"
#include "cmpbase.h"

// One shared singleton per scalar type, and one per array of it.
class CQoriType final : public IQoriType {
 public:
  // The types by number, in the order of the singletons below.
  enum class Code : QORuint8 {
    Sint8,
    Uint8,
    Sint16,
    Uint16,
    Sint32,
    Uint32,
    Sint64,
    Uint64,
    Real32,
    Real64,
    Boolean,
    String,
    DateTime,
    Char16,
    Reference,
    Object,
    Unknown
  };

  // Any name will do; types that are no singleton have the code of their name, or Unknown.
  CQoriType(const QORString& name, bool isArray);
  ~CQoriType() override;
  const QORString& getName() const noexcept override { return _name; }
  bool isArray() const noexcept override { return _isArray; }
  // An array's is its element's.
  Code code() const noexcept { return _code; }

  // The code of any type, by its name ignoring case; an array's is its element's.
  static Code codeOf(const IQoriType& type) noexcept;

  // The scalar types; never null.
  static const QORSmrPtr<IQoriType> sint8;
  static const QORSmrPtr<IQoriType> uint8;
  static const QORSmrPtr<IQoriType> sint16;
  static const QORSmrPtr<IQoriType> uint16;
  static const QORSmrPtr<IQoriType> sint32;
  static const QORSmrPtr<IQoriType> uint32;
  static const QORSmrPtr<IQoriType> sint64;
  static const QORSmrPtr<IQoriType> uint64;
  static const QORSmrPtr<IQoriType> real32;
  static const QORSmrPtr<IQoriType> real64;
  static const QORSmrPtr<IQoriType> boolean;
  static const QORSmrPtr<IQoriType> string;
  static const QORSmrPtr<IQoriType> datetime;
  static const QORSmrPtr<IQoriType> char16;
  static const QORSmrPtr<IQoriType> reference;
  static const QORSmrPtr<IQoriType> object;

  // The singleton by type name (ignoring case); null for an unknown name.
  static QORSmrPtr<IQoriType> find(const QORString& name, bool isArray);
  // The array type whose elements are of `element`'s type.
  static QORSmrPtr<IQoriType> arrayOf(const QORSmrPtr<IQoriType>& element);

 private:
  QORString _name;
  bool _isArray;
  Code _code;
};

#endif
