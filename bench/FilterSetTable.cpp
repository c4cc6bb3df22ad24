// Filters as subscriptions have them: equality with a text or a number, ranges of
// numbers, and classes with a property behind them. However many there are, ten of
// them match each indication.
// SPDX-License-Identifier: Apache-2.0
#include "bench/FilterSetTable.h"

#include <malloc.h>

#include <array>
#include <iomanip>
#include <map>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Cimom/Embedded/EmbeddedObjectManager.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/QORQL/CQLFilterSet.h"
#include "bench/PairedRounds.h"

namespace bench {

namespace {

using Handle = CQLFilterSet::Handle;
using Statement = CQLFilterSet::Statement;
using Handles = std::vector<Handle>;
using Indications = std::vector<QORSmrPtr<IQoriObject>>;

constexpr char kNameSpace[] = "root/cimv2";
constexpr std::array<std::size_t, 6> kSizes = {1, 4, 8, 1000, 10000, 100000};
constexpr std::size_t kMatches = 10;
constexpr std::size_t kIndications = 16;
constexpr double kLeastGain = 100;
constexpr double kGreatestGrowth = 2;
constexpr double kGreatestBytes = 400;

constexpr char kSchema[] = R"(
class CIM_ManagedElement { string Caption; };
class CIM_StorageVolume : CIM_ManagedElement { [key] string Id; uint64 Size; uint16 OperationalStatus[]; };
class XYZ_Volume : CIM_StorageVolume { };
[indication] class CIM_Indication { string IndicationIdentifier; };
[indication] class CIM_InstIndication : CIM_Indication { [EmbeddedObject] string SourceInstance; };
[indication] class CIM_InstModification : CIM_InstIndication { [EmbeddedObject] string PreviousInstance; };
[indication] class CIM_AlertIndication : CIM_Indication {
  string OwningEntity; string MessageID; string SystemName; uint16 AlertType; uint64 TrendValue;
};
)";

// The filters that match come first, in turn those of alerts and those of modifications.
std::string filterText(std::size_t i) {
  const std::string alert = "SELECT * FROM CIM_AlertIndication WHERE ";
  const std::string change =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageVolume AND SourceInstance.";
  const std::string number = std::to_string(i);
  if (i < 2 * kMatches) {
    return i % 2 == 0 ? alert + "OwningEntity = 'Bench' AND TrendValue >= " + number : change + "Size > " + number;
  }
  switch (i % 5) {
    case 0:
      return alert + "MessageID = 'M" + number + "' AND OwningEntity = 'Bench'";
    case 1:
      return alert + "SystemName = 'host" + number + "' AND AlertType = 3";
    case 2:
      return alert + "OwningEntity = 'O" + number + "'";
    case 3:
      return alert + "TrendValue > " + std::to_string(i * 10) + " AND TrendValue < " + std::to_string(i * 10 + 9);
    default:
      return change + "CIM_StorageVolume::Id = 'V" + number + "'";
  }
}

std::string indicationMof(std::size_t i) {
  const std::string number = std::to_string(i);
  if (i % 2 == 0) {
    return "instance of CIM_AlertIndication { OwningEntity = \"Bench\"; MessageID = \"X" + number +
           "\"; SystemName = \"host\"; AlertType = 3; TrendValue = 10000000000; };\n";
  }
  return "instance of CIM_InstModification { SourceInstance = \"instance of XYZ_Volume { Id = \\\"X" + number +
         "\\\"; Size = 1000; };\"; };\n";
}

Statement makeFilter(std::size_t i) {
  const QORString nameSpace(kNameSpace);
  Statement filter(new CQLQueryStatement("DMTF:CQL", QORString(filterText(i)), nameSpace, nameSpace));
  if (filter->validate() == QUERY_VALIDATE_SUCCESS) return filter;
  throw std::runtime_error(filterText(i) + ": " + std::string(filter->getFault().message.view()));
}

// What the process has of its heap at this moment.
double heapBytes() {
  const struct mallinfo2 heap = mallinfo2();
  return static_cast<double>(heap.uordblks) + static_cast<double>(heap.hblkhd);
}

// The first filters, as a set and one by one.
class Candidates {
 public:
  Candidates(const std::vector<Statement>& filters, std::size_t count) : _filters(filters), _count(count) {
    const double before = heapBytes();
    const double start = cpuSeconds();
    for (std::size_t i = 0; i < count; ++i) _set.add(i, filters[i]);
    _secondsToAdd = cpuSeconds() - start;
    _bytes = heapBytes() - before;
  }

  const Handles& askSet(const QORSmrPtr<IQoriObject>& indication) {
    _set.match(indication, _nameSpace, _found);
    return _found;
  }
  const Handles& askEach(const QORSmrPtr<IQoriObject>& indication) {
    _found.clear();
    for (std::size_t i = 0; i < _count; ++i) {
      if (_filters[i]->isMatch(indication, _nameSpace)) _found.push_back(i);
    }
    return _found;
  }
  // What the set takes beside the statements.
  double bytesOfOne() const { return _bytes / static_cast<double>(_count); }
  double microsecondsToAdd() const { return _secondsToAdd * 1e6 / static_cast<double>(_count); }
  // Takes all filters out.
  double microsecondsToRemove() {
    const double start = cpuSeconds();
    for (std::size_t i = 0; i < _count; ++i) _set.remove(i);
    return (cpuSeconds() - start) * 1e6 / static_cast<double>(_count);
  }

 private:
  const std::vector<Statement>& _filters;
  const std::size_t _count;
  const QORString _nameSpace = kNameSpace;
  CQLFilterSet _set;
  Handles _found;
  double _secondsToAdd = 0;
  double _bytes = 0;
};

// How many match an indication; all of them must be the same both ways.
double matchesOf(Candidates& candidates, const Indications& indications) {
  std::size_t matches = 0;
  for (const QORSmrPtr<IQoriObject>& indication : indications) {
    const Handles each = candidates.askEach(indication);
    if (candidates.askSet(indication) != each) throw std::runtime_error("sets: a set and its filters differ");
    matches += each.size();
  }
  return static_cast<double>(matches) / static_cast<double>(indications.size());
}

// What a size's row shows, and the goals need.
struct Figures {
  double one = 0;  // the set's time for an indication, in nanoseconds
  double gain = 0;
  double bytes = 0;  // of one filter
};

Figures printRow(const std::vector<Statement>& filters, std::size_t size, const Indications& indications,
                 const TableOptions& options, std::ostream& out) {
  Candidates candidates(filters, size);
  const double matches = matchesOf(candidates, indications);
  const auto askAll = [&](auto ask) {
    return [&candidates, &indications, ask] {
      for (const QORSmrPtr<IQoriObject>& indication : indications) (candidates.*ask)(indication);
    };
  };
  const PairedRounds rounds({askAll(&Candidates::askEach), askAll(&Candidates::askSet)}, options.rounds,
                            options.leastSeconds);
  const auto nanoseconds = [&](std::size_t way) {
    return rounds.seconds(way).median * 1e9 / static_cast<double>(indications.size());
  };
  const Spread ratio = rounds.ratio(0, 1);
  out << "| " << size << " | " << std::fixed << std::setprecision(1) << matches << " | " << std::setprecision(0)
      << nanoseconds(0) << " | " << nanoseconds(1) << " | " << std::setprecision(2) << ratio.median << " [" << ratio.low
      << "-" << ratio.high << "] | " << candidates.microsecondsToAdd() << " | " << candidates.microsecondsToRemove()
      << " | " << std::setprecision(0) << candidates.bytesOfOne() << " |\n";
  out.flush();
  return {nanoseconds(1), ratio.median, candidates.bytesOfOne()};
}

void printGoal(const char* name, double value, const char* relation, double goal, bool isMet, std::ostream& out) {
  out << name << ' ' << std::setprecision(2) << value << "; goal: " << relation << ' ' << std::setprecision(0) << goal
      << (isMet ? ", met\n" : ", missed\n");
}

}  // namespace

void printFilterSetTable(const TableOptions& options, std::ostream& out) {
  EmbeddedObjectManager manager;
  manager.makeCurrent();
  MofLoader loader(manager.sink(), kNameSpace);
  loader.loadText(kSchema, "schema");
  std::string mof;
  for (std::size_t i = 0; i < kIndications; ++i) mof += indicationMof(i);
  const Indications indications = loader.readInstances(mof, "indications");
  std::vector<Statement> filters;
  for (std::size_t i = 0; i < kSizes.back(); ++i) filters.push_back(makeFilter(i));

  out << "\n### One indication against a set of filters\n\n"
      << "| filters | filters that match | one by one, ns | the set, ns | one by one / set | adding one, us | removing "
         "one, us | bytes of one |\n|--:|--:|--:|--:|--:|--:|--:|--:|\n";
  std::map<std::size_t, Figures> figures;
  for (const std::size_t size : kSizes) figures[size] = printRow(filters, size, indications, options, out);
  const double gain = figures[10000].gain;
  const double growth = figures[100000].one / figures[1000].one;
  out << '\n';
  printGoal("With 10,000 filters, one by one / set:", gain, "at least", kLeastGain, gain >= kLeastGain, out);
  out << '\n';
  printGoal("From 1,000 to 100,000 filters the set's time grows to", growth, "at most", kGreatestGrowth,
            growth <= kGreatestGrowth, out);
  out << '\n';
  const double bytes = figures[10000].bytes;
  printGoal("With 10,000 filters, bytes of one beside its statement:", bytes, "at most", kGreatestBytes,
            bytes <= kGreatestBytes, out);
}

}  // namespace bench
