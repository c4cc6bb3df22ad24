// Why a statement, a query or a filter, is refused, in words.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_TOOL_STATEMENTFAULT_H
#define QORQL_TOOL_STATEMENTFAULT_H

#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/QORQL/CQLQueryFault.h"
#include "StatementText.h"

// Names what is at fault, what may have been meant and where it stands:
// "Owner is not a property of CIM_AlertIndication: did you mean OwningEntity? (line 1, column 43)".
// BORROWS all it is given.
class StatementFault {
 public:
  StatementFault(EmbeddedObjectManager& manager, const QORString& nameSpace, const StatementText& text)
      : _manager(manager), _nameSpace(nameSpace), _text(text) {}

  struct Description {
    std::string text;
    QORuint32 offset = CQLQueryFault::kNoOffset;  // of the word that it is about
    bool hasSuggestion = true;                    // it says more than that a name is no property
  };
  Description describe(const CQLQueryFault& fault) const;
  // Whether a class of FROM does not exist.
  bool hasUnknownClass() const { return unknownSource() != nullptr; }

 private:
  std::string describeSyntax(const CQLQueryFault& fault) const;
  std::string describeClass(const StatementText::Source& source) const;
  Description describeProperty(const CQLQueryFault& fault) const;
  // The ways to write a property of a FROM class with its qualifier.
  std::vector<std::string> choicesFor(const std::string& name) const;
  std::string describeAmbiguous(const CQLQueryFault& fault) const;
  std::string describeQualifier(const CQLQueryFault& fault) const;
  // The first class of FROM that does not exist; null when all do.
  const StatementText::Source* unknownSource() const;
  // The classes that were asked for the property at fault.
  std::vector<QORString> classesOf(const CQLQueryFault& fault) const;
  std::string namesOf(const std::vector<QORString>& classes) const;
  std::string suggestProperty(const std::string& name, const std::vector<QORString>& classes) const;
  // Of the classes below these the first that has the property; empty when none has.
  QORString holderBelow(const QORString& name, const std::vector<QORString>& classes) const;
  bool looksLikeText(const CQLQueryFault& fault) const;
  // The name at fault as the text has it at its place.
  std::string spelling(const CQLQueryFault& fault) const;
  // " (line 1, column 2)"; empty where the fault has no place.
  std::string placeOf(const CQLQueryFault& fault) const;

  EmbeddedObjectManager& _manager;
  const QORString _nameSpace;
  const StatementText& _text;
};

#endif
