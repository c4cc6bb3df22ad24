"""Every output form over the test model, byte for byte and read back by an independent reader."""
# SPDX-License-Identifier: Apache-2.0
import csv
import html.parser
import io
import json
import subprocess
import unittest
import xml.etree.ElementTree

import toolcase
from toolcase import MODEL, ToolCase

ALL = ("SELECT Id, Name, Size, Balance, Weight, Sold, Tags, Codes, Made, Grade FROM Shop_Item ORDER BY Id ASC")
SOME = "SELECT Id, Name, Weight FROM Shop_Item WHERE Id < 4 ORDER BY Id ASC"


class Table(ToolCase):
    def test_numbers_right_texts_left_under_a_rule(self):
        self.assertEqual(self.succeed(self.model(SOME)), (
            "Id  Name                  Weight\n"
            "--  --------------------  ------\n"
            " 1  plain                    0.5\n"
            " 2  with, comma            -1.25\n"
            " 3  a \"quoted\" <b> & 'c'     100\n"))

    def test_named_form_is_the_default(self):
        self.assertEqual(self.model("-o", "table", SOME).raw, self.model(SOME).raw)

    def test_null_reads_null_and_lines_have_no_trailing_blanks(self):
        self.assertEqual(self.succeed(self.model("SELECT Name, Size, Sold FROM Shop_Item WHERE Id > 3 ORDER BY Id ASC")), (
            "Name         Size  Sold\n"
            "-----------  ----  ----\n"
            "NULL         NULL  NULL\n"
            "größer 日本     7  TRUE\n"))

    def test_characters_that_break_lines_are_shown_escaped(self):
        self.assertEqual(self.succeed(self.model("SELECT Tags FROM Shop_Item WHERE Id = 3")),
                         "Tags\n----------\ntwo\\nlines\n")

    def test_no_rows(self):
        self.assertEqual(self.succeed(self.model("SELECT Id, Name FROM Shop_Empty")), "Id  Name\n--  ----\n")

    def test_results_are_an_empty_line_apart(self):
        self.assertEqual(self.succeed(self.model("SELECT Id FROM Shop_Item WHERE Id = 1; SELECT Id FROM Shop_Item WHERE Id = 2")),
                         "Id\n--\n 1\n\nId\n--\n 2\n")


class Csv(ToolCase):
    def test_bytes(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", ALL)), (
            "Id,Name,Size,Balance,Weight,Sold,Tags,Codes,Made,Grade\n"
            "1,plain,18446744073709551615,-9223372036854775808,0.5,TRUE,\"red,green\",\"1,2,3\","
            "20240131120000.000000+060,A\n"
            "2,\"with, comma\",0,9223372036854775807,-1.25,FALSE,\"say \"\"hi\"\"\",,20231231235959.999999+000,B\n"
            "3,\"a \"\"quoted\"\" <b> & 'c'\",42,,100,,\"two\nlines\",,,\n"
            "4,,,,,,,,,\n"
            "5,größer 日本,7,-1,0.001,TRUE,,,,\n"))

    def test_reads_back(self):
        rows = list(csv.DictReader(io.StringIO(self.succeed(self.model("-o", "csv", ALL)), newline="")))
        self.assertEqual([row["Id"] for row in rows], ["1", "2", "3", "4", "5"])
        self.assertEqual(rows[1]["Name"], "with, comma")
        self.assertEqual(rows[1]["Tags"], 'say "hi"')
        self.assertEqual(rows[2]["Tags"], "two\nlines")
        self.assertEqual(rows[3]["Name"], "")

    def test_alias_is_the_column_name(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Id AS A FROM Shop_Item WHERE Id = 1")), "A\n1\n")

    def test_no_rows(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Id, Name FROM Shop_Empty")), "Id,Name\n")

    def test_format_clause(self):
        self.assertEqual(self.succeed(self.model(SOME + " FORMAT AS CSV")), self.succeed(self.model("-o", "csv", SOME)))


class Json(ToolCase):
    def test_bytes(self):
        self.assertEqual(self.succeed(self.model("-o", "json", SOME)), (
            "[\n"
            '  {"Id": 1, "Name": "plain", "Weight": 0.5},\n'
            '  {"Id": 2, "Name": "with, comma", "Weight": -1.25},\n'
            '  {"Id": 3, "Name": "a \\"quoted\\" <b> & \'c\'", "Weight": 100}\n'
            "]\n"))

    def test_reads_back_with_every_digit_and_kind(self):
        rows = json.loads(self.succeed(self.model("-o", "json", ALL)))
        self.assertEqual(rows[0], {
            "Id": 1, "Name": "plain", "Size": 18446744073709551615, "Balance": -9223372036854775808, "Weight": 0.5,
            "Sold": True, "Tags": ["red", "green"], "Codes": [1, 2, 3], "Made": "20240131120000.000000+060",
            "Grade": "A"})
        self.assertEqual(rows[1]["Balance"], 9223372036854775807)
        self.assertIs(rows[1]["Sold"], False)
        self.assertEqual(rows[1]["Codes"], [])
        self.assertEqual(rows[2]["Tags"], ["two\nlines"])
        self.assertEqual(list(rows[3].values()), [4] + [None] * 9)
        self.assertEqual(rows[4]["Name"], "größer 日本")
        self.assertEqual(rows[4]["Weight"], 0.001)

    def test_no_rows(self):
        self.assertEqual(self.succeed(self.model("-o", "json", "SELECT Id FROM Shop_Empty")), "[]\n")

    def test_an_array_for_each_statement(self):
        text = self.succeed(self.model("-o", "json", "SELECT Id FROM Shop_Item WHERE Id = 1; SELECT Id FROM Shop_Empty"))
        self.assertEqual(text, '[\n  {"Id": 1}\n]\n[]\n')

    def test_columns_of_one_name_are_numbered(self):
        rows = json.loads(self.succeed(self.model("-o", "json", "SELECT Id AS A, Name AS A FROM Shop_Item WHERE Id = 1")))
        self.assertEqual(rows, [{"A": 1, "A_2": "plain"}])

    def test_embedded_objects_are_objects(self):
        rows = json.loads(self.succeed(self.model(
            "-o", "json", "SELECT INSTANCEOF(Shop_Item) AS O FROM Shop_Item WHERE Id = 1")))
        self.assertEqual(rows[0]["O"]["Name"], "plain")
        self.assertEqual(rows[0]["O"]["Codes"], [1, 2, 3])

    def test_references_are_paths(self):
        rows = json.loads(self.succeed(self.model(
            "-o", "json", "SELECT OBJECTPATH(Shop_Item) AS P FROM Shop_Item WHERE Id = 2")))
        self.assertEqual(rows, [{"P": "root/cimv2:Shop_Item.Id=2"}])


class ColumnNames(ToolCase):
    """Functions without alias are called as they were written, in every form but the engine's stream."""
    AGGREGATES = "SELECT COUNT(Id), SUM( Size ), count(i.Name) FROM Shop_Item AS i WHERE Id < 4"
    PATH = "SELECT OBJECTPATH(i), Id, -Id FROM Shop_Item AS i WHERE Id = 2"

    def test_csv(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", self.AGGREGATES)).splitlines()[0],
                         "COUNT(Id),SUM(Size),count(i.Name)")
        self.assertEqual(self.succeed(self.model("-o", "csv", self.PATH)),
                         "OBJECTPATH(i),Id,-Id\nroot/cimv2:Shop_Item.Id=2,2,-2\n")

    def test_other_forms(self):
        for form, quote in (("table", ""), ("json", '"'), ("jsonl", '"'), ("html", "")):
            with self.subTest(form=form):
                text = self.succeed(self.model("-o", form, self.AGGREGATES))
                for name in ("COUNT(Id)", "SUM(Size)", "count(i.Name)"):
                    self.assertIn(quote + name + quote, text)
                self.assertIn(quote + "OBJECTPATH(i)" + quote, self.succeed(self.model("-o", form, self.PATH)))

    def test_the_stream_keeps_the_engines_names(self):
        text = self.succeed(self.model("-o", "xml", "SELECT COUNT(Id) FROM Shop_Item"))
        self.assertIn('NAME="SHOP_ITEM.Id"', text)
        self.assertNotIn("COUNT", text)

    def test_an_alias_comes_first(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT COUNT(Id) AS n FROM Shop_Item")), "N\n5\n")


class JsonLines(ToolCase):
    def test_bytes(self):
        self.assertEqual(self.succeed(self.model("-o", "jsonl", SOME)), (
            '{"Id": 1, "Name": "plain", "Weight": 0.5}\n'
            '{"Id": 2, "Name": "with, comma", "Weight": -1.25}\n'
            '{"Id": 3, "Name": "a \\"quoted\\" <b> & \'c\'", "Weight": 100}\n'))

    def test_lines_are_the_rows_of_json(self):
        rows = json.loads(self.succeed(self.model("-o", "json", ALL)))
        lines = self.succeed(self.model("-o", "jsonl", ALL)).splitlines()
        self.assertEqual([json.loads(line) for line in lines], rows)

    def test_nothing_around_or_between_results(self):
        self.assertEqual(self.succeed(self.model("-o", "jsonl", "SELECT Id FROM Shop_Empty")), "")
        self.assertEqual(self.succeed(self.model("-o", "jsonl", "SELECT Id FROM Shop_Item WHERE Id = 1; "
                                                                "SELECT Id FROM Shop_Item WHERE Id = 2")),
                         '{"Id": 1}\n{"Id": 2}\n')


class Mof(ToolCase):
    HEAD = "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);\n"

    def load(self, text, query, with_model=False):
        """What a query over that MOF text gives, as JSON."""
        path = self.write("out.mof", ("" if with_model else self.HEAD) + text)
        model = ("-m", self.write("schema.mof", self.schema())) if with_model else ()
        return json.loads(self.succeed(self.run_tool("--no-live", *model, "-m", path, "-o", "json", query)))

    @staticmethod
    def schema():
        with open(MODEL, encoding="utf-8") as file:
            return file.read().split("instance of")[0]

    def test_instances_of_the_rows_class_load_again(self):
        text = self.succeed(self.model("-o", "mof", "SELECT * FROM Shop_Item"))
        self.assertTrue(text.startswith("instance of Shop_Item {\n    Id = 1;\n    Name = \"plain\";\n"), text)
        self.assertEqual(self.load(text, ALL, with_model=True), json.loads(self.model("-o", "json", ALL).out))

    def test_columns_of_one_object_are_its_instance(self):
        self.assertEqual(self.succeed(self.model("-o", "mof", "SELECT Name, Id FROM Shop_Item WHERE Id = 2")),
                         'instance of Shop_Item {\n    Name = "with, comma";\n    Id = 2;\n};\n')

    def test_rows_without_their_keys_load_again(self):
        for columns in ("Name", "Name, Size, Sold", "Tags"):
            with self.subTest(columns=columns):
                query = f"SELECT {columns} FROM Shop_Item"
                text = self.succeed(self.model("-o", "mof", query))
                self.assertTrue(text.startswith("class QueryResult {\n  [Key] uint64 Row;\n"), text)
                self.assertEqual(self.load(text, f"SELECT {columns} FROM QueryResult"),
                                 json.loads(self.model("-o", "json", query).out))

    SHOPS = HEAD + """class Part { [Key] string A; [Key] uint32 B; string C; };
class Bolt : Part { string D; };
class Mate { [Key] uint32 K; };
instance of Part { A = "x"; B = 1; C = "c"; };
instance of Bolt { A = "y"; B = 2; D = "d"; };
instance of Mate { K = 1; };
instance of Mate { K = 2; };
"""

    def shops(self, query):
        return self.succeed(self.run_tool("--no-live", "-m", self.write("shops.mof", self.SHOPS), "-o", "mof", query))

    def load_shops(self, text):
        """Loads what was printed beside the classes: fails where that does not load."""
        schema = self.write("schema.mof", self.SHOPS.split("instance of")[0])
        path = self.write("out.mof", text)
        query = "SELECT COUNT(Part) AS N FROM Part"
        return json.loads(self.succeed(self.run_tool("--no-live", "-m", schema, "-m", path, "-o", "json", query)))[0]["N"]

    def test_one_key_of_two_is_no_instance(self):
        text = self.shops("SELECT A, C FROM Part")
        self.assertNotIn("instance of Part", text)
        self.assertIsNone(self.load_shops(text))
        self.assertEqual(self.load_shops(self.shops("SELECT C, b, a FROM Part")), 2)

    def test_an_object_that_comes_twice_is_one_instance(self):
        text = self.shops("SELECT p.* FROM Part AS p, Mate AS m")
        self.assertEqual([text.count(f"instance of {name} ") for name in ("Part", "Bolt", "QueryResult")], [1, 1, 2])
        self.assertEqual(self.load_shops(text), 2)
        self.assertEqual(self.load_shops(self.shops("SELECT * FROM Part; SELECT A, B FROM Part")), 2)

    def test_values_that_differ_in_type(self):
        query = "SELECT Id, Size - 10 AS D FROM Shop_Item WHERE Id > 1"
        rows = json.loads(self.succeed(self.model("-o", "json", query)))
        self.assertEqual([row["D"] for row in rows], [-10, 32, None, -3])
        text = self.succeed(self.model("-o", "mof", query))
        self.assertIn("  sint64 D;\n", text)
        self.assertIn("  uint64 D;\n", text)
        self.assertEqual(self.load(text, "SELECT Row, D FROM QueryResult"), [{"Row": 1, "D": -10}, {"Row": 3, "D": None}, {"Row": 4, "D": -3}])
        self.assertEqual(self.load(text, "SELECT Row, D FROM QueryResult_2"), [{"Row": 2, "D": 32}])

    def test_null_is_left_out(self):
        self.assertEqual(self.succeed(self.model("-o", "mof", "SELECT Id, Name FROM Shop_Item WHERE Id = 4")),
                         "instance of Shop_Item {\n    Id = 4;\n};\n")

    def test_other_results_declare_their_class(self):
        query = "SELECT Id + 1 AS Next, Tags, Codes, Sold, OBJECTPATH(Shop_Item) AS P FROM Shop_Item WHERE Id < 3"
        text = self.succeed(self.model("-o", "mof", query))
        self.assertTrue(text.startswith(
            "class QueryResult {\n  [Key] uint64 Row;\n  uint64 NEXT;\n  string Tags[];\n  uint16 Codes[];\n"
            "  boolean Sold;\n  string P;\n};\ninstance of QueryResult {\n    Row = 1;\n"), text)
        self.assertEqual(self.load(text, "SELECT NEXT, Tags, Codes, Sold, P FROM QueryResult"),
                         json.loads(self.model("-o", "json", query).out))

    def test_names_of_columns_become_names_of_properties(self):
        text = self.succeed(self.model("-o", "mof", "SELECT i.Id, e.Id, i.Name AS Row FROM Shop_Item AS i, Shop_Empty AS e "
                                                    "WHERE i.Id = 1"))
        self.assertIn("  uint32 i_Id;\n  string e_Id;\n  string ROW_2;\n", text)
        self.assertEqual(self.load(text, "SELECT i_Id FROM QueryResult"), [{"i_Id": 1}])

    def test_results_are_an_empty_line_apart_and_classes_numbered(self):
        text = self.succeed(self.model("-o", "mof", "SELECT COUNT(Id) AS N FROM Shop_Item; SELECT MAX(Id) AS N FROM Shop_Item"))
        self.assertIn("};\n\nclass QueryResult_2 {\n", text)
        self.assertEqual(self.load(text, "SELECT N FROM QueryResult_2"), [{"N": 5}])

    def test_no_rows(self):
        self.assertEqual(self.succeed(self.model("-o", "mof", "SELECT * FROM Shop_Empty")), "")


class PageReader(html.parser.HTMLParser):
    """Checks that tags nest and collects cells."""
    VOID = {"meta", "!doctype"}

    def __init__(self):
        super().__init__()
        self.open, self.headers, self.rows, self.queries, self.counts, self.classes = [], [], [], [], [], []
        self.titles = []
        self.declared = False

    def handle_decl(self, decl):
        self.declared = decl.lower() == "doctype html"

    def handle_startendtag(self, tag, attributes):
        assert tag in self.VOID, tag

    def handle_starttag(self, tag, attributes):
        self.open.append(tag)
        attributes = dict(attributes)
        assert "src" not in attributes and "href" not in attributes, "the page needs something else"
        if tag == "tr":
            self.rows.append([])
        if tag in ("td", "th"):
            self.rows[-1].append("")
            self.classes.append((tag, attributes.get("class", "")))
            self.titles.append(attributes.get("title"))

    def handle_endtag(self, tag):
        assert self.open.pop() == tag, tag

    def handle_data(self, data):
        if "td" in self.open or "th" in self.open:
            self.rows[-1][-1] += data
        if self.open and self.open[-1] == "pre":
            self.queries.append(data)
        if self.open and self.open[-1] == "p":
            self.counts.append(data)


class Html(ToolCase):
    def page(self, *arguments):
        return self.read(self.succeed(self.model(*arguments)))

    def read(self, text):
        reader = PageReader()
        reader.feed(text)
        reader.close()
        self.assertEqual(reader.open, [])
        self.assertTrue(reader.declared)
        return text, reader

    def test_page_is_well_formed_and_complete(self):
        text, reader = self.page("-o", "html", SOME)
        self.assertEqual(text.count("<html"), 1)
        self.assertTrue(text.endswith("</html>\n"))
        self.assertEqual(reader.rows, [["Id", "Name", "Weight"], ["1", "plain", "0.5"], ["2", "with, comma", "-1.25"],
                                       ["3", "a \"quoted\" <b> & 'c'", "100"]])
        self.assertEqual("".join(reader.queries), SOME)
        self.assertEqual(reader.counts, ["3 rows"])

    def test_it_is_well_formed_xml_too(self):
        text, _ = self.page("-o", "html", ALL)
        xml.etree.ElementTree.fromstring(text.replace("<!DOCTYPE html>", ""))

    def test_numbers_are_marked_and_null_reads_null(self):
        _, reader = self.page("-o", "html", "SELECT Sold, Size FROM Shop_Item WHERE Id > 3 ORDER BY Id ASC")
        self.assertEqual(reader.rows[1:], [["NULL", "NULL"], ["TRUE", "7"]])
        self.assertEqual(reader.classes, [("th", ""), ("th", "number"), ("td", "null"), ("td", "number null"),
                                          ("td", ""), ("td", "number")])

    def test_a_datetime_is_readable_and_raw_in_its_title(self):
        _, reader = self.page("-o", "html", "SELECT Made FROM Shop_Item WHERE Id < 4 ORDER BY Id ASC")
        self.assertEqual(reader.rows[1:], [["2024-01-31 12:00:00 UTC+1"], ["2023-12-31 23:59:59 UTC"], ["NULL"]])
        self.assertEqual(reader.titles, [None, "20240131120000.000000+060", "20231231235959.999999+000", None])
        self.assertEqual(reader.classes[1:], [("td", "time"), ("td", "time"), ("td", "null")])

    def test_every_form_of_datetime(self):
        forms = {"20260102030405.000000+330": "2026-01-02 03:04:05 UTC+5:30",
                 "20260102030405.000000-305": "2026-01-02 03:04:05 UTC-5:05",
                 "20260102030405.******+***": "2026-01-02 03:04:05",
                 "202601020304**.******+060": "2026-01-02 03:04 UTC+1",
                 "2026010203****.******+060": "2026-01-02",
                 "20260102******.******+***": "2026-01-02",
                 "202601********.******+***": "2026-01",
                 "2026**********.******+***": "2026",
                 "**************.******+***": None,
                 "00000003041500.500000:000": "3 days 04:15:00.5",
                 "00000001000000.000000:000": "1 day 00:00:00",
                 "00000000000000.000001:000": "00:00:00.000001",
                 "00000000235959.******:000": "23:59:59",
                 "000000002359**.******:000": None}
        path = self.write("times.mof", "Qualifier Key : boolean = false, Scope(property);\n"
                          "class T { [Key] uint32 Id; datetime At; datetime All[]; };\n" + "".join(
                              f'instance of T {{ Id = {i}; At = "{raw}"; All = {{"{raw}"}}; }};\n' for i, raw in enumerate(forms)))
        select = ["--no-live", "-m", path, "SELECT At FROM T ORDER BY Id ASC", "-o"]
        reader = self.read(self.succeed(self.run_tool(*select, "html")))[1]
        self.assertEqual([row[0] for row in reader.rows[1:]], [shown or raw for raw, shown in forms.items()])
        self.assertEqual(reader.titles[1:], [raw if shown else None for raw, shown in forms.items()])
        self.assertEqual(self.succeed(self.run_tool(*select, "csv")).splitlines()[1:], list(forms))
        array = self.read(self.succeed(self.run_tool("--no-live", "-m", path, "-o", "html", "SELECT All FROM T WHERE Id = 0")))[1]
        self.assertEqual(array.rows[1:], [["20260102030405.000000+330"]])

    def test_texts_over_32_columns_may_be_clamped(self):
        for name, is_long in (("n" * 32, False), ("n" * 33, True), ("ä" * 32, False), ("日" * 16, False), ("日" * 17, True)):
            path = self.write("names.mof", 'Qualifier Key : boolean = false, Scope(property);\n'
                              f'class N {{ [Key] string Name; }};\ninstance of N {{ Name = "{name}"; }};\n')
            text, reader = self.read(self.succeed(self.run_tool("--no-live", "-m", path, "-o", "html", "SELECT Name FROM N")))
            self.assertEqual(reader.rows[1:], [[name]])
            self.assertEqual('<td><div class="long">' in text, is_long, name)

    def test_over_1000_rows_come_in_parts(self):
        classes = "Qualifier Key : boolean = false, Scope(property);\nclass N { [Key] uint32 Id; };\n"
        for count in (1000, 1001):
            path = self.write("many.mof", classes + "".join(f"instance of N {{ Id = {i}; }};\n" for i in range(count)))
            text, reader = self.read(self.succeed(self.run_tool("--no-live", "-m", path, "-o", "html", "SELECT Id FROM N")))
            self.assertEqual([row[0] for row in reader.rows[1:]], [str(i) for i in range(count)])
            self.assertEqual((text.count("<tbody>"), text.count('<table class="large">')), (11, 1) if count > 1000 else (1, 0))

    def test_query_is_escaped(self):
        text, reader = self.page("-o", "html", "SELECT Id FROM Shop_Item WHERE Id < 2 AND Name <> '<script>'")
        self.assertEqual(text.count("<script>"), 1)  # the page's own
        self.assertIn("<script>", "".join(reader.queries))

    def test_light_and_dark_sticky_header_and_nothing_from_outside(self):
        text, _ = self.page("-o", "html", SOME)
        for part in ("prefers-color-scheme: dark", "color-scheme: light dark", "position: sticky"):
            self.assertIn(part, text)
        for part in ("http://", "https://", "<script ", "<link", "@import", "url("):
            self.assertNotIn(part, text)

    def test_counts(self):
        self.assertEqual(self.page("-o", "html", "SELECT Id FROM Shop_Empty")[1].counts, ["No rows"])
        self.assertEqual(self.page("-o", "html", "SELECT Id FROM Shop_Item WHERE Id = 1")[1].counts, ["1 row"])

    def test_one_page_for_several_statements(self):
        text, reader = self.page("-o", "html", "SELECT Id FROM Shop_Empty; " + SOME)
        self.assertEqual(text.count("<html"), 1)
        self.assertEqual(reader.counts, ["No rows", "3 rows"])

    def test_page_is_closed_when_a_later_statement_fails(self):
        result = self.model("-o", "html", SOME + "; SELECT")
        self.assertEqual(result.status, 1)
        self.assertTrue(result.out.endswith("</html>\n"))

    def test_format_clause(self):
        query = SOME + " FORMAT AS HTML"
        self.assertEqual(self.succeed(self.model(query)), self.succeed(self.model("-o", "html", query)))


class Percentages(ToolCase):
    """At most two digits after the point for people; programs get them all."""
    MOF = """Qualifier Key : boolean = false, Scope(property);
Qualifier Units : string, Scope(property); Qualifier PUnit : string, Scope(property);
class P {
  [Key] uint32 Id; real64 PercentUsed; real32 CPUPercent; real64 Load; [Units("Percent")] real64 Idle; [PUnit("percent")] real64 Busy;
  real64 Percentile; uint64 PercentComplete; real64 PercentOfEach[];
};
instance of P {
  Id = 1; PercentUsed = 12.3456; CPUPercent = 50.0; Load = 0.12345; Idle = 99.999; Busy = -0.001; Percentile = 0.12345;
  PercentComplete = 77; PercentOfEach = {0.12345};
};
instance of P { Id = 2; PercentUsed = 12.5; CPUPercent = 33.333; Load = 3.0; Idle = 1.0E17; Busy = 7.005; };
"""
    NAMES = "PercentUsed, CPUPercent, Load, Idle, Busy, Percentile, PercentComplete, PercentOfEach"

    def run_form(self, form, columns, condition="Id = 1"):
        path = self.write("percentages.mof", self.MOF)
        return self.succeed(self.run_tool("--no-live", "-m", path, "-o", form, f"SELECT {columns} FROM P WHERE {condition}"))

    def shown(self, columns, condition="Id = 1"):
        return self.run_form("table", columns, condition).splitlines()[2].split()

    def test_a_table_has_two_digits_of_percentages_alone(self):
        self.assertEqual(self.shown(self.NAMES), ["12.35", "50", "0.12345", "100", "0", "0.12345", "77", "0.12345"])
        self.assertEqual(self.shown("PercentUsed, CPUPercent, Load, Idle, Percentile", "Id = 2"),
                         ["12.5", "33.33", "3", "1e+17", "NULL"])

    def test_an_alias_and_what_is_computed(self):
        self.assertEqual(self.shown("Load * 1 AS LoadPercent, PercentUsed AS Used, Load * 1 AS Part"),
                         ["0.12", "12.35", "0.12345"])
        self.assertEqual(self.shown("MAX(PercentUsed), MAX(Load)"), ["12.35", "0.12345"])

    def test_csv_and_json_are_exact(self):
        self.assertEqual(self.run_form("csv", "PercentUsed, Idle, Busy").splitlines()[1], "12.3456,99.999,-0.001")
        self.assertEqual(json.loads(self.run_form("json", "PercentUsed, Idle, Busy")),
                         [{"PercentUsed": 12.3456, "Idle": 99.999, "Busy": -0.001}])

    def test_a_page_has_the_exact_number_as_title(self):
        reader = PageReader()
        reader.feed(self.run_form("html", "PercentUsed, CPUPercent, Load"))
        self.assertEqual(reader.rows[1:], [["12.35", "50", "0.12345"]])
        self.assertEqual(reader.titles[3:], ["12.3456", None, None])


class Quotes(ToolCase):
    """A single quote in a text is shown as it is, also inside an embedded object's MOF text."""

    def test_in_every_form(self):
        path = self.write("quotes.mof", """Qualifier Key : boolean = false, Scope(property);
Qualifier EmbeddedInstance : string, Scope(property);
class Q_Held { string Text; };
class Q { [Key] string Name; [EmbeddedInstance("Q_Held")] string Held; string List[]; };
instance of Q { Name = "it's"; Held = "instance of Q_Held { Text = \\"it's\\"; };"; List = {"it's"}; };
""")
        for form in ("table", "csv", "json", "jsonl", "html", "mof"):
            text = self.succeed(self.run_tool("--no-live", "-m", path, "-o", form, "SELECT Name, Held, List FROM Q"))
            shown = html.unescape(text.split("<tbody>")[-1].split("</tbody>")[0])
            self.assertEqual((shown.count("it's"), shown.count("\\'")), (3, 0), text)


class Xml(ToolCase):
    def library(self, query):
        return subprocess.run([toolcase.STREAM, MODEL, query], capture_output=True, check=True).stdout

    def test_is_the_librarys_stream_byte_for_byte(self):
        for query in (ALL, SOME, "SELECT Id FROM Shop_Empty", "SELECT * FROM Shop_Item",
                      "SELECT FIRST 2 Id, Tags FROM Shop_Item", "SELECT COUNT(Size) AS N FROM Shop_Item",
                      "SELECT OBJECTPATH(Shop_Item) AS P FROM Shop_Item"):
            with self.subTest(query=query):
                expected = self.library(query)
                self.assertIn(b"<IRETURNVALUE>", expected)
                self.assertEqual(self.model("-o", "xml", query).raw, expected)

    def test_is_well_formed(self):
        root = xml.etree.ElementTree.fromstring(self.succeed(self.model("-o", "xml", ALL)))
        self.assertEqual(root.tag, "IRETURNVALUE")
        rows = root.findall("TABLE/TABLEROW")
        self.assertEqual(len(rows), 5)
        self.assertEqual([cell.text for cell in rows[2]][1], "a \"quoted\" <b> & 'c'")
        self.assertEqual([cell.tag for cell in rows[3]], ["VALUE"] + ["VALUE.NULL"] * 9)

    def test_format_clause(self):
        self.assertEqual(self.model(SOME + " FORMAT AS XML").raw, self.library(SOME))

    def test_output_option_wins_over_the_format_clause(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Id FROM Shop_Item WHERE Id = 1 FORMAT AS XML")),
                         "Id\n1\n")

    def test_several_statements_are_several_streams(self):
        one = self.library("SELECT Id FROM Shop_Item")
        self.assertEqual(self.model("-o", "xml", "SELECT Id FROM Shop_Item; SELECT Id FROM Shop_Item;").raw, one + one)


class EveryForm(ToolCase):
    def row_counts(self, query):
        table = self.succeed(self.model("-o", "table", query)).splitlines()
        text = self.succeed(self.model("-o", "csv", query))
        page = PageReader()
        page.feed(self.succeed(self.model("-o", "html", query)))
        stream = xml.etree.ElementTree.fromstring(self.succeed(self.model("-o", "xml", query)))
        return {"table": len(table) - 2, "csv": len(list(csv.reader(io.StringIO(text)))) - 1,
                "json": len(json.loads(self.succeed(self.model("-o", "json", query)))), "html": len(page.rows) - 1,
                "page count": int(page.counts[0].split()[0]), "xml": len(stream.findall("TABLE/TABLEROW"))}

    def test_first_holds_in_all(self):
        for count in (1, 3):
            query = f"SELECT FIRST {count} Id, Name FROM Shop_Item ORDER BY Id DESC"
            self.assertEqual(set(self.row_counts(query).values()), {count}, query)
            self.assertTrue(self.succeed(self.model("-o", "csv", query)).startswith("Id,Name\n5,"))

    def test_first_beyond_the_end(self):
        self.assertEqual(set(self.row_counts("SELECT FIRST 99 Id, Name FROM Shop_Item").values()), {5})

    def test_aggregates(self):
        query = "SELECT COUNT(Size) AS N, MAX(Size) AS M FROM Shop_Item"
        self.assertEqual(set(self.row_counts(query).values()), {1})
        self.assertEqual(self.succeed(self.model("-o", "csv", query)), "N,M\n4,18446744073709551615\n")
        self.assertEqual(json.loads(self.succeed(self.model("-o", "json", query))), [{"N": 4, "M": 2**64 - 1}])

    def test_star_shows_every_property(self):
        text = self.succeed(self.model("-o", "csv", "SELECT * FROM Shop_Item WHERE Id = 1"))
        header, row = list(csv.reader(io.StringIO(text)))
        self.assertEqual([name.split(".")[-1] for name in header],
                         ["Id", "Name", "Size", "Balance", "Weight", "Sold", "Tags", "Codes", "Made", "Grade"])
        self.assertEqual(row[:3], ["1", "plain", "18446744073709551615"])

    def test_alias_names_the_column(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "SELECT Size + 1 AS Bigger FROM Shop_Item WHERE Id = 3")),
                         "BIGGER\n43\n")

    def test_the_form_does_not_change_what_is_asked_for(self):
        calls = set()
        for form in ("table", "csv", "json", "jsonl", "html", "xml", "mof"):
            result = self.model("-o", form, "--log", "trace", SOME)
            calls.add("\n".join(line for line in result.err.splitlines() if ": trace: " in line))
        self.assertEqual(len(calls), 1, calls)


class EmptyRows(ToolCase):
    WARNING = "qorql: warning: In XML the rows of * are empty: name the columns [SEL-5]\n"

    def test_a_bare_star_in_xml_is_warned_of(self):
        for query in ("SELECT * FROM Shop_Empty", "SELECT FIRST 2 * FROM Shop_Empty", "SELECT Id, * FROM Shop_Empty"):
            result = self.model("--warnings", "-o", "xml", query)
            self.assertEqual(result.status, 0)
            self.assertTrue(result.err.endswith(self.WARNING), result.err)
            self.assertNotIn(self.WARNING, self.model("-o", "xml", query).err)
            self.assertNotIn(self.WARNING, self.model("--warnings", "-o", "csv", query).err)

    def test_a_product_is_none(self):
        self.assertEqual(self.model("--warnings", "-o", "xml", "SELECT Id * 2 AS Twice FROM Shop_Item").err, "")


if __name__ == "__main__":
    toolcase.main()
