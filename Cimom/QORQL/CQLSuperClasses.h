// The superclasses of classes, remembered as long as the schema stays as it is.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_CQLSUPERCLASSES_H
#define QORQL_CQLSUPERCLASSES_H

#include "cimom/IQoriRepository.h"
#include "cmpbase.h"

// Goes up the chain of a class, one step at a time. Made for one question, on one
// thread. What was asked before is answered without the class repository, where that
// tells a version of its classes; otherwise each step asks it.
class CQLSuperClasses {
 public:
  // A longer chain of superclasses must be a circle.
  static constexpr QORuint32 kLongestChain = 10000;

  // BORROWS the namespace.
  explicit CQLSuperClasses(const QORString& nameSpace);
  explicit CQLSuperClasses(QORString&& nameSpace) = delete;

  // The name of the class's superclass; empty at the root, for an unknown class, and
  // without a repository. Names ignore case. Valid until the next call of any object of
  // this class on the thread. THROWS what the repository throws.
  const QORString& of(const QORString& className);

 private:
  const QORString& _nameSpace;
  QORSmrPtr<IQoriRepository> _repository;
  QORuint64 _version;  // 0: nothing is remembered
  QORString _found;    // what of() gives where it is not remembered
};

#endif
