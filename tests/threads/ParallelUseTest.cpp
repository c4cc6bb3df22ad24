// Many queries and matches at once, each on its own tree, against one object
// manager whose instances change meanwhile: each sees a state before or after a
// change, and none disturbs another.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/QORQL/CQLQueryStatement.h"
#include "QueryRun.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr char kModel[] = R"(
class T_Disk { [Key] string Name; uint32 Slot; uint64 Size; string Vendor; uint8 Codes[]; };
class T_Pool { [Key] string Id; uint32 Quota; };
[Association] class T_Member { [Key] T_Pool REF Pool; [Key] T_Disk REF Member; };
class T_Live { [Key] uint32 Id; uint32 Turn; };
class CIM_Volume { [Key] string Id; uint16 Status[]; uint64 Size; };
[Indication] class CIM_InstModification {
  [EmbeddedObject] string SourceInstance; [EmbeddedObject] string PreviousInstance; string Note; uint32 Number; };
)";
constexpr char kNameSpace[] = "root/cimv2";
constexpr int kDisks = 40;
constexpr int kRounds = 12;

QORSmrPtr<IQoriValue> text(const std::string& value) { return QORSmrPtr<IQoriValue>(new CQoriValue(QORString(value))); }
QORSmrPtr<IQoriValue> number(unsigned value, const QORSmrPtr<IQoriType>& type = CQoriType::uint32) {
  return QORSmrPtr<IQoriValue>(new CQoriValue(value, type));
}

// Two live instances that always tell one number.
class TurningProvider : public InstanceProvider {
 public:
  QORString getClassName() const override { return "T_Live"; }
  void enumerate(const Request& request, const Emit& emit) override {
    const unsigned turn = ++_turn;
    for (unsigned id = 1; id <= 2; ++id) {
      std::vector<QORSmrPtr<IQoriValue>> values;
      for (const QORString& name : request.propertyNames) values.push_back(number(name == "Id" ? id : turn));
      emit(std::move(values));
    }
  }

 private:
  std::atomic<unsigned> _turn{0};
};

struct World {
  World() {
    manager.makeCurrent();
    MofLoader(manager.sink()).loadText(kModel, "model");
    manager.registerProvider(kNameSpace, std::make_shared<TurningProvider>());
    const Name pool(create("T_Pool", {{"Id", text("p")}, {"Quota", number(1)}}));
    for (int i = 0; i < kDisks; ++i) {
      disks.push_back(create("T_Disk", {{"Name", text("d" + std::to_string(i))},
                                        {"Slot", number(static_cast<unsigned>(i % 4))},
                                        {"Size", number(1, CQoriType::uint64)},
                                        {"Vendor", text("v1")}}));
      create("T_Member", {{"Pool", reference(pool)}, {"Member", reference(disks.back())}});
    }
  }

  using Name = QORSmrPtr<IQoriInstanceName>;
  static QORSmrPtr<IQoriValue> reference(const Name& name) { return QORSmrPtr<IQoriValue>(new CQoriValue(name)); }
  Name create(const char* className, std::vector<CimInstanceProperty> properties) {
    CimInstanceDeclaration declaration;
    declaration.className = className;
    declaration.properties = std::move(properties);
    return manager.createInstance(kNameSpace, declaration);
  }

  EmbeddedObjectManager manager;
  std::vector<Name> disks;
};

// The rows of a query: on this thread, with a tree, a symbol table and a table of its own.
std::vector<std::string> rowsOf(const std::string& query, QORQL_DataTable::ExecutionMode mode) {
  const QORString text(query);
  QORQL_Lexer lexer(text, false);
  QORQL_SymbolTable symbols(nullptr);
  const QORSmrPtr<QORQL_Executable> parsed(QORQL_Query::parse(symbols, lexer, false, text, "DMTF:CQL", kNameSpace));
  QORSmrPtr<QORQL_DataTable> table(new QORQL_DataTable());
  table->setExecutionMode(mode);
  std::ostringstream stream;
  parsed->execute(symbols, table, &stream, kNameSpace);
  QORQL_ResultReader reader(dynamic_cast<QORQL_Query&>(*parsed), symbols, table);
  std::vector<std::string> rows;
  while (reader.next()) {
    rows.emplace_back();
    for (std::size_t i = 0; i < reader.columns().size(); ++i) {
      const QORSmrPtr<IQoriValue> value(reader.value(i));
      rows.back() +=
          (i == 0 ? "" : "|") + (value.IsNull() ? std::string("NULL") : std::string(value->toString().view()));
    }
  }
  return rows;
}

// Runs every check round and round on a thread of its own while the change goes on. Checks return what is wrong.
using Check = std::function<std::string(int round)>;
void runAll(const std::vector<Check>& checks, const std::function<void(int round)>& change) {
  std::atomic<bool> isDone{false};
  std::vector<std::string> wrong(checks.size());
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < checks.size(); ++i) {
    threads.emplace_back([&, i] {
      try {
        for (int round = 0; wrong[i].empty() && (round < kRounds || !isDone); ++round) wrong[i] = checks[i](round);
      } catch (const QoriBaseException& error) {
        wrong[i] = error.what();
      }
    });
  }
  for (int round = 0; round < kRounds; ++round) change(round);
  isDone = true;
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < checks.size(); ++i) EXPECT_EQ(wrong[i], "") << "check " << i;
}

QORQL_DataTable::ExecutionMode modeOf(int round) {
  return round % 2 == 0 ? QORQL_DataTable::kExecutionLazy : QORQL_DataTable::kExecutionPlain;
}

std::string expectOneOf(const std::string& query, const std::vector<std::vector<std::string>>& allowed, int round) {
  const std::vector<std::string> rows = rowsOf(query, modeOf(round));
  for (const std::vector<std::string>& one : allowed) {
    if (rows == one) return {};
  }
  return query + " gave " + testing::PrintToString(rows);
}

TEST(ParallelUse, QueriesSeeChangesWholeOrNotAtAll) {
  World world;
  const std::string all = std::to_string(kDisks);
  const std::vector<Check> checks = {
      [&](int round) {  // Size and Vendor change together
        return expectOneOf("SELECT Name FROM T_Disk WHERE Size = 1 AND Vendor = 'v2'", {{}}, round);
      },
      [&](int round) {
        return expectOneOf("SELECT COUNT(Name) AS N, SUM(Slot) AS S FROM T_Disk", {{all + "|60"}}, round);
      },
      [&](int round) {
        const std::vector<std::string> rows = rowsOf(
            "SELECT d.Name FROM T_Pool AS p, T_Disk AS d, T_Member AS m WHERE T_Member = p AND T_Member = d AND "
            "d.Slot = 3 ORDER BY d.Size DESC",
            modeOf(round));
        return rows.size() == kDisks / 4 ? std::string() : std::to_string(rows.size()) + " members";
      },
      [&](int round) {
        const std::vector<std::string> rows = rowsOf(
            "SELECT d.Name, p.Id, INSTANCEOF(d) AS I FROM T_Disk AS d, T_Pool AS p WHERE d.Slot *= p.Quota AND "
            "d.Vendor LIKE 'v' ORDER BY d.Name ASC",
            modeOf(round));
        return rows.size() == kDisks ? std::string() : std::to_string(rows.size()) + " pairs";
      },
      [&](int round) {  // one enumeration serves both instances
        const std::vector<std::string> rows = rowsOf("SELECT Turn FROM T_Live", modeOf(round));
        return rows.size() == 2 && rows[0] == rows[1] ? std::string() : testing::PrintToString(rows);
      },
      [&](int round) {
        try {
          rowsOf("SELECT Nope FROM T_Disk WHERE Name = 'x'", modeOf(round));
        } catch (const QORQL_ParseException& error) {
          return error.getMessage() == "property 'Nope' not found in any class" ? std::string() : error.what();
        }
        return std::string("no error");
      }};
  runAll(checks, [&](int round) {
    const bool isSecond = round % 2 == 0;
    for (const World::Name& disk : world.disks) {
      world.manager.modifyInstance(
          disk, {{"Size", number(isSecond ? 2 : 1, CQoriType::uint64)}, {"Vendor", text(isSecond ? "v2" : "v1")}});
    }
    MofLoader(world.manager.sink()).loadText("class T_New" + std::to_string(round) + " { [Key] string Id; };", "new");
  });
}

TEST(ParallelUse, InstancesComeAndGoUnderRunningQueries) {
  World world;
  const auto isWhole = [](const std::vector<std::string>& rows) {
    return rows.size() % 10 == 0 ? std::string() : std::to_string(rows.size()) + " rows";
  };
  const std::vector<Check> checks(4, [&](int round) {
    return isWhole(
        rowsOf(round % 3 == 0 ? "SELECT * FROM T_Disk" : "SELECT Name FROM T_Disk ORDER BY Name ASC", modeOf(round)));
  });
  runAll(checks, [&](int round) {
    std::string mof;
    for (int i = 0; i < 10; ++i) {
      mof += "instance of T_Disk { Name = \"n" + std::to_string(round) + "-" + std::to_string(i) + "\"; };";
    }
    MofLoader(world.manager.sink()).loadText(mof, "ten more");  // all ten or none
  });
}

TEST(ParallelUse, OneFilterAndManyMatchOnManyThreads) {
  World world;
  const std::string filter =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_Volume AND SourceInstance.CIM_Volume::Status <> "
      "PreviousInstance.CIM_Volume::Status AND Number + 1 > 5 AND Note = 'seen'";
  CQLQueryStatement shared("CQL", filter.c_str(), kNameSpace, "");
  ASSERT_EQ(shared.validate(), QUERY_VALIDATE_SUCCESS);
  const auto indication = [&](int count) {
    return MofLoader(world.manager.sink(), kNameSpace)
        .readInstances("instance of CIM_InstModification { Note = \"seen\"; Number = " + std::to_string(count) +
                           "; SourceInstance = \"instance of CIM_Volume { Status = {2, 6}; };\"; "
                           "PreviousInstance = \"instance of CIM_Volume { Status = {2}; };\"; };",
                       "indication")
        .at(0);
  };
  const std::vector<QORSmrPtr<IQoriObject>> indications = {indication(9), indication(3)};
  const Check matchShared = [&](int) {
    const bool isRight = shared.isMatch(indications[0], kNameSpace) && !shared.isMatch(indications[1], kNameSpace);
    return isRight ? std::string() : std::string("the shared filter errs");
  };
  const Check matchOwn = [&](int) {
    CQLQueryStatement own("CQL", filter.c_str(), kNameSpace, "");
    const bool isRight = own.validate() == QUERY_VALIDATE_SUCCESS && own.isMatch(indications[0], kNameSpace) &&
                         own.getClassList()->entries() == 1;
    return isRight ? std::string() : std::string("a filter of its own errs");
  };
  runAll({matchShared, matchShared, matchShared, matchOwn, matchOwn}, [&](int round) {
    const std::string number = std::to_string(round);
    MofLoader(world.manager.sink()).loadText("class CIM_Sub" + number + " : CIM_Volume { uint32 More; };", "sub");
    world.manager.modifyInstance(world.disks[0], {{"Slot", ::number(static_cast<unsigned>(round))}});
  });
}

}  // namespace
