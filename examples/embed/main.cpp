// Embeds the engine: loads a model, runs a query, prints its rows and the XML
// stream, and asks a filter whether an instance matches. docs/embedding.md goes
// through it step by step.
// SPDX-License-Identifier: Apache-2.0
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "cimom/CIMApi.h"
#include "qorql.h"

namespace {

const char* const kModel = R"mof(
class Shop_Item { [Key] string Name; uint32 Stock; real64 Price; };
instance of Shop_Item { Name = "lamp"; Stock = 3; Price = 24.5; };
instance of Shop_Item { Name = "chair"; Stock = 0; Price = 80; };
instance of Shop_Item { Name = "table"; Stock = 1; };
)mof";

const char* const kNameSpace = "root/shop";
const char* const kLanguage = "DMTF:CQL";

// The column's text; "-" for a null.
QORString textOf(QORQL_Result& rows, std::size_t column) {
  const QORString text(rows.text(column));
  return text.isNull() ? QORString("-") : text;
}

// Runs one query: its rows first, then the stream.
void runQuery(const char* text) {
  std::ostringstream xml;
  QORQL_Result rows = QORQL_Statement(text, kNameSpace).run(&xml);
  while (rows.next()) std::cout << textOf(rows, 0) << ": " << textOf(rows, 1) << '\n';
  std::cout << xml.str();
}

// The line is 0 for a fault that was found after the text had been read.
void runQueryAndReport(const char* text) {
  try {
    runQuery(text);
  } catch (const QORQL_ParseException& error) {
    std::cout << "line " << error.getLineNr() << ": " << error.getMessage() << " (CIM status "
              << error.getCIMErrorCode() << ")\n";
  } catch (const QORQL_Exception& error) {
    std::cout << error.getMessage() << " (CIM status " << error.getCIMErrorCode() << ")\n";
  } catch (const QoriBaseException& error) {
    std::cout << error.getMessage() << '\n';  // a value, a provider or the platform
  }
}

// Subscribers and their filters.
class Subscriptions {
 public:
  void subscribe(const char* subscriber, const char* text) {
    const QORSmrPtr<CQLQueryStatement> filter(new CQLQueryStatement(kLanguage, text, kNameSpace, kNameSpace));
    if (filter->validate() != QUERY_VALIDATE_SUCCESS) {
      std::cout << subscriber << " is refused: " << filter->getFault().message << '\n';
    } else {
      _filters.add(_subscribers.size(), filter);
      _subscribers.emplace_back(subscriber);
    }
  }

  // Any number of threads may deliver at the same time.
  void deliver(const QORSmrPtr<IQoriObject>& instance) const {
    std::cout << instance->getInstanceName()->toString() << '\n';
    std::vector<CQLFilterSet::Handle> handles;
    _filters.match(instance, kNameSpace, handles);
    for (const CQLFilterSet::Handle handle : handles) std::cout << "  goes to " << _subscribers[handle] << '\n';
  }

 private:
  CQLFilterSet _filters;                  // by their numbers among the subscribers
  std::vector<std::string> _subscribers;  // changed before the first delivery alone
};

void deliverAll(const Subscriptions& subscriptions) {
  const CIMApi::Instances items =
      CIMApi().enumerateInstances(kNameSpace, "Shop_Item", nullptr, -1, nullptr, nullptr, "", nullptr);
  for (QORuint32 i = 0; i < items->entries(); ++i) subscriptions.deliver(items->at(i));
}

}  // namespace

int main() {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader(manager.sink(), kNameSpace).loadText(kModel, "model");

  runQueryAndReport("SELECT Name, Price FROM Shop_Item WHERE Stock > 0 ORDER BY Name DESC");
  runQueryAndReport("SELECT Name FROM Shop_Item WHERE Stock >");
  Subscriptions subscriptions;
  subscriptions.subscribe("the cashier", "SELECT * FROM Shop_Item WHERE Stock > 0 AND Price < 50");
  subscriptions.subscribe("the buyer", "SELECT * FROM Shop_Item WHERE Stock = 0");
  subscriptions.subscribe("the thief", "SELECT * FROM Shop_Item WHERE Safe = TRUE");
  deliverAll(subscriptions);
}
