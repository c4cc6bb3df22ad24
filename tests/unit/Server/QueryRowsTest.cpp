// Rows are written byte for byte as the instances are that could be made of them.
// SPDX-License-Identifier: Apache-2.0
#include "Cimom/CimXml/CimXmlWriter.h"
#include "Cimom/Model/ModelInstance.h"
#include "Cimom/Mof/MofLoader.h"
#include "Cimom/Server/PullOperations.h"
#include "Cimom/Server/QueryOperations.h"
#include "Cimom/Server/QueryRows.h"
#include "ServerFixture.h"

using servertest::Asked;

namespace {

constexpr const char* kModel =
    "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"
    "class Root { [Key] string Id; };\n"
    "class Part : Root { uint8 A; sint64 B; real32 C; real64 D; boolean E; datetime F; char16 G; uint64 H; string "
    "I[];\n"
    "  uint16 J[4]; [EmbeddedObject] string K; [EmbeddedObject] string L[]; sint8 M; uint16 N; sint16 O; uint32 P;\n"
    "  sint32 Q; boolean R[]; real64 S[]; datetime T[]; char16 U[]; };\n"
    "class Special : Part { string Extra; };\n"
    "[Association] class Link { [Key] Root REF From; [Key] Part REF To; string Text; };\n"
    "instance of Part as $a { Id = \"\xC3\xA4\\n\\\"\\r\\t <&>'\\x01\"; A = 255; B = -9223372036854775808; C = "
    "-0.1;\n"
    "  D = 1e300; E = true; F = \"20260101000000.000000+000\"; G = 'x'; H = 18446744073709551615;\n"
    "  I = {\"p\", NULL, \"<q>\"}; J = {1, NULL};\n"
    "  K = \"instance of Part { Id = \\\"in <\\\"; K = \\\"instance of Part { D = 2.5; };\\\"; };\";\n"
    "  L = {NULL, \"instance of Root { Id = \\\"r\\\"; }\"};\n"
    "  M = -128; N = 65535; O = -32768; P = 4294967295; Q = -2147483648; R = {true, false, NULL}; S = {0.5, 1.0, "
    "NULL};\n"
    "  T = {\"00000001000000.000000:000\"}; U = {'\\xE4', 'b'}; };\n"
    "instance of Part as $b { Id = \"\"; };\n"
    "instance of Part as $c { Id = \"c\"; A = 1; B = 3; C = 3.0; D = 2; G = '<'; H = 4; I = {}; K = \"class New { "
    "uint8 X; "
    "};\"; };\n"
    "instance of Special { Id = \"s\"; A = 2; Extra = \"e\"; };\n"
    "instance of Link { From = $a; To = $b; };\n"
    "instance of Link { From = $b; To = $b; };\n";

class Rows : public ServerTest {
 protected:
  Rows() { MofLoader(sink()).loadText(kModel, "test.mof"); }

  static Asked asking(const std::string& query) {
    return std::move(Asked("ExecQuery").text("QueryLanguage", "CQL").text("Query", query));
  }

  // What the operation answers, the elements of all replies in one.
  std::string elementsOf(Asked asked) {
    ServerOperations operations;
    addQueryOperations(operations, contexts, limits);
    addPullOperations(operations, contexts, limits);
    const std::unique_ptr<ServerReply> reply = operations.answer(asked.on(held));
    last = servertest::textOf(*reply);
    const std::string begin = "<IRETURNVALUE>";
    const std::size_t from = last.find(begin);
    EXPECT_NE(from, std::string::npos) << last;
    return from == std::string::npos
               ? ""
               : last.substr(from + begin.size(), last.find("</IRETURNVALUE>") - from - begin.size());
  }

  std::string pulled(const std::string& query) {
    Asked open("OpenQueryInstances");
    open.text("FilterQueryLanguage", "CQL").text("FilterQuery", query).text("MaxObjectCount", "1");
    std::string elements = elementsOf(std::move(open));
    const std::string before = "NAME=\"EnumerationContext\" PARAMTYPE=\"string\"><VALUE>";
    for (std::size_t at = last.find(before); at != std::string::npos; at = last.find(before)) {
      const std::size_t from = at + before.size();
      const std::string context = last.substr(from, last.find('<', from) - from);
      if (context.empty()) break;
      Asked pull("PullInstances");
      elements += elementsOf(std::move(pull.text("EnumerationContext", context).text("MaxObjectCount", "2")));
    }
    return elements;
  }

  // An instance of each row, of the class that the row's object has or of the one for all other rows, as `object`
  // writes it.
  template <class Write>
  std::string instances(const std::string& query, bool isOfClass, const Write& write) {
    std::vector<ModelLayout::Column> columns;
    Asked asked = asking(query);
    for (const CimPropertyDeclaration& column :
         QueryRows(asked.on(held), "CQL", QORString(std::string_view(query)), limits).resultClass().properties) {
      columns.push_back({column.name, column.type});
    }
    const QORSmrPtr<ModelLayout> layout(new ModelLayout(columns));
    QORQL_Result result = QORQL_Statement(QORString(std::string_view(query)), kSpace, "CQL").run();
    std::string text;
    CimXmlWriter writer(text);
    while (result.next()) {
      std::vector<QORSmrPtr<IQoriValue>> values;
      for (std::size_t i = 0; i < columns.size(); ++i) values.push_back(result.value(i));
      const QORString className(isOfClass ? result.rowClass() : QORString(QueryRows::kResultClass));
      const QORSmrPtr<ModelShape> shape(new ModelShape(kSpace, className, layout, {}));
      write(writer, *ModelInstance::create(shape, values));
    }
    return text;
  }

  void expectAsInstances(const std::string& query, bool isOfClass) {
    const auto plain = [](CimXmlWriter& writer, const IQoriObject& object) { writer.writeInstance(object); };
    const auto wrapped = [](CimXmlWriter& writer, const IQoriObject& object) {
      writer.text() += "<VALUE.OBJECT>";
      writer.writeInstance(object);
      writer.text() += "</VALUE.OBJECT>";
    };
    EXPECT_EQ(elementsOf(asking(query)), instances(query, isOfClass, wrapped)) << query;
    EXPECT_EQ(pulled(query), instances(query, isOfClass, plain)) << query;
  }

  ServerLimits limits;
  std::shared_ptr<EnumerationContexts> contexts = std::make_shared<EnumerationContexts>(limits);
  std::string last;  // the last reply
};

TEST_F(Rows, OfEveryTypeAreWrittenAsInstances) {
  constexpr const char* kAll = "Id, A, B, C, D, E, F, G, H, I, J, K, L, M, N, O, P, Q, R, S, T, U";
  expectAsInstances(std::string("SELECT ") + kAll + " FROM Part", true);
  expectAsInstances(std::string("SELECT ") + kAll + " FROM Part ORDER BY Id DESC", true);
  expectAsInstances("SELECT * FROM Special", true);
  expectAsInstances("SELECT * FROM Link", true);
  expectAsInstances("SELECT FIRST 1 Id, K FROM Part", true);
}

TEST_F(Rows, OfJoinsAreWrittenAsInstances) {
  expectAsInstances("SELECT p.*, q.Id FROM Part AS p, Part AS q WHERE p.A > q.A", false);
  expectAsInstances("SELECT p.Id AS N, q.Id AS n, p.I AS N FROM Part AS p, Part AS q WHERE p.A > q.A", false);
  expectAsInstances("SELECT l.*, OBJECTPATH(p) AS Path FROM Link AS l, Part AS p WHERE p.A > 0", false);
  expectAsInstances("SELECT p.Id, q.Id, q.C, q.I FROM Part AS p, Part AS q WHERE p.A *= q.N", false);
}

TEST_F(Rows, ThatAreComputedAreWrittenAsInstances) {
  expectAsInstances("SELECT A + 1 AS X, B AS Y, C * 2 AS Z, H + 0 AS W, A AS V FROM Part WHERE A < 3", false);
  expectAsInstances("SELECT COUNT(Id) AS X, MIN(A) AS Y, MAX(D) AS Z, SUM(P) AS W, AVG(A) AS V FROM Part", false);
  expectAsInstances("SELECT MIN(A) AS X, COUNT(Id) AS Y FROM Part WHERE A > 300", false);
  expectAsInstances("SELECT OBJECTPATH(Part) AS Path, C * A AS C FROM Part", false);
}

TEST_F(Rows, OfNoneAreWrittenAsNothing) {
  EXPECT_EQ(elementsOf(asking("SELECT * FROM Part WHERE A = 77")), "");
  EXPECT_EQ(pulled("SELECT * FROM Part WHERE A = 77"), "");
}

}  // namespace
