// Each reads the same properties of the same objects.
// SPDX-License-Identifier: Apache-2.0
#include "bench/MatchPeers.h"

#include <sqlite3.h>

#include <stdexcept>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "bench/Data.h"
#include "bench/World.h"

namespace bench {

namespace {

constexpr std::uint64_t kWantedStatus = 2;
constexpr std::uint64_t kWantedBlockSize = 512;
constexpr double kGreatestLoad = 0.9;
constexpr std::string_view kUnwantedName = "abc";

std::string conditionsOf(Conditions conditions, const std::vector<std::string>& left) {
  const std::vector<std::string> right = {" > " + std::to_string(kMiddleSize), " = 2", " = 512", " < 0.9", " <> 'abc'"};
  std::string text;
  for (std::size_t i = 0; i < static_cast<std::size_t>(conditions); ++i) {
    text += (i == 0 ? "" : " AND ") + left[i] + right[i];
  }
  return text;
}

// The scalars are looked at where they lie, and no further than needed.
template <Conditions kConditions>
class NativeMatcher final : public Matcher {
 public:
  std::uint64_t run(const Instances& instances) override {
    std::uint64_t matches = 0;
    for (const QORSmrPtr<IQoriObject>& instance : instances) matches += isMatch(*instance.Get()) ? 1 : 0;
    return matches;
  }

 private:
  static bool isMatch(const IQoriObject& disk) {
    if (disk.getScalarAt(kSize).u <= kMiddleSize) return false;
    if constexpr (kConditions == Conditions::One) return true;
    if (disk.getScalarAt(kStatus).u != kWantedStatus) return false;
    if constexpr (kConditions == Conditions::Two) return true;
    return disk.getScalarAt(kBlockSize).u == kWantedBlockSize && disk.getScalarAt(kLoad).r < kGreatestLoad &&
           disk.getScalarAt(kDiskName).text->view() != kUnwantedName;
  }
};

class SqliteMatcher final : public Matcher {
 public:
  explicit SqliteMatcher(Conditions conditions) : _count(static_cast<int>(conditions)) {
    const std::string sql = "SELECT " + conditionsOf(conditions, {"?1", "?2", "?3", "?4", "?5"});
    check(sqlite3_open_v2(":memory:", &_database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr));
    check(sqlite3_prepare_v2(_database, sql.c_str(), -1, &_statement, nullptr));
  }
  SqliteMatcher(const SqliteMatcher&) = delete;
  SqliteMatcher& operator=(const SqliteMatcher&) = delete;
  ~SqliteMatcher() override {
    sqlite3_finalize(_statement);
    sqlite3_close(_database);
  }

  std::uint64_t run(const Instances& instances) override {
    std::uint64_t matches = 0;
    for (const QORSmrPtr<IQoriObject>& instance : instances) {
      bind(*instance.Get());
      if (sqlite3_step(_statement) != SQLITE_ROW) throw std::runtime_error(sqlite3_errmsg(_database));
      matches += static_cast<std::uint64_t>(sqlite3_column_int(_statement, 0));
      sqlite3_reset(_statement);
    }
    return matches;
  }

 private:
  void check(int status) const {
    if (status != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(_database));
  }
  void bindNumber(int place, const IQoriObject& disk, QORuint32 position) {
    sqlite3_bind_int64(_statement, place, static_cast<sqlite3_int64>(disk.getScalarAt(position).u));
  }
  void bind(const IQoriObject& disk) {
    bindNumber(1, disk, kSize);
    if (_count > 1) bindNumber(2, disk, kStatus);
    if (_count < 5) return;
    bindNumber(3, disk, kBlockSize);
    sqlite3_bind_double(_statement, 4, disk.getScalarAt(kLoad).r);
    const std::string_view name = disk.getScalarAt(kDiskName).text->view();
    sqlite3_bind_text(_statement, 5, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
  }

  int _count;
  sqlite3* _database = nullptr;        // OWNS
  sqlite3_stmt* _statement = nullptr;  // OWNS
};

// Filters that were validated beforehand; an instance is asked of each of them.
class EngineMatcher final : public Matcher {
 public:
  explicit EngineMatcher(const std::vector<std::string>& conditions) {
    for (const std::string& condition : conditions) {
      const std::string query = std::string("SELECT * FROM ") + kDiskClass + " WHERE " + condition;
      auto filter = std::make_unique<CQLQueryStatement>("DMTF:CQL", query.c_str(), _nameSpace, _nameSpace);
      if (filter->validate() != QUERY_VALIDATE_SUCCESS) {
        throw std::runtime_error(query + ": " + std::string(filter->getFault().message.view()));
      }
      _filters.push_back(std::move(filter));
    }
  }
  std::uint64_t run(const Instances& instances) override {
    std::uint64_t matches = 0;
    for (const QORSmrPtr<IQoriObject>& instance : instances) {
      for (const auto& filter : _filters) matches += filter->isMatch(instance, _nameSpace) ? 1 : 0;
    }
    return matches;
  }

 private:
  const QORString _nameSpace = kNameSpace;
  std::vector<std::unique_ptr<CQLQueryStatement>> _filters;
};

template <class IsWanted>
Instances someDisks(std::size_t count, const IsWanted& isWanted) {
  Instances found;
  const CIMApi::Instances disks = instancesOf(kDiskClass);
  QORValSlistIterator<QORSmrPtr<IQoriObject>> each(*disks);
  while (found.size() < count && ++each) {
    if (isWanted(each.key())) found.push_back(each.key());
  }
  return found;
}

}  // namespace

std::unique_ptr<Matcher> makeNativeMatcher(Conditions conditions) {
  if (conditions == Conditions::One) return std::make_unique<NativeMatcher<Conditions::One>>();
  if (conditions == Conditions::Two) return std::make_unique<NativeMatcher<Conditions::Two>>();
  return std::make_unique<NativeMatcher<Conditions::Five>>();
}

std::unique_ptr<Matcher> makeSqliteMatcher(Conditions conditions) {
  return std::make_unique<SqliteMatcher>(conditions);
}

std::unique_ptr<Matcher> makeEngineMatcher(Conditions conditions) {
  const std::vector<std::string> names = {"Size", "Status", "BlockSize", "Load", "Name"};
  return std::make_unique<EngineMatcher>(std::vector<std::string>{conditionsOf(conditions, names)});
}

std::unique_ptr<Matcher> makeManyFilters(std::size_t count) {
  std::vector<std::string> conditions;
  for (std::size_t i = 0; i < count; ++i) {
    conditions.push_back("Size > " + std::to_string(kSizeRange / count * i) + " AND Status = " + std::to_string(i % 5));
  }
  return std::make_unique<EngineMatcher>(conditions);
}

Instances matchingDisks(std::size_t count) {
  return someDisks(
      count, [&](const QORSmrPtr<IQoriObject>& disk) { return makeNativeMatcher(Conditions::Five)->run({disk}) != 0; });
}

Instances missingDisks(std::size_t count) {
  return someDisks(
      count, [&](const QORSmrPtr<IQoriObject>& disk) { return makeNativeMatcher(Conditions::One)->run({disk}) == 0; });
}

}  // namespace bench
