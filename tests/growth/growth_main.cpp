// One piece of work, and what it allocated: growth query MODEL TEXT,
// growth filter MODEL INDICATION TEXT, growth mof TEXT; each argument a file.
// Prints the number of allocations and their bytes, without those of loading the model.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "AllocationFaults.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "QueryRun.h"

namespace {

std::string contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(std::string(path) + " cannot be read");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

struct Count {
  unsigned long allocations = AllocationFaults::count();
  unsigned long bytes = AllocationFaults::bytes();

  void print() const {
    std::fprintf(stderr, "%lu %lu\n", AllocationFaults::count() - allocations, AllocationFaults::bytes() - bytes);
  }
};

void runQuery(const char* model, const char* text) {
  QueryRun world(contentOf(model));
  const std::string query = contentOf(text);
  const Count count;
  world.runIn(query, QORQL_DataTable::kExecutionLazy);
  count.print();
}

void runFilter(const char* model, const char* indication, const char* text) {
  QueryRun world(contentOf(model));
  const QORSmrPtr<IQoriObject> instance(
      MofLoader(world.manager().sink()).readInstances(contentOf(indication), "indication").at(0));
  const std::string query = contentOf(text);
  const Count count;
  CQLQueryStatement filter("CQL", QORString(query.data(), query.size()), "root/cimv2", "");
  if (filter.validate() != QUERY_VALIDATE_SUCCESS) throw std::runtime_error("the filter is refused");
  filter.getPropertyList(filter.getClassList()->first());
  filter.isMatch(instance, "root/cimv2");
  count.print();
}

void runMof(const char* text) {
  const std::string mof = contentOf(text);
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  const Count count;
  try {
    MofLoader(manager.sink()).loadText(mof, "text");
  } catch (const MofException&) {
    // Some of the texts are wrong, and that has to be told in good time too.
  }
  count.print();
}

}  // namespace

int main(int count, char** arguments) {
  const std::string kind = count > 1 ? arguments[1] : "";
  try {
    if (kind == "query" && count == 4) {
      runQuery(arguments[2], arguments[3]);
    } else if (kind == "filter" && count == 5) {
      runFilter(arguments[2], arguments[3], arguments[4]);
    } else if (kind == "mof" && count == 3) {
      runMof(arguments[2]);
    } else {
      std::cerr << "usage: growth query MODEL TEXT | filter MODEL INDICATION TEXT | mof TEXT\n";
      return 2;
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
  return 0;
}
