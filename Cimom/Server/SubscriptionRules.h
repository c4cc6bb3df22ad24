// What clients may write of filters, listeners and subscriptions.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_SERVER_SUBSCRIPTIONRULES_H
#define QORQL_SERVER_SUBSCRIPTIONRULES_H

#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Embedded/Indications.h"
#include "Cimom/Server/SubscriptionTable.h"

// Whether an instance of the class in the namespace tells something of subscriptions.
bool isSubscriptionClass(const QORString& nameSpace, const QORString& className);

// Refusals THROW CimStatusException.
class SubscriptionRules {
 public:
  // BORROWS all.
  SubscriptionRules(EmbeddedObjectManager& manager, const SubscriptionTable& table, const IndicationOrigin& origin)
      : _manager(manager), _table(table), _origin(origin) {}

  // Refuses, with 4, an instance of a class below those of subscriptions, which would be checked by nobody.
  static void checkOther(const EmbeddedObjectManager& manager, const QORString& nameSpace, const QORString& className);
  // Refuses, with 7, to create or to delete the service of indications: there is one.
  static void checkNumber(const QORString& nameSpace, const QORString& className);
  // Refuses, with 4, to take a setting of deliveries from an instance of that class.
  static void checkSettings(const IQoriObject& before, const std::vector<CimInstanceProperty>& properties);
  // Refuses a filter as complete() does, and nothing else. What it names is known from then on, so that a second look
  // asks no other server.
  static void tryFilter(EmbeddedObjectManager& manager, const QORString& nameSpace, CimInstanceDeclaration declaration);
  // What an instance would be then.
  static CimInstanceDeclaration changed(const IQoriObject& before, const std::vector<CimInstanceProperty>& properties);
  // Fills in what a client may leave out, and refuses what is wrong: with 4, or 14 or 15 for a filter's language and
  // query.
  void complete(CimInstanceDeclaration& declaration) const;
  // The same for an instance that is to change.
  void check(const IQoriObject& before, const std::vector<CimInstanceProperty>& properties) const;
  // Refuses, with 1, what a subscription refers to.
  void checkRemoval(const IQoriObject& before) const;

 private:
  void checkObject(const IQoriObject& object) const;

  EmbeddedObjectManager& _manager;
  const SubscriptionTable& _table;
  const IndicationOrigin& _origin;
};

#endif
