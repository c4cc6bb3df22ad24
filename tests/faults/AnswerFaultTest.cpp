// Answers of the client interface and of providers that are not as they should
// be: what the engine says of each, in both modes.
// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <stdexcept>

#include "Cimom/Embedded/InstanceProvider.h"
#include "Cimom/Mof/MofLoader.h"
#include "FaultRun.h"
#include "FaultyPlatform.h"
#include "cimom/CQoriBaseObject.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriProviderException.h"
#include "cimom/CQoriValue.h"

namespace {

constexpr char kDisks[] = "SELECT Name, Size FROM T_Disk WHERE Size > 0";
constexpr char kJoin[] = "SELECT d.Name, b.No FROM T_Disk AS d, T_Bay AS b WHERE d.Slot *= b.Slot";
constexpr char kMembers[] =
    "SELECT p.Id, d.Name FROM T_Pool AS p, T_Disk AS d, T_Member AS m WHERE T_Member = p AND T_Member = d";

struct Answers : testing::Test {
  ~Answers() override {
    FaultyPlatform::setEnumerations({});
    FaultyPlatform::setAssociators({});
    FaultyPlatform::setInstances({});
  }

  // The outcome of both modes, which must be one.
  FaultOutcome run(const char* query) {
    const FaultOutcome lazy = world.query(query, QORQL_DataTable::kExecutionLazy);
    EXPECT_EQ(lazy, world.query(query, QORQL_DataTable::kExecutionPlain)) << query;
    return lazy;
  }

  FaultWorld world;
};

CIMApi::Instances withNull(const CIMApi::Instances& found) {
  const CIMApi::Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
  list->append(*found);
  list->insertAt(1, QORSmrPtr<IQoriObject>());
  return list;
}

TEST_F(Answers, ANullListIsAnError) {
  FaultyPlatform::setEnumerations([](const CIMApi::Instances&) { return CIMApi::Instances(); });
  const FaultOutcome outcome = run(kDisks);
  EXPECT_EQ(outcome.error, "runtime 3: Enumerateinstance call for 'T_DISK' returned NULL");
  EXPECT_TRUE(outcome.hasLogged("Enumerateinstance call for 'T_DISK' returned NULL"));
}

TEST_F(Answers, ANullInstanceInAListDoesNotDisturbTheOthers) {
  FaultyPlatform::setEnumerations(withNull);
  const FaultOutcome outcome = run(kDisks);
  EXPECT_EQ(outcome.error, "");
  EXPECT_EQ(outcome.rows, (std::vector<std::string>{"d1|100", "d2|20", "d3|30"}));
  run(kJoin);
  run("SELECT * FROM T_Disk ORDER BY Name ASC");
  run("SELECT COUNT(Name) AS N FROM T_Disk");
  run("SELECT OBJECTPATH(T_Disk) AS P, INSTANCEOF(T_Disk) AS I FROM T_Disk");
}

TEST_F(Answers, AssociatorsThatAreNullHoldNothingOrFail) {
  FaultyPlatform::setAssociators([](const CIMApi::Instances&) { return CIMApi::Instances(); });
  run(kMembers);
  const std::vector<std::string> members = {"p|d1", "p|d2"};
  FaultyPlatform::setAssociators({});
  EXPECT_EQ(run(kMembers).rows, members);
  FaultyPlatform::setAssociators(withNull);
  EXPECT_EQ(run(kMembers).rows, members);
}

TEST_F(Answers, AnAssociateThatIsNamedTwice) {
  FaultyPlatform::setAssociators([](const CIMApi::Instances& found) {
    const CIMApi::Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    list->append(*found);
    list->append(*found);
    return list;
  });
  EXPECT_EQ(run(kMembers).rows, (std::vector<std::string>{"p|d1", "p|d2", "p|d1", "p|d2"}));
  // A column that is there already is filtered: its rows stay once.
  EXPECT_EQ(
      run("SELECT p.Id, d.Name FROM T_Pool AS p, T_Disk AS d WHERE d.Size > 0 AND T_Member = p AND T_Member = d").rows,
      (std::vector<std::string>{"p|d1", "p|d2"}));
}

TEST_F(Answers, AnInstanceThatIsGoneIsToldByTheLog) {
  FaultyPlatform::setInstances([](const QORSmrPtr<IQoriObject>&) { return QORSmrPtr<IQoriObject>(); });
  const FaultOutcome outcome = run("SELECT INSTANCEOF(d) AS I FROM T_Disk AS d WHERE Name = 'd2'");
  EXPECT_EQ(outcome.rows, (std::vector<std::string>{"instance of T_Disk { Name = \"d2\"; };"})) << "what the row has";
  EXPECT_EQ(outcome.log.back(),
            "QORQL_Function::evaluate(): GetInstance failed while evaluating row for function 'INSTANCEOF'");
}

TEST_F(Answers, ExceptionsOfTheClientPassThrough) {
  const auto failWith = [](auto error) {
    return [error](const CIMApi::Instances&) -> CIMApi::Instances { throw error; };
  };
  FaultyPlatform::setEnumerations(failWith(QoriBaseException("any", "who", "where", "no luck", 9)));
  EXPECT_EQ(run(kDisks).error, "any 9: no luck");
  FaultyPlatform::setEnumerations(failWith(std::runtime_error("no luck")));
  EXPECT_EQ(run(kDisks).error, "std: no luck");
  FaultyPlatform::setEnumerations(failWith(std::bad_alloc()));
  EXPECT_EQ(run(kDisks).error, "std: std::bad_alloc");
  FaultyPlatform::setEnumerations(failWith(42));
  EXPECT_EQ(run(kDisks).error, "int");
  FaultyPlatform::setEnumerations({});
  FaultyPlatform::setAssociators(failWith(std::runtime_error("no luck")));
  EXPECT_EQ(run(kMembers).error, "std: no luck");
}

TEST_F(Answers, AProvidersFailureIsTold) {
  FaultyPlatform::setEnumerations(
      [](const CIMApi::Instances&) -> CIMApi::Instances { throw CQoriProviderException("disks", "no luck", 1); });
  const FaultOutcome outcome = run(kDisks);
  EXPECT_NE(outcome.error.find("no luck"), std::string::npos) << outcome.error;
}

// An instance with a class of its own and properties that no class declares.
QORSmrPtr<IQoriObject> strange() {
  const QORSmrPtr<CQoriBaseObject::PropertyList> properties(new CQoriBaseObject::PropertyList);
  const auto add = [&](const char* name, const QORSmrPtr<IQoriValue>& value) {
    properties->append(QORSmrPtr<IQoriProperty>(new CQoriProperty(name, value, false)));
  };
  add("Name", QORSmrPtr<IQoriValue>(new CQoriValue(7, CQoriType::sint32)));
  add("Size", QORSmrPtr<IQoriValue>(new CQoriValue(QORString("large"))));
  return QORSmrPtr<IQoriObject>(new CQoriBaseObject("", "Strange", "Name", properties));
}

TEST_F(Answers, InstancesOfGarbageGiveAResultOrAnError) {
  FaultyPlatform::setEnumerations([](const CIMApi::Instances& found) {
    const CIMApi::Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    list->append(strange());
    list->append(*found);
    list->append(strange());
    return list;
  });
  for (const std::string& query : kFaultQueries) run(query.c_str());
  EXPECT_EQ(run("SELECT Name, Size FROM T_Disk").rows.front(), "7|large");
  EXPECT_EQ(run("SELECT Name FROM T_Disk WHERE Slot = 1").error,
            "runtime 0: A non-existent property - 'Slot' was requested from class - 'T_DISK'");
}

TEST_F(Answers, InstancesThatAreReadByNameAloneMayComeBehindOthers) {
  FaultyPlatform::setEnumerations([](const CIMApi::Instances& found) {
    const CIMApi::Instances list(new QORValSlist<QORSmrPtr<IQoriObject>>);
    list->append(*found);
    list->append(strange());
    return list;
  });
  for (const std::string& query : kFaultQueries) run(query.c_str());
  EXPECT_EQ(run("SELECT Name, Size FROM T_Disk").rows.back(), "7|large");
}

// Answers with values that its class does not declare.
class GarbageProvider : public InstanceProvider {
 public:
  QORString getClassName() const override { return "T_Live"; }
  void enumerate(const Request& request, const Emit& emit) override {
    const std::size_t count = request.propertyNames.size();
    const QORSmrPtr<IQoriValue> text(new CQoriValue(QORString("text")));
    const QORSmrPtr<IQoriValue> number(new CQoriValue(300, CQoriType::sint32));
    emit(std::vector<QORSmrPtr<IQoriValue>>(count, text));
    emit(std::vector<QORSmrPtr<IQoriValue>>(count, number));
    emit(std::vector<QORSmrPtr<IQoriValue>>(count));
    emit({});
    emit(std::vector<QORSmrPtr<IQoriValue>>(count + 3, text));
  }
};

TEST_F(Answers, AProviderOfGarbageIsHeldToItsClass) {
  MofLoader(world.manager().sink())
      .loadText("class T_Live { [Key] string Id; uint8 Small; uint16 List[]; boolean Is; };", "live");
  world.manager().registerProvider("root/cimv2", std::make_shared<GarbageProvider>());
  for (const char* query :
       {"SELECT * FROM T_Live", "SELECT Id, Small FROM T_Live WHERE Small > 1 OR Id = 'text'",
        "SELECT SUM(Small) AS S FROM T_Live", "SELECT Id FROM T_Live WHERE ANY List = 1 ORDER BY Is DESC",
        "SELECT l.Id, d.Name FROM T_Live AS l, T_Disk AS d WHERE l.Small = d.Slot",
        "SELECT OBJECTPATH(l) AS P, INSTANCEOF(l) AS I FROM T_Live AS l"}) {
    run(query);
  }
  EXPECT_EQ(run(kDisks).rows.size(), 3U) << "the next query works";
}

TEST_F(Answers, AHugeExtentCostsMemoryInProportion) {
  std::string mof = "class T_Many { [Key] uint32 Id; };";
  MofLoader(world.manager().sink()).loadText(mof, "many");
  CimInstanceDeclaration declaration;
  declaration.className = "T_Many";
  world.manager().sink().begin();
  for (unsigned i = 0; i < 50000; ++i) {
    declaration.properties = {{"Id", QORSmrPtr<IQoriValue>(new CQoriValue(i, CQoriType::uint32))}};
    world.manager().sink().createInstance("root/cimv2", declaration);
  }
  world.manager().sink().commit();
  const FaultOutcome outcome =
      world.query("SELECT COUNT(Id) AS N, MAX(Id) AS M FROM T_Many", QORQL_DataTable::kExecutionLazy);
  EXPECT_EQ(outcome.rows, (std::vector<std::string>{"50000|49999"}));
}

}  // namespace
