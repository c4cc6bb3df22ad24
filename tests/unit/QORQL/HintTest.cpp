// The hints, each rule by statements in which "^" stands at the place that the hint is about.
// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <ctime>
#include <set>

#include "Cimom/QORQL/CQLQueryStatement.h"
#include "Cimom/QORQL/Face/QORQL_Hint.h"
#include "Cimom/QORQL/Face/QORQL_Statement.h"
#include "MarkedStatement.h"
#include "QueryWorld.h"

namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;

constexpr char kModel[] = R"(
class Item { [key] uint32 Id; string Name; uint64 Size; uint16 Codes[]; datetime Made; boolean Good; };
class Part : Item { string Maker; };
class Box { [key] string Label; };
instance of Item { Id = 1; Name = "a"; Size = 3; Codes = {1}; Made = "20260101000000.000000+000"; Good = TRUE; };
instance of Item { Id = 2; Codes = {}; };
)";

class Hints : public testing::Test {
 protected:
  static QORQL_KnownNames known() {
    QORQL_KnownNames names;
    names.nameSpace = "root/cimv2";
    names.classes = [] { return std::vector<QORString>{"Box", "Item", "Part"}; };
    names.properties = [](const QORString& className) {
      if (className.isEqualCaseInsensitive("Box")) return std::vector<QORString>{"Label"};
      std::vector<QORString> names{"Id", "Name", "Size", "Codes", "Made"};
      if (className.isEqualCaseInsensitive("Part")) names.emplace_back("Maker");
      return names;
    };
    return names;
  }

  // Parses and runs it.
  static QORQL_Hint hintOf(const std::string& text, const QORQL_KnownNames& names = {}) {
    try {
      QORQL_Statement statement{QORString(text)};
      QORQL_Result result = statement.run();
    } catch (const QoriBaseException& error) {
      return QORQL_hintOf(error, text, names);
    }
    ADD_FAILURE() << "nothing was thrown: " << text;
    return {};
  }

 private:
  QueryWorld _world{kModel};
};

struct Row {
  const char* rule;
  const char* statement;  // "^" stands at the place
  const char* hint;
};

constexpr Row kRows[] = {
    {"curly-quote", "SELECT Id FROM Item WHERE Name = ^\u2018a b\u2019", "text goes in plain single quotes: 'a b'"},
    {"curly-quote", "SELECT Id FROM Item WHERE Name = ^\u201Ca\u201D AND Id = 1",
     "text goes in plain single quotes: 'a'"},
    {"open-quote", "SELECT Id FROM Item WHERE Name = ^'abc", "the quote that opens here is not closed on its line"},
    {"open-quote", "SELECT Id FROM Item WHERE Name = 'a' AND Name = ^'abc\nAND Id = 1",
     "the quote that opens here is not closed on its line"},
    {"double-quote", "SELECT Id FROM Item WHERE Name = ^\"a b\"", "text goes in single quotes: 'a b'"},
    {"missing-blank", "SELECT Id FROM Item WHERE Id = 1 ^ANDName = 'a'", "a space is missing: AND Name"},
    {"missing-blank", "SELECT Id FROM Item WHERE Id = 1 ^andName = 'a'", "a space is missing: and Name"},
    {"missing-blank", "SELECT Id FROM Item ^WHEREId = 1", "a space is missing: WHERE Id"},
    {"missing-blank", "SELECT Id FROM Item ^ORDERBY Id ASC", "a space is missing: ORDER BY"},
    {"null-comparison", "SELECT Id FROM Item WHERE Name ^= NULL", "test for NULL with IS: Name IS NULL"},
    {"null-comparison", "SELECT Id FROM Item WHERE Name ^<> NULL", "test for NULL with IS: Name IS NOT NULL"},
    {"null-comparison", "SELECT Id FROM Item WHERE Name ^!= null", "test for NULL with IS: Name IS NOT NULL"},
    {"late-not", "SELECT Id FROM Item WHERE Name ^NOT LIKE 'a'", "NOT goes before the comparison: NOT Name LIKE 'a'"},
    {"group-by", "SELECT Name FROM Item ^GROUP BY Name",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"column-beside-aggregate", "SELECT COUNT(Id) AS n, ^Name FROM Item",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"column-beside-aggregate", "SELECT COUNT(Id) AS n, ^Size FROM Item GROUP BY Name",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"foreign-word", "SELECT Id FROM Item ^LIMIT 3", "to see the first rows only, write SELECT FIRST n ..."},
    {"foreign-word", "SELECT ^TOP 5 Id FROM Item", "to see the first rows only, write SELECT FIRST n ..."},
    {"foreign-word", "SELECT ^DISTINCT Id, Name FROM Item WHERE Id > 0",
     "there is no DISTINCT: every row is shown. Another program leaves out equal ones: qorql -o csv --no-header "
     "\"SELECT Id, Name FROM Item WHERE Id > 0\" | sort -u"},
    {"foreign-word", "SELECT COUNT(^DISTINCT Id) AS n FROM Item WHERE Id > 0",
     "there is no DISTINCT: every row is shown. Another program leaves out equal ones: qorql -o csv --no-header "
     "\"SELECT Id FROM Item WHERE Id > 0\" | sort -u | wc -l"},
    {"foreign-word", "SELECT COUNT(^DISTINCT i.Id), SUM(Size) FROM Item AS i",
     "there is no DISTINCT: every row is shown. Another program leaves out equal ones: qorql -o csv --no-header "
     "\"SELECT i.Id FROM Item AS i\" | sort -u | wc -l"},
    {"foreign-word", "SELECT SUM(^DISTINCT Size) FROM Item", "there is no DISTINCT: leave it out"},
    {"foreign-word", "SELECT ^DISTINCT", "there is no DISTINCT: every row is shown"},
    {"foreign-word", "SELECT Id FROM Item WHERE Name ^REGEXP 'a'",
     "there are no patterns: LIKE finds a plain text anywhere in another one"},
    {"foreign-word", "SELECT Id FROM Item ^HAVING Id = 1", "there is no HAVING: an aggregate covers all rows"},
    {"foreign-word", "SELECT Id FROM Item ^JOIN Box ON 1 = 1",
     "list the classes in FROM, separated by commas; WHERE joins them, by values or through an association"},
    {"foreign-word", "SELECT Id FROM Item ^INNER JOIN Box",
     "list the classes in FROM, separated by commas; WHERE joins them, by values or through an association"},
    {"foreign-word", "SELECT Id FROM Item ^CROSS JOIN Box",
     "list the classes in FROM, separated by commas; WHERE joins them, by values or through an association"},
    {"foreign-word", "SELECT Id FROM Item ^LEFT JOIN Box", "an outer join is written in WHERE, as A.x *= B.y"},
    {"foreign-word", "SELECT Id FROM Item ^RIGHT JOIN Box", "an outer join is written in WHERE, as A.x =* B.y"},
    {"foreign-word", "SELECT Id FROM Item ^FULL JOIN Box", "an outer join is written in WHERE, as A.x *=* B.y"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^IN (1, 2)",
     "there is no IN: run one statement for each value, as with Id = 1"},
    {"foreign-word", "SELECT Id FROM Item WHERE Size > 1 AND Item.Name ^IN ('a b','c') AND Id = 1",
     "there is no IN: run one statement for each value, as with Item.Name = 'a b'"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^IN (SELECT Id FROM Part)",
     "there is no IN: run one statement for each value"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^IN ()", "there is no IN: run one statement for each value"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^IN (1", "there is no IN: run one statement for each value"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id NOT ^IN (1, 2)", "there is no IN: write Id <> 1 AND Id <> 2"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id NOT ^IN (1, 2, 3, 4, 5, 6)",
     "there is no IN: write Id <> 1 AND Id <> 2 AND Id <> 3 AND Id <> 4 AND ..."},
    {"foreign-word", "SELECT Id FROM Item WHERE Id NOT ^IN 1", "there is no IN: write <> for each value, with AND"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^BETWEEN 1 AND 2", "there is no BETWEEN: write Id >= 1 AND Id <= 2"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id = 1 AND Size + 1 ^BETWEEN 1 AND Id * 2 ORDER BY Id ASC",
     "there is no BETWEEN: write Size + 1 >= 1 AND Size + 1 <= Id * 2"},
    {"foreign-word", "SELECT Id FROM Item WHERE Id ^BETWEEN 1",
     "there is no BETWEEN: write x >= least AND x <= greatest"},
    {"foreign-word", "SELECT Id FROM Item ^UNION SELECT Label FROM Box",
     "there is no UNION: run one statement after the other"},
    {"foreign-word", "SELECT Id FROM Item ^OFFSET 5", "to see the first rows only, write SELECT FIRST n ..."},
    {"comment", "SELECT Id FROM Item ^-- all of them", "the language has no comments: leave it out"},
    {"comment", "SELECT Id FROM Item WHERE Id = 1 ^-- one", "the language has no comments: leave it out"},
    {"comment", "SELECT Id FROM Item\nWHERE Id = 3 ^-- one of them\nAND Id = 1",
     "the language has no comments: leave it out"},
    {"comment", "SELECT Id ^/* the key */ FROM Item", "the language has no comments: leave it out"},
    {"double-equals", "SELECT Id FROM Item WHERE Id ^== 1", "equality is written with one ="},
    {"exclamation-mark", "SELECT Id FROM Item WHERE ^!Name = 'a'", "negate a condition with NOT: NOT Name = ..."},
    {"exponent", "SELECT Id FROM Item WHERE Size > ^1e8",
     "a number with an exponent needs a decimal point and takes no plus sign: 1.0e8"},
    {"exponent", "SELECT Id FROM Item WHERE Size > ^1.5E+3",
     "a number with an exponent needs a decimal point and takes no plus sign: 1.5E3"},
    {"exponent", "SELECT Id FROM Item WHERE Size > ^1e-3",
     "a number with an exponent needs a decimal point and takes no plus sign: 1.0e-3"},
    {"unknown-function", "SELECT ^UPPER(Name) AS n FROM Item",
     "there is no function UPPER: the language has OBJECTPATH, MIN, MAX, COUNT, AVG, SUM, INSTANCEOF"},
    {"unknown-function", "SELECT ^CUONT(Name) AS n FROM Item", "there is no function CUONT: did you mean COUNT?"},
    {"count-of-all", "SELECT COUNT(^*) AS n FROM Item", "an aggregate takes a property, as in COUNT(Name)"},
    {"unknown-form", "SELECT Id FROM Item FORMAT AS ^JSON",
     "the formats of the language are QORIOBJECT, XML, HTML and CSV; qorql has more: qorql -o json"},
    {"unknown-form", "SELECT Id FROM Item FORMAT AS ^YAML",
     "the formats of the language are QORIOBJECT, XML, HTML and CSV"},
    {"foreign-statement", "^show tables",
     "qorql classes lists the classes, and qorql contents those with instances; in the shell, .tables does"},
    {"foreign-statement", "^describe Item",
     "qorql describe CLASS describes a class; in the shell, .describe CLASS does"},
    {"foreign-statement", "^DESC Item", "qorql describe CLASS describes a class; in the shell, .describe CLASS does"},
    {"foreign-statement", "^USE cimv2",
     "choose the namespace with the option --namespace, or in the shell with .namespace"},
    {"foreign-statement", "^insert into Item", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^UPDATE Item", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^DELETE FROM Item", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^CREATE TABLE x", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^ALTER TABLE x", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^DROP TABLE x", "the language only reads: every statement begins with SELECT"},
    {"foreign-statement", "^WITH x AS (SELECT Id FROM Item)",
     "the language only reads: every statement begins with SELECT"},
    {"parenthesis", "SELECT Id FROM Item WHERE (Id = 1 ^AND Name = 'a')",
     "only one comparison may stand in parentheses: write Id = 1 AND Name = 'a'"},
    {"parenthesis", "SELECT Id FROM Item WHERE (Id = 1 ^OR Id = 2)",
     "only one comparison may stand in parentheses: run one statement with Id = 1 and one with Id = 2"},
    {"parenthesis", "SELECT Id FROM Item WHERE Size = 1 AND NOT (Id = 1 ^AND Name = 'a')",
     "only one comparison may stand in parentheses: run one statement with NOT Id = 1 and one with Id = 1 AND NOT "
     "Name = 'a'"},
    {"parenthesis", "SELECT Id FROM Item WHERE NOT (Id = 1 ^OR Name = 'a')",
     "only one comparison may stand in parentheses: write NOT Id = 1 AND NOT Name = 'a'"},
    {"parenthesis", "SELECT Id FROM Item WHERE (Id = 1 ^OR Id = 2 OR Id = 3)",
     "only one comparison may stand in parentheses: run one statement with a and one with b"},
    {"second-sort-key", "SELECT Id FROM Item ORDER BY Name^, Id ASC", "rows can be sorted by one key only"},
    {"second-sort-key", "SELECT Id FROM Item ORDER BY Name DESC^, Id ASC", "rows can be sorted by one key only"},
    {"missing-direction", "SELECT Id FROM Item WHERE Id > 0 ORDER BY Item.Name^",
     "ASC or DESC follows the key: ORDER BY Item.Name ASC"},
    {"missing-direction", "SELECT Id FROM Item ORDER BY Id ^FORMAT AS CSV",
     "ASC or DESC follows the key: ORDER BY Id ASC"},
    {"missing-direction", "SELECT Id FROM Item ORDER BY Id ^DECS", "did you mean DESC?"},
    {"missing-direction", "SELECT Id FROM Item ORDER BY Id ^ascending", "did you mean ASC?"},
    {"keyword-as-alias", "SELECT Id AS ^Order FROM Item", "Order is a keyword, not a name: choose another one"},
    {"keyword-as-alias", "SELECT Id FROM Item AS ^First", "First is a keyword, not a name: choose another one"},
    {"keyword-as-name", "SELECT Id, ^Order FROM Item",
     "Order is a keyword: a property or class of that name cannot be referred to, but SELECT * shows it"},
    {"keyword-as-name", "SELECT Id FROM Item WHERE ^Format = 1",
     "Format is a keyword: a property or class of that name cannot be referred to, but SELECT * shows it"},
    {"keyword-as-name", "SELECT i.^Order FROM Item AS i",
     "Order is a keyword: a property or class of that name cannot be referred to, but SELECT * shows it"},
    {"unnamed-column", "SELECT Id, ^Size / 1024 FROM Item", "give it a name with AS: Size / 1024 AS Value"},
    {"unnamed-column", "SELECT ^(Size + 1) * 2, Id FROM Item", "give it a name with AS: (Size + 1) * 2 AS Value"},
    {"typing-error", "SELECT Id ^FORM Item", "did you mean FROM?"},
    {"typing-error", "SELECT Id FROM Item ^WERE Id = 1", "did you mean WHERE?"},
    {"typing-error", "SELECT Id FROM Item ^ODER BY Id ASC", "did you mean ORDER?"},
    {"typing-error", "^SELCT Id FROM Item", "did you mean SELECT?"},
    {"typing-error", "SELECT Id FROM Item WHERE Name ^LKE 'a'", "did you mean LIKE?"},
    {"missing-as", "SELECT i.Id FROM Item ^i", "an alias follows AS: Item AS i"},
    {"missing-as", "SELECT i.Id FROM Box AS b, Item ^i WHERE i.Id = 1", "an alias follows AS: Item AS i"},
    {"half-association", "SELECT i.Id FROM Item AS i, Box AS b WHERE ^OBJECTPATH(i) = OBJECTPATH(b)",
     "OBJECTPATH(a) = OBJECTPATH(b) is read as half an association: compare the keys, as in a.Name = b.Name"},
    {"half-association", "SELECT i.Id FROM Item AS i, Box AS b WHERE Link = i AND ^i.Id = 1",
     "write both ends of an association side by side: Link = a AND Link = b"},
    {"missing-value", "SELECT Id FROM Item ORDER BY ^Name ASC",
     "Name is NULL in root/cimv2:Item.Id=2: leave such rows out with WHERE Name IS NOT NULL"},
    {"missing-value", "SELECT i.Id FROM Item AS i WHERE i.Id > 0 ORDER BY ^i.Name ASC",
     "i.Name is NULL in root/cimv2:Item.Id=2: leave such rows out with AND i.Name IS NOT NULL"},
    {"missing-value", "SELECT Id, Size * 2 AS s FROM Item ORDER BY ^s ASC",
     "Size is NULL in root/cimv2:Item.Id=2: leave such rows out with WHERE Size IS NOT NULL"},
    {"missing-value", "SELECT Id FROM Item WHERE ^Name LIKE 'a'",
     "Name is NULL in root/cimv2:Item.Id=2: put Name IS NOT NULL AND before it"},
    {"missing-element", "SELECT Id FROM Item WHERE ^Codes[1] = 1",
     "Codes has 1 element in root/cimv2:Item.Id=1, and the first is [0]"},
    {"missing-element", "SELECT Id FROM Item WHERE Id = 2 AND ^Item.Codes[0] = 1",
     "Item.Codes has no elements in root/cimv2:Item.Id=2, and the first is [0]"},
    {"incomparable", "SELECT Id FROM Item WHERE Name = ^5",
     "compare text with text in single quotes, and numbers with numbers"},
    {"incomparable", "SELECT Id FROM Item WHERE Made > ^'2026-11-22'",
     "a datetime is written '20261122000000.000000+000'"},
    {"incomparable", "SELECT Id FROM Item WHERE ^'2026-11-22 12:30' < Made",
     "a datetime is written '20261122123000.000000+000'"},
    {"column-beside-aggregate", "SELECT ^Name, COUNT(Id) FROM Item",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"column-beside-aggregate", "SELECT ^i.Name, COUNT(i.Id) AS n FROM Item AS i GROUP BY i.Name",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"column-beside-aggregate", "SELECT COUNT(i.Id) AS n, ^i.Name FROM Item AS i",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"column-beside-aggregate", "SELECT OBJECTPATH(i) AS p, ^COUNT(i.Id) AS n FROM Item AS i",
     "an aggregate covers all rows: ask for it in a statement of its own"},
    {"column-beside-aggregate", "SELECT FIRST 3 ^Name, COUNT(Id) FROM Item",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"group-by", "SELECT i.Name FROM Item AS i ^GROUP BY i.Name",
     "there is no GROUP BY: an aggregate covers all rows. Another program groups the rows: qorql -o jsonl "
     "\"SELECT * FROM Item\" | jq -s \"group_by(.Name)\""},
    {"foreign-word", "SELECT * FROM Item ^WITHIN 10 WHERE Id = 1", "there is no WITHIN: leave it out"},
    {"foreign-word", "SELECT * FROM Item ^GROUP WITHIN 30", "there is no GROUP: leave it out"},
    {"foreign-word", "SELECT Id FROM Item ^FETCH FIRST 3 ROWS ONLY",
     "to see the first rows only, write SELECT FIRST n ..."},
    {"foreign-word", "SELECT ^First FROM Item",
     "FIRST is a keyword: to see the first rows only, write SELECT FIRST n ..."},
    {"foreign-word", "SELECT ^FIRST Id FROM Item",
     "FIRST is a keyword: to see the first rows only, write SELECT FIRST n ..."},
    {"foreign-word", "SELECT Id FROM Item WHERE Id NOT ^BETWEEN 1 AND 2",
     "there is no BETWEEN: run one statement with Id < 1 and one with Id > 2"},
    {"missing-blank", "SELECT Id FROM ^ItemWHERE Id=3", "a space is missing: Item WHERE"},
    {"missing-blank", "SELECT Id FROM Item WHERE ^NOTId = 3", "a space is missing: NOT Id"},
    {"null-comparison", "SELECT Id FROM Item WHERE Codes[0] ^= NULL", "test for NULL with IS: Codes[0] IS NULL"},
    {"null-comparison", "SELECT Id FROM Item WHERE Id = 1 AND Size + Id ^<> NULL",
     "test for NULL with IS: Size + Id IS NOT NULL"},
    {"null-comparison", "SELECT i.Id FROM Item AS i WHERE NOT (i.Size ^= NULL)",
     "test for NULL with IS: i.Size IS NULL"},
    {"null-comparison", "SELECT Id FROM Item WHERE (Id + 1) * 2 ^= NULL",
     "test for NULL with IS: (Id + 1) * 2 IS NULL"},
    {"null-comparison", "SELECT Id FROM Item WHERE ^NULL = Name AND Id = 1", "test for NULL with IS: Name IS NULL"},
    {"late-not", "SELECT Id FROM Item WHERE Id = 1 AND Item.Name ^NOT LIKE 'a' ORDER BY Id ASC",
     "NOT goes before the comparison: NOT Item.Name LIKE 'a'"},
    {"double-quote", "SELECT ^\"Id\" FROM Item", "names go without quotes: Id"},
    {"double-quote", "SELECT Id, ^\"Name\" FROM Item", "names go without quotes: Name"},
    {"double-quote", "SELECT Id FROM ^\"Item\"", "names go without quotes: Item"},
    {"double-quote", "SELECT Id FROM Item ORDER BY ^\"Id\" ASC", "names go without quotes: Id"},
    {"double-quote", "SELECT i.^\"Id\" FROM Item AS i", "names go without quotes: Id"},
    {"double-quote", "SELECT Id AS ^\"the id\" FROM Item", "names go without quotes: the_id"},
    {"other-quote", "SELECT Id AS ^'x' FROM Item", "names go without quotes: x"},
    {"other-quote", "SELECT ^[Id] FROM Item", "names go without brackets: Id"},
    {"other-quote", "SELECT Id AS ^`the id` FROM Item", "names go without quotes: the_id"},
    {"comment", "SELECT Id ^-- the id\nFROM Item", "the language has no comments: leave it out"},
    {"comment", "SELECT Id ^# the id\nFROM Item", "the language has no comments: leave it out"},
    {"comment", "SELECT Id FROM Item ^# all", "the language has no comments: leave it out"},
    {"unnamed-column", "SELECT ^Id--1 FROM Item", "give it a name with AS: Id--1 AS Value"},
    {"unnamed-column", "SELECT ^Size / 2 Half, Name FROM Item", "give it a name with AS: Size / 2 AS Half"},
    {"unnamed-column", "SELECT ^(Size + 1) * (2) More FROM Item", "give it a name with AS: (Size + 1) * (2) AS More"},
    {"unnamed-column", "SELECT ^Size / Id FROM Item", "give it a name with AS: Size / Id AS Value"},
    {"missing-comma", "SELECT Id ^Name FROM Item", "a comma is missing: Id, Name; or AS: Id AS Name"},
    {"missing-comma", "SELECT COUNT(Id) ^N FROM Item", "a comma is missing: COUNT(Id), N; or AS: COUNT(Id) AS N"},
    {"missing-comma", "SELECT FIRST 3 Id ^Name FROM Item", "a comma is missing: Id, Name; or AS: Id AS Name"},
    {"path", "SELECT Id FROM Item AS i WHERE i.^Name.x = 1",
     "a query does not read the properties of embedded objects"},
    {"path", "SELECT Id FROM Item AS i ORDER BY i.^Name.x ASC",
     "a query does not read the properties of embedded objects"},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id ^=> 3", "there is no =>: write >="},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id ^=< 3", "there is no =<: write <="},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id ^!> 3", "there is no !>: write <="},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id ^!< 3", "there is no !<: write >="},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id = 3 ^&& Size = 1", "there is no &&: write AND"},
    {"foreign-sign", "SELECT Id FROM Item WHERE Id = 3 ^|| Size = 1",
     "there is no ||: run one statement for each side"},
    {"unknown-form", "SELECT Id FROM Item FORMAT ^CSV", "AS follows FORMAT: FORMAT AS CSV"},
    {"unknown-form", "SELECT Id FROM Item FORMAT ^JSON",
     "the formats of the language are QORIOBJECT, XML, HTML and CSV; qorql has more: qorql -o json"},
    {"parenthesis", "SELECT Id FROM Item WHERE (Id = 1 ^AND Name = 'a') OR (Id = 2)",
     "only one comparison may stand in parentheses: run one statement for each side of OR"},
    {"parenthesis", "SELECT Id FROM Item WHERE Id = 2 OR NOT (Id = 1 ^AND Name = 'a')",
     "only one comparison may stand in parentheses: run one statement for each side of OR"},
    {"incomparable", "SELECT Id FROM Item WHERE Made > ^20261122", "a datetime is written '20261122000000.000000+000'"},
    {"incomparable", "SELECT Id FROM Item WHERE Made > ^20261122123000",
     "a datetime is written '20261122123000.000000+000'"},
    {"incomparable", "SELECT Id FROM Item WHERE Good = ^1",
     "TRUE and FALSE compare with booleans only, and booleans with them"},
    {"incomparable", "SELECT Id FROM Item WHERE Id = ^TRUE",
     "TRUE and FALSE compare with booleans only, and booleans with them"},
};

TEST_F(Hints, SayWhatIsMeantAndWhere) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.statement);
    const MarkedStatement marked(row.statement);
    const QORQL_Hint hint = hintOf(marked.text);
    EXPECT_STREQ(hint.rule, row.rule);
    EXPECT_EQ(hint.text, row.hint);
    EXPECT_EQ(marked.markedAt(hint.offset), row.statement);
  }
}

constexpr Row kRowsWithNames[] = {
    {"class-alone", "Q ^Item", "to see the objects of a class, write SELECT * FROM Item"},
    {"class-alone", "^item", "to see the objects of a class, write SELECT * FROM Item"},
    {"property-meant", "SELECT ^Nmae FROM Item", "did you mean Name?"},
    {"property-meant", "SELECT i.Id FROM Item AS i WHERE i.^Nmae = 'a'", "did you mean Name?"},
    {"property-meant", "SELECT Id FROM Item ORDER BY ^Nmae ASC", "did you mean Name?"},
    {"property-meant", "SELECT ^Maker FROM Item", "Maker is a property of Part, a subclass: ask for it FROM Part"},
    {"class-meant", "SELECT * FROM ^Itm", "did you mean Item?"},
};

TEST_F(Hints, SayWhichNameIsMeant) {
  for (const Row& row : kRowsWithNames) {
    SCOPED_TRACE(row.statement);
    const MarkedStatement marked(row.statement);
    const QORQL_Hint hint = hintOf(marked.text, known());
    EXPECT_STREQ(hint.rule, row.rule);
    EXPECT_EQ(hint.text, row.hint);
    EXPECT_EQ(marked.markedAt(hint.offset), row.statement);
    EXPECT_EQ(hintOf(marked.text).text, "") << "without names nobody knows";
  }
}

// What stands in double quotes left of a comparison is a name where the class has such a property.
TEST_F(Hints, TellNamesInQuotesFromTexts) {
  const auto textOf = [](const char* text) { return hintOf(text, known()).text; };
  EXPECT_EQ(textOf("SELECT Id FROM Item WHERE \"name\" = Name"), "names go without quotes: name");
  EXPECT_EQ(textOf("SELECT Id FROM Item WHERE NOT \"Size\" > 5"), "names go without quotes: Size");
  EXPECT_EQ(textOf("SELECT i.Id FROM Box AS b, Item AS i WHERE \"Size\" > 5"), "names go without quotes: Size");
  EXPECT_EQ(textOf("SELECT Id FROM Item WHERE \"Label\" = 'a'"), "text goes in single quotes: 'Label'");
  EXPECT_EQ(textOf("SELECT Id FROM Item WHERE Name = \"Size\""), "text goes in single quotes: 'Size'");
}

TEST_F(Hints, EveryRuleHasItsRow) {
  std::set<std::string> seen;
  for (const Row& row : kRows) seen.insert(row.rule);
  for (const Row& row : kRowsWithNames) seen.insert(row.rule);
  for (const std::string& rule : QORQL_hintRules()) EXPECT_TRUE(seen.contains(rule)) << rule;
}

// What is no date stands for any: the example is today's.
TEST_F(Hints, ShowTodayAsADatetime) {
  const std::time_t before = std::time(nullptr);
  const std::string text = hintOf("SELECT Id FROM Item WHERE Made > 'yesterday'").text;
  const std::time_t after = std::time(nullptr);
  std::set<std::string> days;
  for (const std::time_t time : {before, after}) {
    char day[16];
    days.insert(std::string(day, std::strftime(day, sizeof day, "%Y%m%d", std::gmtime(&time))));
  }
  ASSERT_THAT(text, AllOf(StartsWith("a datetime is written '"), EndsWith("000000.000000+000'")));
  EXPECT_THAT(days, Contains(text.substr(23, 8)));
}

TEST_F(Hints, SayNothingWhereTheErrorSaysAll) {
  for (const char* const statement :
       {"SELECT", "SELECT Id FROM Item WHERE ,", "SELECT Id FROM Item WHERE Id / 0 = 1", "SELECT Id FROM",
        "SELECT Id FROM Item WHERE (Id = 1", "SELECT Wheels FROM Item", "SELECT Id FROM Item WHERE Id = 1 - -1 ,",
        "SELECT Id AS 5 FROM Item", "SELECT Id FROM Item Box + 1", "SELECT Id FROM 'a(b'"}) {
    EXPECT_EQ(hintOf(statement).text, "") << statement;
  }
  EXPECT_EQ(QORQL_hintOf(QoriBaseException(), "SELECT").text, "");
}

// OR, NOT, LIKE and IS NULL never match in a filter, and it has no rows.
constexpr Row kFilterRows[] = {
    {"count-of-all", "SELECT COUNT(^*) AS n FROM Item", "a function has no value in a filter: select properties"},
    {"second-sort-key", "SELECT * FROM Item ORDER BY Id ASC^, Name ASC", "a filter has no ORDER BY: leave it out"},
    {"missing-direction", "SELECT * FROM Item ORDER BY Id^", "a filter has no ORDER BY: leave it out"},
    {"half-association", "SELECT a.Id FROM Item AS a, Box AS b WHERE ^OBJECTPATH(a) = OBJECTPATH(b)",
     "a filter asks one instance at a time: it has no associations"},
    {"null-comparison", "SELECT * FROM Item WHERE Size ^= NULL",
     "a condition on NULL never matches in a filter: leave it out"},
    {"late-not", "SELECT * FROM Item WHERE Name ^NOT LIKE 'a'",
     "a condition under NOT never matches in a filter: ask with =, <>, <, <=, > or >="},
    {"exclamation-mark", "SELECT * FROM Item WHERE ^!Name = 'a'",
     "a condition under NOT never matches in a filter: ask with =, <>, <, <=, > or >="},
    {"parenthesis", "SELECT * FROM Item WHERE NOT (Id = 1 ^AND Id = 2)",
     "a condition under NOT never matches in a filter: ask with =, <>, <, <=, > or >="},
    {"parenthesis", "SELECT * FROM Item WHERE (Id = 1 ^AND Size = 2)",
     "only one comparison may stand in parentheses: write Id = 1 AND Size = 2"},
    {"parenthesis", "SELECT * FROM Item WHERE (Id = 1 ^OR Id = 2)",
     "only one comparison may stand in parentheses: use one filter with Id = 1 and one with Id = 2"},
    {"parenthesis", "SELECT * FROM Item WHERE (Id = 1 ^AND Size = 2) OR Id = 2",
     "only one comparison may stand in parentheses: use one filter for each side of OR"},
    {"foreign-word", "SELECT * FROM Item WHERE Id = 1 ^LIMIT 3", "a filter has no LIMIT: leave it out"},
    {"foreign-word", "SELECT * FROM Item WHERE Id ^IN (1, 2)",
     "there is no IN: use one filter for each value, as with Id = 1"},
    {"foreign-word", "SELECT * FROM Item WHERE Id NOT ^IN (1, 2)", "there is no IN: write Id <> 1 AND Id <> 2"},
    {"foreign-word", "SELECT ^DISTINCT Id FROM Item", "a filter has no DISTINCT: leave it out"},
    {"double-quote", "SELECT * FROM Item WHERE ^\"Name\" = 'a'", "names go without quotes: Name"},
    {"double-quote", "SELECT * FROM Item WHERE Id = 1 AND ^\"Size\" > 5", "names go without quotes: Size"},
    {"double-quote", "SELECT * FROM Item WHERE ^\"a\" = Name", "text goes in single quotes: 'a'"},
    {"double-quote", "SELECT * FROM Item WHERE ^\"a b\" = 'a'", "text goes in single quotes: 'a b'"},
    {"missing-comma", "SELECT Id ^Name FROM Item", "a comma is missing: Id, Name"},
    {"foreign-word", "SELECT * FROM Item WHERE Id NOT ^BETWEEN 1 AND 2",
     "there is no BETWEEN: use one filter with Id < 1 and one with Id > 2"},
    {"group-by", "SELECT * FROM Item WHERE Id = 1 ^GROUP BY Name", "a filter has no GROUP BY: leave it out"},
    {"unknown-form", "SELECT * FROM Item WHERE Id = 1 FORMAT AS ^JSON", "a filter has no FORMAT: leave it out"},
    {"foreign-sign", "SELECT * FROM Item WHERE Id = 1 ^|| Id = 2",
     "there is no ||, and OR never matches in a filter: use one filter for each side"},
    {"foreign-word", "SELECT * FROM Item ^WITHIN 10 WHERE Id = 1", "there is no WITHIN: leave it out"},
    {"foreign-word", "SELECT ^FIRST Id FROM Item", "FIRST is a keyword, and a filter has no FIRST: leave it out"},
    {"column-beside-aggregate", "SELECT Id, ^COUNT(Size) AS n FROM Item",
     "a function has no value in a filter: select properties"},
    {"unknown-function", "SELECT ^UPPER(Name) AS n FROM Item",
     "a function has no value in a filter: select properties"},
};

TEST_F(Hints, AdviseForAFilterOnlyWhatItKnows) {
  for (const Row& row : kFilterRows) {
    SCOPED_TRACE(row.statement);
    const MarkedStatement marked(row.statement);
    CQLQueryStatement filter("DMTF:CQL", QORString(marked.text), "root/cimv2", "root/cimv2");
    ASSERT_NE(filter.validate(), QUERY_VALIDATE_SUCCESS);
    const CQLQueryFault& fault = filter.getFault();
    const QORQL_Hint hint = QORQL_hintOfFilter({fault.cause, fault.name, fault.className, fault.offset}, marked.text);
    EXPECT_STREQ(hint.rule, row.rule);
    EXPECT_EQ(hint.text, row.hint);
    EXPECT_EQ(marked.markedAt(hint.offset), row.statement);
  }
}

TEST_F(Hints, AreForFiltersToo) {
  const MarkedStatement marked("SELECT * FROM Item WHERE Id = 1 ^ANDSize = 2");
  CQLQueryStatement filter("DMTF:CQL", QORString(marked.text), "root/cimv2", "root/cimv2");
  ASSERT_NE(filter.validate(), QUERY_VALIDATE_SUCCESS);
  const CQLQueryFault& fault = filter.getFault();
  const QORQL_Hint hint = QORQL_hintOfFilter({fault.cause, fault.name, fault.className, fault.offset}, marked.text);
  EXPECT_EQ(hint.text, "a space is missing: AND Size");
  EXPECT_EQ(hint.offset, marked.offset);
}

}  // namespace
