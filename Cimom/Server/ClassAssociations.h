// The associations of a class, by what the references of association classes declare.
// Tested by tests/unit/Server/AssociationOperationsTest.cpp.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_CLASSASSOCIATIONS_H
#define QORQL_SERVER_CLASSASSOCIATIONS_H

#include <functional>
#include <vector>

#include "Cimom/CimXml/CimXmlRequest.h"
#include "Cimom/Server/ServerClasses.h"

// Of the class that the call's ObjectName names, as far as its roles and classes say. BORROWS both.
class ClassAssociations {
 public:
  // THROWS CimStatusException, status 5, for a class that there is not.
  ClassAssociations(const CimXmlRequest& request, const ServerClasses& space);

  // The classes at the other ends, each once.
  std::vector<ServerClasses::Class> associators() const;
  // The association classes, each once.
  std::vector<ServerClasses::Class> references() const;

 private:
  using Meet = std::function<void(const ServerClasses::Class& association, QORuint32 sourcePosition)>;

  void forEachAssociation(const QORString& associationClass, const Meet& meet) const;
  void addOtherEnds(const CQoriClass& model, QORuint32 sourcePosition, std::vector<ServerClasses::Class>& found) const;
  QORString classOf(const char* parameter) const;

  const CimXmlRequest& _request;
  const ServerClasses& _space;
  const QORString _source;
  const QORString _role;
  const QORString _resultRole;
  const QORString _resultClass;
};

#endif
