// Pieces of work, and what each allocated: growth (query MODEL TEXT | filter MODEL INDICATION TEXT | mof TEXT)...;
// each argument a file. Prints a line for each piece, the number of its allocations and their bytes, without those of
// loading the model. Under callgrind there is a dump for each piece too, which counts its instructions.
// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <span>
#include <string>
#include <thread>

#include "AllocationFaults.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "QueryRun.h"

namespace {

std::string contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(std::string(path) + " cannot be read");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Does the work and tells what it took; what is done before and after does not count.
template <class Work>
void measure(Work work) {
  // Otherwise a great allocation of this piece would put in order what the pieces before it freed.
  malloc_trim(0);
  CALLGRIND_ZERO_STATS;
  const unsigned long allocations = AllocationFaults::count();
  const unsigned long bytes = AllocationFaults::bytes();
  work();
  std::fprintf(stderr, "%lu %lu\n", AllocationFaults::count() - allocations, AllocationFaults::bytes() - bytes);
  CALLGRIND_DUMP_STATS;
}

void runQuery(const char* model, const char* text) {
  QueryRun world(contentOf(model));
  const std::string query = contentOf(text);
  measure([&] { world.runIn(query, QORQL_DataTable::kExecutionLazy); });
}

void runFilter(const char* model, const char* indication, const char* text) {
  QueryRun world(contentOf(model));
  const QORSmrPtr<IQoriObject> instance(
      MofLoader(world.manager().sink()).readInstances(contentOf(indication), "indication").at(0));
  const std::string query = contentOf(text);
  measure([&] {
    CQLQueryStatement filter("CQL", QORString(query.data(), query.size()), "root/cimv2", "");
    if (filter.validate() != QUERY_VALIDATE_SUCCESS) throw std::runtime_error("the filter is refused");
    filter.getPropertyList(filter.getClassList()->first());
    filter.isMatch(instance, "root/cimv2");
  });
}

void runMof(const char* text) {
  const std::string mof = contentOf(text);
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  measure([&] {
    try {
      MofLoader(manager.sink()).loadText(mof, "text");
    } catch (const MofException&) {
      // Some of the texts are wrong, and that has to be told in good time too.
    }
  });
}

// Runs the first piece of those that are left; returns how many words it had, 0 for none that it knows.
std::size_t runFirst(std::span<char* const> left) {
  const std::string kind = left[0];
  if (kind == "query" && left.size() >= 3) {
    runQuery(left[1], left[2]);
    return 3;
  }
  if (kind == "filter" && left.size() >= 4) {
    runFilter(left[1], left[2], left[3]);
    return 4;
  }
  if (kind == "mof" && left.size() >= 2) {
    runMof(left[1]);
    return 2;
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  std::span<char* const> left(arguments + 1, static_cast<std::size_t>(count - 1));
  while (!left.empty()) {
    std::size_t words = 0;
    std::string fault;
    // On a thread of its own: what a thread remembers of one piece, the next would have to clear away.
    std::thread([&] {
      try {
        words = runFirst(left);
      } catch (const std::exception& error) {
        fault = error.what();
      }
    }).join();
    if (!fault.empty()) {
      std::cerr << left[0] << ' ' << left[1] << ": " << fault << "\n";
      return 1;
    }
    if (words == 0) {
      std::cerr << "usage: growth (query MODEL TEXT | filter MODEL INDICATION TEXT | mof TEXT)...\n";
      return 2;
    }
    left = left.subspan(words);
  }
  return 0;
}
