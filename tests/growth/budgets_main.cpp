// The workloads of the benchmark, each done once under callgrind: budgets MODEL WORKLOADS. A line of WORKLOADS is
// kind, name and statement with tabs between; the kinds are rows, xml, xml-counted, parse and match. Prints the
// compiler and then each name as its dump is written, first "reference": work of the standard library alone over as
// many rows, which tells how another compiler or library counts.
// SPDX-License-Identifier: Apache-2.0
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Out/QORQL_ResultReader.h"
#include "Cimom/QORQL/QORQL_DataTable.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_Query.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "cimom/CIMApi.h"

namespace {

constexpr char kNameSpace[] = "root/cimv2";
constexpr std::size_t kReferenceRows = 1000;
constexpr std::size_t kMatches = 64;

// What a workload came to, so that no compiler leaves it out, and so that an empty one is noticed.
using Yield = std::uint64_t;

template <class Work>
void measure(const std::string& name, Work work) {
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  const Yield yield = work();
  CALLGRIND_DUMP_STATS;
  CALLGRIND_STOP_INSTRUMENTATION;
  if (yield == 0) throw std::runtime_error(name + " yields nothing");
  std::cout << name << "\n";
}

Yield doReferenceWork() {
  std::unordered_map<std::string, std::uint64_t> numbers;
  std::vector<std::string> names;
  for (std::uint64_t i = 0; i < kReferenceRows; ++i) {
    names.push_back("disk-" + std::to_string(i * 7919 % kReferenceRows));
    numbers.emplace(names.back(), i);
  }
  std::sort(names.begin(), names.end());
  Yield sum = 0;
  for (const std::string& name : names) sum += numbers.at(name) * name.size();
  return sum;
}

class ByteCounter : public std::streambuf {
 public:
  Yield count = 0;

 protected:
  int_type overflow(int_type byte) override {
    ++count;
    return traits_type::not_eof(byte);
  }
  std::streamsize xsputn(const char*, std::streamsize size) override {
    count += static_cast<Yield>(size);
    return size;
  }
};

struct Statement {
  explicit Statement(const std::string& query) : text(query) {
    QORQL_Lexer lexer(text, false);
    parsed = QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", kNameSpace).StaticCast<QORQL_Query>();
  }
  QORSmrPtr<QORQL_DataTable> execute(std::ostream* out) {
    QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
    parsed->execute(symbols, table, out, kNameSpace);
    return table;
  }

  const QORString text;
  QORQL_SymbolTable symbols{nullptr};
  QORSmrPtr<QORQL_Query> parsed;
};

Yield readRows(Statement& statement) {
  QORSmrPtr<QORQL_DataTable> table = statement.execute(nullptr);
  QORQL_ResultReader reader(*statement.parsed, statement.symbols, table);
  const std::size_t columns = reader.columns().size();
  Yield cells = 0;
  while (reader.next()) {
    for (std::size_t i = 0; i < columns; ++i) cells += reader.view(i).isNull() ? 0 : 1;
  }
  return cells;
}

Yield writeXml(Statement& statement) {
  std::ostringstream out;
  statement.execute(&out);
  return out.str().size();
}

Yield countXml(Statement& statement) {
  ByteCounter counter;
  std::ostream out(&counter);
  statement.execute(&out);
  return counter.count;
}

void matchInstances(const std::string& name, const std::string& text) {
  CQLQueryStatement filter("CQL", QORString(text), kNameSpace, "");
  if (filter.validate() != QUERY_VALIDATE_SUCCESS) throw std::runtime_error(name + " is no filter");
  const CIMApi::Instances all = CIMApi().enumerateInstances(kNameSpace, filter.getClassList()->first()->getClassName(),
                                                            {}, -1, nullptr, nullptr, nullptr, {});
  std::vector<QORSmrPtr<IQoriObject>> instances;
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*all);
  while (++each && instances.size() < kMatches) {
    if (filter.isMatch(each.key(), kNameSpace)) instances.push_back(each.key());
  }
  measure(name, [&] {
    Yield matches = 0;
    for (const QORSmrPtr<IQoriObject>& instance : instances) matches += filter.isMatch(instance, kNameSpace) ? 1 : 0;
    return matches;
  });
}

// Once without being counted: what is made at first use belongs to no workload.
template <class Work>
void measureStatement(const std::string& name, const std::string& query, Work work) {
  Statement statement(query);
  work(statement);
  measure(name, [&] { return work(statement); });
}

void runWorkload(const std::string& kind, const std::string& name, const std::string& text) {
  if (kind == "match") return matchInstances(name, text);
  if (kind == "rows") return measureStatement(name, text, readRows);
  if (kind == "xml") return measureStatement(name, text, writeXml);
  if (kind == "xml-counted") return measureStatement(name, text, countXml);
  if (kind != "parse") throw std::runtime_error("no kind '" + kind + "'");
  measure(name, [&] { return Statement(text).parsed.IsNull() ? Yield{0} : Yield{1}; });
}

std::string contentOf(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(std::string(path) + " cannot be read");
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void run(const char* model, const char* workloads) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader(manager.sink()).loadText(contentOf(model), "model");
  std::cout << __VERSION__ << "\n";
  measure("reference", doReferenceWork);
  std::istringstream lines(contentOf(workloads));
  std::string kind;
  std::string name;
  std::string text;
  while (std::getline(lines, kind, '\t') && std::getline(lines, name, '\t') && std::getline(lines, text)) {
    runWorkload(kind, name, text);
  }
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: budgets MODEL WORKLOADS\n";
    return 2;
  }
  try {
    run(arguments[1], arguments[2]);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
  return 0;
}
