// The predefined type objects.
#ifndef QORQL_CIMOM_CQORITYPE_H
#define QORQL_CIMOM_CQORITYPE_H

#include "cimom/IQoriType.h"
#include "cmpbase.h"

// One shared singleton per scalar type, and one per array of it.
class CQoriType : public IQoriType {
 public:
  CQoriType(const QORString& name, bool isArray) : _name(name), _isArray(isArray) {}
  const QORString& getName() const noexcept override { return _name; }
  bool isArray() const noexcept override { return _isArray; }

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
};

#endif
