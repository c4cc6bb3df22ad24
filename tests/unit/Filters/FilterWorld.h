// A small object manager with indication classes, and filters asked in both
// ways of deciding.
// SPDX-License-Identifier: Apache-2.0
#ifndef QORQL_UNIT_FILTERS_FILTERWORLD_H
#define QORQL_UNIT_FILTERS_FILTERWORLD_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "QueryWorld.h"
#include "cimom/CQoriInstanceName.h"

inline constexpr char kFilterSchema[] = R"(
class CIM_ManagedElement { string Caption; };
class CIM_StorageVolume : CIM_ManagedElement {
  [key] string Id; uint16 OperationalStatus[]; uint64 Size; [EmbeddedObject] string Inner;
};
class XYZ_Volume : CIM_StorageVolume { string Extra; };
class CIM_ConcreteJob : CIM_ManagedElement { [key] string Id; uint16 OperationalStatus[]; };
class CIM_ComputerSystem : CIM_ManagedElement { [key] string Id; uint16 OperationalStatus[]; };
class CIM_FCPort : CIM_ManagedElement { [key] string Id; };
[indication] class CIM_Indication { string IndicationIdentifier; };
[indication] class CIM_InstIndication : CIM_Indication { [EmbeddedObject] string SourceInstance; };
[indication] class CIM_InstCreation : CIM_InstIndication { };
[indication] class CIM_InstModification : CIM_InstIndication { [EmbeddedObject] string PreviousInstance; };
[indication] class CIM_AlertIndication : CIM_Indication {
  string OwningEntity; string MessageID; string AlertingManagedElement; uint16 AlertingElementFormat;
  uint8 U8; uint16 U16; uint32 U32; uint64 U64; sint8 S8; sint16 S16; sint32 S32; sint64 S64; real32 R32; real64 R64;
  boolean B; uint16 A[]; string Absent; datetime When; char16 C;
};
)";

inline constexpr char kNameSpace[] = "root/cimv2";

struct FilterWorld : QueryWorld {
  explicit FilterWorld(const char* schema = kFilterSchema) : QueryWorld(schema) {}

  QORSmrPtr<IQoriObject> indication(const std::string& mof) {
    const std::vector<QORSmrPtr<IQoriObject>> read =
        MofLoader(manager().sink(), kNameSpace).readInstances(mof, "indication");
    return read.at(0);
  }
  QORSmrPtr<IQoriObject> alert(const std::string& properties) {
    return indication("instance of CIM_AlertIndication { " + properties + " };");
  }
  bool matches(const std::string& filter, const QORSmrPtr<IQoriObject>& instance) {
    CQLQueryStatement statement("DMTF:CQL", QORString(filter.data(), filter.size()), kNameSpace, kNameSpace);
    EXPECT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << filter << ": " << statement.getFault().message;
    const bool result = statement.isMatch(instance, kNameSpace);
    // The walk of the tree judges the prepared conditions.
    EXPECT_EQ(result, statement.isMatchFromClause(instance) && statement.isMatchWhereClause(instance)) << filter;
    return result;
  }
  bool alertMatches(const std::string& condition, const std::string& properties) {
    return matches("SELECT * FROM CIM_AlertIndication WHERE " + condition, alert(properties));
  }
};

struct Filter : testing::Test {
  FilterWorld world;
};

template <class Action>
std::string queryError(Action action) {
  try {
    action();
  } catch (const CQLQueryException& error) {
    return QueryWorld::textOf(error.getWhere()) + "|" + QueryWorld::textOf(error.getMessage()) + "|" +
           std::to_string(error.getCode());
  }
  return "";
}

inline std::vector<std::string> textsOf(const IQueryStatement::PropertyNames& names) {
  std::vector<std::string> texts;
  QORValSlistIterator<QORString> iterator(*names);
  while (++iterator) texts.push_back(QueryWorld::textOf(iterator.key()));
  return texts;
}

inline QORSmrPtr<IQoriInstanceName> classPath(const char* name) {
  return QORSmrPtr<IQoriInstanceName>(new CQoriInstanceName(name, nullptr, nullptr));
}

#endif
