// Instances that are not as a filter expects them, and the steps of matching
// asked one by one: no match, and nothing else.
#include <functional>
#include <map>

#include "Cimom/QORQL/CQLQueryValidator.h"
#include "Cimom/QORQL/QORQL_Lexer.h"
#include "Cimom/QORQL/QORQL_SymbolTable.h"
#include "FilterWorld.h"
#include "cimom/CQoriProperty.h"
#include "cimom/CQoriValue.h"

namespace {

using Object = QORSmrPtr<IQoriObject>;
using Value = QORSmrPtr<IQoriValue>;

// An object of somebody else's making, read by name.
class ForeignObject : public IQoriObject {
 public:
  explicit ForeignObject(const char* className) : _className(className) {}

  std::map<std::string, std::function<Value()>> properties{};

  const QORString& getClassName() const noexcept override { return _className; }
  QORSmrPtr<IQoriInstanceName> getInstanceName() const override { return {}; }
  QORString getNameSpace() const override { return kNameSpace; }
  QORuint32 getPropertyCount() const noexcept override { return static_cast<QORuint32>(properties.size()); }
  QORSmrPtr<IQoriProperty> getPropertyAt(QORuint32 position) const override {
    auto found = properties.begin();
    std::advance(found, position);
    return propertyOf(*found);
  }
  QORSmrPtr<IQoriProperty> getProperty(const QORString& name, bool /*includeInherited*/) const override {
    for (const auto& property : properties) {
      if (name.isEqualCaseInsensitive(property.first.c_str())) return propertyOf(property);
    }
    return {};
  }

 private:
  static QORSmrPtr<IQoriProperty> propertyOf(const std::pair<const std::string, std::function<Value()>>& property) {
    return new CQoriProperty(QORString(property.first), CQoriType::object, property.second());
  }

  QORString _className;
};

struct FilterEdge : Filter {
  static constexpr char kFrom[] = "SELECT * FROM CIM_InstModification WHERE ";
  bool modificationMatches(const std::string& condition, const Object& instance) {
    return world.matches(kFrom + condition, instance);
  }
};

TEST_F(FilterEdge, AnEmbeddedObjectThatIsAbsent) {
  const Object none(world.indication("instance of CIM_InstModification { };"));
  for (const char* condition :
       {"SourceInstance ISA CIM_FCPort", "SourceInstance.Id = 'x'", "SourceInstance.CIM_FCPort::Id <> 'x'",
        "SourceInstance = PreviousInstance", "SourceInstance <> PreviousInstance",
        "SourceInstance.OperationalStatus[0] = 2", "ANY SourceInstance.OperationalStatus[*] = 2"}) {
    EXPECT_FALSE(modificationMatches(condition, none)) << condition;
  }
}

TEST_F(FilterEdge, AnEmbeddedObjectOfAnotherType) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  for (const auto& make : std::vector<std::function<Value()>>{
           [] { return Value(new CQoriValue(QORString("instance of CIM_FCPort { };"))); },
           [] { return Value(new CQoriValue(5, CQoriType::sint32)); },
           [] {
             const QORSmrPtr<IQoriValue::List> list(new IQoriValue::List());
             return Value(new CQoriValue(list, CQoriType::object));
           }}) {
    foreign->properties["SourceInstance"] = make;
    EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_FCPort", instance));
    EXPECT_FALSE(modificationMatches("SourceInstance.Id = 'x'", instance));
    EXPECT_FALSE(modificationMatches("SourceInstance.CIM_FCPort::Id = 'x'", instance));
  }
}

TEST_F(FilterEdge, AnObjectWithinAnObject) {
  const Object nested(world.indication(R"(instance of CIM_InstModification { SourceInstance =
    "instance of XYZ_Volume { Id = \"outer\"; Inner = \"instance of XYZ_Volume { Id = \\\"inner\\\"; Size = 7; };\"; };";
    };)"));
  EXPECT_TRUE(modificationMatches("SourceInstance.Inner.Size = 7", nested));
  EXPECT_TRUE(modificationMatches("SourceInstance.Inner.CIM_StorageVolume::Id = 'inner'", nested));
  EXPECT_TRUE(modificationMatches("CIM_InstModification.SourceInstance.Inner.Size = 7", nested));
  EXPECT_FALSE(modificationMatches("SourceInstance.Inner.CIM_FCPort::Id = 'inner'", nested));
  EXPECT_FALSE(modificationMatches("SourceInstance.Inner.Inner.Size = 7", nested));
}

TEST_F(FilterEdge, AnObjectNestedInItself) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(instance)); };
  foreign->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(instance)); };
  foreign->properties["IndicationIdentifier"] = [] { return Value(new CQoriValue(QORString("me"))); };
  EXPECT_TRUE(modificationMatches("SourceInstance ISA CIM_InstIndication", instance));
  EXPECT_TRUE(
      modificationMatches("SourceInstance.PreviousInstance.SourceInstance.IndicationIdentifier = 'me'", instance));
  EXPECT_TRUE(modificationMatches("SourceInstance = PreviousInstance", instance));
  EXPECT_FALSE(modificationMatches("SourceInstance <> PreviousInstance", instance));
  for (const char* condition : {"SourceInstance = 'x'", "SourceInstance ISA CIM_FCPort", "SourceInstance + 1 = 5"}) {
    CQLQueryStatement statement("CQL", QORString(std::string(kFrom) + condition), kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << condition;
    std::string why;
    EXPECT_FALSE(statement.explainMatch(instance, kNameSpace, why)) << condition;
    EXPECT_FALSE(why.empty()) << condition;
  }
  std::string path;
  for (int i = 0; i < 2000; ++i) path += "SourceInstance.";
  EXPECT_TRUE(modificationMatches(path + "IndicationIdentifier = 'me'", instance));
}

TEST_F(FilterEdge, ObjectsThatHoldThemselvesCompareWithoutEnd) {
  const QORSmrPtr<ForeignObject> one(new ForeignObject("CIM_InstModification"));
  const QORSmrPtr<ForeignObject> other(new ForeignObject("CIM_InstModification"));
  const Object first(one);
  const Object second(other);
  one->properties["SourceInstance"] = [&] { return Value(new CQoriValue(first)); };
  one->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(second)); };
  other->properties["SourceInstance"] = [&] { return Value(new CQoriValue(second)); };
  other->properties["PreviousInstance"] = [&] { return Value(new CQoriValue(first)); };
  EXPECT_FALSE(modificationMatches("SourceInstance = PreviousInstance", first));
}

TEST_F(FilterEdge, AnObjectThatFails) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_AlertIndication"));
  const Object instance(foreign);
  foreign->properties["U8"] = []() -> Value { throw QoriBaseException("a", "b", "c", "it fails", 1); };
  foreign->properties["U16"] = []() -> Value { throw 5; };
  foreign->properties["AlertingManagedElement"] = []() -> Value { throw std::bad_alloc(); };
  for (const char* condition : {"U8 = 5", "U16 = 5", "U8 + 1 = 6", "ANY U8 = 5"}) {
    CQLQueryStatement statement("CQL", QORString(std::string("SELECT * FROM CIM_AlertIndication WHERE ") + condition),
                                kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
    EXPECT_FALSE(statement.isMatchWhereClause(instance)) << condition;
    bool result = true;
    const CQLQueryExceptionCode code = statement.doMatch(result, instance, kNameSpace);
    EXPECT_EQ(code, CQL_QUERY_ISMATCH_FAILURE) << condition;
    EXPECT_FALSE(result) << condition;
    EXPECT_FALSE(statement.isMatch(instance, kNameSpace)) << condition;
    std::string why;
    EXPECT_FALSE(statement.explainMatch(instance, kNameSpace, why)) << condition;
    EXPECT_FALSE(why.empty()) << condition;
  }
  EXPECT_FALSE(
      world.matches("SELECT * FROM CIM_AlertIndication WHERE AlertingManagedElement ISA CIM_FCPort", instance));
}

TEST_F(FilterEdge, AnInstanceOfAnUnknownClassOrOfNone) {
  const Object unknown(new ForeignObject("XYZ_Unheard"));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_Indication", unknown));
  const Object none(new ForeignObject(""));
  EXPECT_FALSE(world.matches("SELECT * FROM CIM_Indication", none));
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_InstModification"));
  const Object instance(foreign);
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(unknown)); };
  EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_ManagedElement", instance));
  EXPECT_TRUE(modificationMatches("SourceInstance ISA xyz_unheard", instance));
  foreign->properties["SourceInstance"] = [&] { return Value(new CQoriValue(none)); };
  EXPECT_FALSE(modificationMatches("SourceInstance ISA CIM_ManagedElement", instance));
}

TEST_F(FilterEdge, IsaWithTextAndComputedSides) {
  const Object changed(world.indication(
      "instance of CIM_InstModification { SourceInstance = \"instance of CIM_FCPort { Id = \\\"p\\\"; };\"; };"));
  EXPECT_TRUE(modificationMatches("'SourceInstance' ISA CIM_FCPort", changed));
  EXPECT_TRUE(modificationMatches("(SourceInstance) ISA CIM_FCPort", changed));
  EXPECT_TRUE(modificationMatches("'Source' + 'Instance' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("'PreviousInstance' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("5 ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("'' ISA CIM_FCPort", changed));
  EXPECT_FALSE(modificationMatches("IndicationIdentifier ISA CIM_FCPort", changed));
}

TEST_F(FilterEdge, PathsOfAlertsThatNameNoClass) {
  const std::string condition = "AlertingManagedElement ISA CIM_FCPort";
  const auto matches = [&](const std::string& path, const std::string& format) {
    return world.alertMatches(condition, "AlertingManagedElement = \"" + path + "\"; " + format);
  };
  const std::string isPath = "AlertingElementFormat = 2;";
  EXPECT_TRUE(matches("//h/n:CIM_FCPort.Id=1", isPath));
  EXPECT_TRUE(matches("//h/n:cim_fcport.Id=1", isPath));
  for (const char* path : {"", "//", "//h/n", "//h/n:", "//h/n:.", "//h/n:CIM_FCPort", "/h/n:CIM_FCPort.Id=1",
                           "//h:80/n:CIM_FCPort.Id=1", "//h.x/n:CIM_Nothing.Id=1"}) {
    EXPECT_FALSE(matches(path, isPath)) << path;
  }
  EXPECT_FALSE(matches("//h/n:CIM_FCPort.Id=1", ""));
  EXPECT_FALSE(matches("//h/n:CIM_FCPort.Id=1", "AlertingElementFormat = 0;"));
  EXPECT_TRUE(world.alertMatches("alertingmanagedelement isa cim_managedelement",
                                 isPath + "AlertingManagedElement = \"//h/n:CIM_FCPort.Id=1\";"));
}

TEST_F(FilterEdge, ADottedHostBeforeTheColonDoesNotMatter) {
  EXPECT_TRUE(world.alertMatches("AlertingManagedElement ISA CIM_FCPort",
                                 "AlertingElementFormat = 2; "
                                 "AlertingManagedElement = \"//array.example.org/root/cimv2:CIM_FCPort.Id=1\";"));
}

TEST_F(FilterEdge, StepsGivenNoNodeOrAnotherOneAreFalse) {
  CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication WHERE U8 = 5", kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
  const Object alert(world.alert("U8 = 5;"));
  const CQLQueryStatement::Node none;
  const CQLQueryStatement::Node other(
      new QORQL_Comparison(CQLQueryStatement::Node(), CQLQueryStatement::Node(), QORQL_OperatorEQUAL));
  for (const CQLQueryStatement::Node& node : {none, other}) {
    EXPECT_FALSE(statement.isMatchExpression(node, alert));
    EXPECT_FALSE(statement.isMatchExpressionTerm(node, alert));
    EXPECT_FALSE(statement.isMatchExpressionFactor(node, alert));
    EXPECT_FALSE(statement.isMatchComparison(node, alert));
    EXPECT_TRUE(statement.doMatchArithmetic(node, alert).IsNull());
    EXPECT_TRUE(statement.doMatchTerm(node, alert).IsNull());
    EXPECT_TRUE(statement.doMatchFactor(node, alert).IsNull());
  }
}

// The left side of the first condition.
CQLQueryStatement::Node leftOf(const CQLQueryStatement::Node& comparison) {
  return dynamic_cast<const QORQL_Comparison&>(*comparison).getLHSArithmeticExpression();
}

TEST_F(FilterEdge, ValuesThatCannotBeComputedAreNull) {
  const QORSmrPtr<ForeignObject> foreign(new ForeignObject("CIM_AlertIndication"));
  foreign->properties["U8"] = []() -> Value { throw QoriBaseException("a", "b", "c", "it fails", 1); };
  const Object failing(foreign);
  const Object alert(world.alert("U8 = 5; MessageID = \"x\";"));
  for (const char* left :
       {"U8", "U8 / 0", "U8 / (U16 - U16)", "1 + U8 * MessageID", "-MessageID", "MAX(U8)", "S8 + 1"}) {
    QORQL_SymbolTable symbols(nullptr);
    QORQL_Lexer lexer(QORString(left) + " = 1", false);
    QORQL_ProjectionMap map(QORQL_newProjectionMap(lexer.slabs()));
    const CQLQueryStatement::Node node(QORQL_Comparison::parse(symbols, lexer, map, "", ""));
    CQLQueryStatement statement("CQL", "SELECT * FROM CIM_AlertIndication", kNameSpace, "");
    ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS);
    const CQLQueryStatement::Node sum(leftOf(node));
    EXPECT_TRUE(statement.doMatchArithmetic(sum, Object()).IsNull()) << left;
    EXPECT_TRUE(statement.doMatchArithmetic(sum, failing).IsNull()) << left;
    EXPECT_EQ(statement.doMatchArithmetic(sum, alert).IsNull(), std::string(left) != "U8") << left;
  }
}

TEST_F(FilterEdge, ComparisonsAreBooleanValues) {
  const Value five(new CQoriValue(5, CQoriType::uint8));
  const Value six(new CQoriValue(6, CQoriType::sint64));
  const Value text(new CQoriValue(QORString("5")));
  constexpr auto kNone = QORQL_Comparison::ArrayCompNone;
  const Value less(CQLQueryStatement::doComparisonOpGreaterLess(five, six, QORQL_OperatorLESS, kNone));
  EXPECT_EQ(less->getType()->getName(), "boolean");
  EXPECT_TRUE(less->getBoolean());
  const Value same(CQLQueryStatement::doComparisonOpEqualsNotEquals(five, text, QORQL_OperatorEQUAL, kNone));
  EXPECT_EQ(same->getType()->getName(), "boolean");
  EXPECT_FALSE(same->getBoolean());
  EXPECT_FALSE(CQLQueryStatement::doComparisonOperation(Value(), five, QORQL_OperatorEQUAL));
  EXPECT_FALSE(CQLQueryStatement::doComparisonOperation(five, Value(), QORQL_OperatorNOTEQUAL));
  EXPECT_TRUE(
      CQLQueryStatement::compareRealValues(five, Value(new CQoriValue(5.0, CQoriType::real64)), QORQL_OperatorEQUAL));
}

TEST_F(FilterEdge, NumericalDataIsTwoNumbers) {
  const std::vector<const char*> numbers = {"uint8",  "uint16", "uint32", "uint64", "sint8",
                                            "sint16", "sint32", "sint64", "real32", "real64"};
  for (const char* number : numbers) {
    for (const char* other : numbers) EXPECT_TRUE(CQLQueryStatement::isNumericalData(number, other));
    for (const char* other : {"string", "boolean", "datetime", "char16", "reference", "object", ""}) {
      EXPECT_FALSE(CQLQueryStatement::isNumericalData(number, other));
      EXPECT_FALSE(CQLQueryStatement::isNumericalData(other, number));
    }
  }
}

TEST_F(FilterEdge, TheValidatorAsksTheRepository) {
  EXPECT_TRUE(CQLQueryValidator::findClass(kNameSpace, "cim_fcport"));
  EXPECT_FALSE(CQLQueryValidator::findClass(kNameSpace, "CIM_Nothing"));
  EXPECT_FALSE(CQLQueryValidator::findClass("root/nowhere", "CIM_FCPort"));
  EXPECT_TRUE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "id", false));
  EXPECT_TRUE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "Caption", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty(kNameSpace, "CIM_FCPort", "Caption", false));
  EXPECT_FALSE(CQLQueryValidator::findProperty(kNameSpace, "CIM_Nothing", "Caption", true));
  EXPECT_TRUE(CQLQueryValidator::findProperty("CIM_FCPort", "Caption", true));
  EXPECT_FALSE(CQLQueryValidator::findProperty("CIM_Nothing", "Caption", true));
  EXPECT_TRUE(CQLQueryValidator::isSubClass(kNameSpace, "xyz_volume", "CIM_MANAGEDELEMENT"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass(kNameSpace, "CIM_ManagedElement", "XYZ_Volume"));
  EXPECT_TRUE(CQLQueryValidator::isSubClass("root/nowhere", "Same", "SAME"));
  EXPECT_FALSE(CQLQueryValidator::isSubClass("root/nowhere", "XYZ_Volume", "CIM_ManagedElement"));
}

TEST_F(FilterEdge, APathInTheSelectListNeedsItsRoot) {
  CQLQueryStatement statement("CQL", "SELECT SourceInstance.CIM_StorageVolume::Size FROM CIM_InstModification",
                              kNameSpace, "");
  ASSERT_EQ(statement.validate(), QUERY_VALIDATE_SUCCESS) << statement.getFault().message;
  EXPECT_EQ(textsOf(statement.getSelectPropertyList(classPath("CIM_InstModification"))),
            std::vector<std::string>{"SourceInstance"});
  EXPECT_TRUE(textsOf(statement.getWherePropertyList(classPath("CIM_InstModification"))).empty());
}

}  // namespace
