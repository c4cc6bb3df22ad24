// What an expression's values are, as far as the class repository tells.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_DECLAREDTYPES_H
#define QORQL_DECLAREDTYPES_H

#include <map>
#include <string>

#include "Cimom/QORQL/QORQL_Evaluatable.h"
#include "cimom/IQoriClass.h"
#include "cmpbase.h"

class QORQL_Factor;
class QORQL_FromClause;
class QORQL_Function;

struct QORQL_DeclaredType {
  enum Kind {
    kUnknown,
    kUnsigned,  // of less than 64 bits
    kUint64,
    kSigned,
    kReal,
    kOther
  };
  Kind kind = kUnknown;
  bool isArray = false;
  bool isReal32 = false;
};

// The FROM names of one statement and the classes behind them. BORROWS nothing.
class QORQL_DeclaredTypes {
 public:
  QORQL_DeclaredTypes(const QORQL_FromClause& from, const QORString& nameSpace);

  // The class that a FROM name in any case stands for; any other name as it is.
  QORString classNameOf(const QORString& fromName) const;
  bool isFromName(const QORString& name) const;
  // Null when the repository has no such class.
  QORSmrPtr<IQoriClass> classOf(const QORString& fromName) const;
  // Whether the repository has a class of that name, which is no alias.
  bool hasClass(const QORString& name) const { return !findClass(name).IsNull(); }
  // Whether the first class is the second or one below it. Takes no aliases.
  bool isA(const QORString& className, const QORString& ancestor) const;

  // The type of a node's values, by the rules of arithmetic.
  QORQL_DeclaredType of(const QORQL_Evaluatable* node) const;

 private:
  QORSmrPtr<IQoriClass> findClass(const QORString& className) const;
  QORQL_DeclaredType ofReference(const QORQL_Factor& factor) const;
  QORQL_DeclaredType ofFunction(const QORQL_Function& function) const;
  template <class Node>
  QORQL_DeclaredType ofChain(const Node& first) const;

  std::map<std::string, QORString> _classNames;  // by name in upper case
  QORString _nameSpace;
};

#endif
