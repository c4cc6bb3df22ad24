// Embeds the engine: loads a model, runs a query, prints its rows and the XML
// stream, and asks a filter whether an instance matches. docs/embedding.md goes
// through it step by step.
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Exception.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_ParseException.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "cimom/CIMApi.h"

namespace {

const char* const kModel = R"mof(
class Shop_Item { [Key] string Name; uint32 Stock; real64 Price; };
instance of Shop_Item { Name = "lamp"; Stock = 3; Price = 24.5; };
instance of Shop_Item { Name = "chair"; Stock = 0; Price = 80; };
instance of Shop_Item { Name = "table"; Stock = 1; };
)mof";

const char* const kNameSpace = "root/shop";
const char* const kLanguage = "DMTF:CQL";

// The value's text; "-" for a null.
QORString textOf(const QORSmrPtr<IQoriValue>& value) { return value.IsNull() ? QORString("-") : value->toString(); }

// Runs one query: its rows first, read from the result table, then the stream.
void runQuery(const char* text) {
  const QORString query(text);  // must outlive lexer and statement
  const QORString language(kLanguage);
  QORQL_Lexer lexer(query, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> statement = QORQL_Query::parse(symbols, lexer, false, query, language, kNameSpace);

  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable);
  std::ostringstream xml;
  statement->execute(symbols, table, &xml, kNameSpace);

  for (QORuint32 i = 0; i < table->getRowCount(); ++i) {
    const QORSmrPtr<QORQL_DataRow> row = table->getRow(i);
    std::cout << textOf(row->getPropertyValueByName("Shop_Item", "Name")) << ": "
              << textOf(row->getPropertyValueByName("Shop_Item", "Price")) << '\n';
  }
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
