"""Results as Arrow IPC streams, judged by a reader that shares nothing with the writer."""
# SPDX-License-Identifier: Apache-2.0
import csv
import io
import os
import pty
import subprocess
import time

import arrowreader
import toolcase
from toolcase import MODEL, ToolCase, at_terminal

TYPES = """
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier EmbeddedInstance : string, Scope(property), Flavor(EnableOverride, ToSubclass);
Qualifier ValueMap : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
Qualifier Values : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
class A_Note { string Text; };
class A_All {
  [Key] uint32 Id;
  uint8 U8; uint16 U16; uint32 U32; uint64 U64; sint8 S8; sint16 S16; sint32 S32; sint64 S64;
  real32 R32; real64 R64; boolean Yes; char16 Mark; string Text; datetime Made; datetime Span;
  [EmbeddedInstance("A_Note")] string Note;
  uint8 U8s[]; sint64 S64s[]; real32 R32s[]; boolean Yeses[]; string Texts[]; datetime Times[];
  [EmbeddedInstance("A_Note")] string Notes[];
  [ValueMap{"1", "2"}, Values{"one", "two"}] uint16 State;
  [ValueMap{"1", "2"}, Values{"one", "two"}] uint16 States[];
};
[Association] class A_Tie { [Key] A_All REF Left; [Key] A_All REF Right; };
instance of A_All as $a {
  Id = 1; U8 = 255; U16 = 65535; U32 = 4294967295; U64 = 18446744073709551615;
  S8 = -128; S16 = -32768; S32 = -2147483648; S64 = -9223372036854775808; R32 = 0.1; R64 = 0.1; Yes = TRUE; Mark = 'ö';
  Text = "two\\nlines"; Made = "20240131120000.000001+060"; Span = "00000001020304.000005:000";
  Note = instance of A_Note { Text = "n"; };
  U8s = {1, NULL, 255}; S64s = {-9223372036854775808}; R32s = {1.5, NULL}; Yeses = {TRUE, NULL, FALSE};
  Texts = {"", NULL, "x"}; Times = {"19700101000000.000000+000", NULL};
  Notes = {instance of A_Note { Text = "m"; }, NULL}; State = 2; States = {1, 7, NULL};
};
instance of A_All as $b { Id = 2; U8s = {}; Yes = FALSE; Texts = {}; State = 9; };
instance of A_All { Id = 3; };
instance of A_Tie { Left = $a; Right = $b; };
"""
TIMES = """
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class T_Time { [Key] uint32 Id; datetime At; };
"""
# An instance of T_Time with each.
MOMENTS = {"timestamp": "20240229235959.999999-300", "interval": "00000000000001.000000:000",
           "wildcards": "2024**********.******+000"}


class Arrow(ToolCase):
    def streams(self, *arguments):
        result = self.run_tool("--no-live", "-o", "arrow", *arguments)
        self.assertEqual((result.status, result.err), (0, ""))
        return arrowreader.read(result.raw)

    def stream(self, *arguments):
        streams = self.streams(*arguments)
        self.assertEqual(len(streams), 1)
        return streams[0]

    def types(self):
        return self.write("types.mof", TYPES)

    def table(self, *arguments, mof=None):
        """{name: (type, values)} of one result."""
        stream = self.stream("-m", mof or self.types(), *arguments)
        columns = [list(column) for column in zip(*stream.rows)] or [[] for _ in stream.fields]
        return {field.name: (field.type, column) for field, column in zip(stream.fields, columns)}

    def refused(self, result, status, message):
        self.assertEqual((result.status, result.err), (status, message + "\n"))


class Types(Arrow):
    def test_scalars_have_the_types_that_are_declared(self):
        table = self.table("SELECT U8, U16, U32, U64, S8, S16, S32, S64, R32, R64, Yes, Mark, Text FROM A_All ORDER BY Id ASC")
        null = [None, None]
        self.assertEqual(table, {
            "U8": ("uint8", [255] + null), "U16": ("uint16", [65535] + null), "U32": ("uint32", [4294967295] + null),
            "U64": ("uint64", [18446744073709551615] + null), "S8": ("int8", [-128] + null),
            "S16": ("int16", [-32768] + null), "S32": ("int32", [-2147483648] + null),
            "S64": ("int64", [-9223372036854775808] + null), "R32": ("float", [0.10000000149011612] + null),
            "R64": ("double", [0.1] + null), "Yes": ("bool", [True, False, None]), "Mark": ("utf8", ["ö"] + null),
            "Text": ("utf8", ["two\nlines"] + null)})

    def test_lists_keep_nulls_and_emptiness(self):
        table = self.table("SELECT U8s, S64s, R32s, Yeses, Texts, Times FROM A_All ORDER BY Id ASC")
        self.assertEqual(table, {
            "U8s": ("list<uint8>", [[1, None, 255], [], None]),
            "S64s": ("list<int64>", [[-9223372036854775808], None, None]),
            "R32s": ("list<float>", [[1.5, None], None, None]),
            "Yeses": ("list<bool>", [[True, None, False], None, None]),
            "Texts": ("list<utf8>", [["", None, "x"], [], None]),
            "Times": ("list<timestamp[us, UTC]>", [[0, None], None, None])})

    def test_references_and_embedded_instances_are_the_texts_of_the_other_forms(self):
        for query in ("SELECT Left, Right FROM A_Tie", "SELECT Note, Mark FROM A_All WHERE Id = 1"):
            table = self.table(query)
            told = self.run_tool("--no-live", "-m", self.types(), "-o", "csv", query)
            _, row = csv.reader(io.StringIO(told.out, newline=""))
            self.assertEqual([values[0] for _, values in table.values()], row)
            self.assertEqual({kind for kind, _ in table.values()}, {"utf8"})
        kind, values = self.table("SELECT Notes FROM A_All WHERE Id = 1")["Notes"]
        self.assertEqual((kind, values[0][1]), ("list<utf8>", None))
        self.assertIn('Text = "m"', values[0][0])

    def test_the_schema_tells_the_types_where_there_are_no_values(self):
        query = "SELECT U8, U64, R32, Yes, Text, Made, Note, U8s, Texts, Times FROM A_All"
        types = {name: kind for name, (kind, _) in self.table(query).items()}
        for condition in (" WHERE Id = 3", " WHERE Id = 99"):
            table = self.table(query + condition)
            self.assertEqual({name: kind for name, (kind, _) in table.items()}, types)
        self.assertEqual(self.table("SELECT * FROM A_All WHERE Id = 99")["Notes"], ("list<utf8>", []))

    def test_fields_tell_their_types_of_cim(self):
        stream = self.stream("-m", self.types(), "SELECT U8, Mark, Note, Texts, Made, Id + 1 AS N FROM A_All")
        self.assertEqual({field.name: field.metadata for field in stream.fields},
                         {"U8": {"cim:type": "uint8"}, "Mark": {"cim:type": "char16"}, "Note": {"cim:type": "string"},
                          "Texts": {"cim:type": "string[]"}, "Made": {"cim:type": "datetime"},
                          "N": {"cim:type": "uint64"}})

    def test_what_is_computed_has_the_type_of_its_values(self):
        table = self.table("SELECT COUNT(Id) AS N, SUM(U8) AS S, MAX(S8) AS M, AVG(U8) AS A, MIN(Id) AS T FROM A_All")
        self.assertEqual({name: kind for name, (kind, _) in table.items()},
                         {"N": "uint64", "S": "uint64", "M": "int64", "A": "double", "T": "uint64"})
        self.assertEqual(self.table("SELECT U8 + 1 AS N FROM A_All WHERE Id = 3")["N"], ("null", [None]))

    def test_numbers_of_several_types_get_one_that_holds_them(self):
        mof = self.write("m.mof", "class M { [Key] uint32 K; uint64 U; };"
                         "instance of M { K = 1; U = 10; }; instance of M { K = 2; U = 30; };"
                         "instance of M { K = 3; U = 18446744073709551615; };")
        self.assertEqual(self.table("SELECT U - 20 AS D FROM M WHERE K < 3 ORDER BY K ASC", mof=mof)["D"], ("int64", [-10, 10]))
        self.assertEqual(self.table("SELECT U - 5 AS D FROM M ORDER BY K ASC", mof=mof)["D"],
                         ("uint64", [5, 25, 18446744073709551610]))
        result = self.run_tool("--no-live", "-m", mof, "-o", "arrow", "SELECT U - 20 AS D FROM M")
        self.refused(result, 1, "qorql: error: column D has values that no one type holds (sint64, uint64): -o jsonl or csv "
                                "can tell them (CIM status 1)")
        self.assertEqual(result.raw, b"")

    def test_columns_of_subclasses(self):
        mof = self.write("m.mof", "class B { [Key] uint32 K; }; class C : B { uint8 X; string Y; }; class D : B { string X; };"
                         "instance of C { K = 1; X = 5; Y = \"y\"; }; instance of B { K = 2; };")
        self.assertEqual(self.table("SELECT * FROM B ORDER BY K ASC", mof=mof),
                         {"K": ("uint32", [1, 2]), "X": ("uint8", [5, None]), "Y": ("utf8", ["y", None])})
        both = self.write("both.mof", f'#pragma include ("{mof}")\ninstance of D {{ K = 3; X = "x"; }};')
        result = self.run_tool("--no-live", "-m", both, "-o", "arrow", "SELECT * FROM B")
        self.refused(result, 1, "qorql: error: column X has values that no one type holds (uint8, string): -o jsonl or csv "
                                "can tell them (CIM status 1)")

    def test_codes_with_their_texts(self):
        self.assertEqual(self.table("--values", "SELECT State, States FROM A_All ORDER BY Id ASC"),
                         {"State": ("utf8", ["2 (two)", "9", None]),
                          "States": ("list<utf8>", [["1 (one)", "7", None], None, None])})

    def test_bytes_that_are_no_text_are_replaced(self):
        self.assertEqual(self.table(b"SELECT 'a\xffb' AS T FROM A_All WHERE Id = 1")["T"], ("utf8", ["a\ufffdb"]))


class DateTimes(Arrow):
    def column(self, *moments):
        instances = "".join(f'instance of T_Time {{ Id = {i}; At = {text}; }};' for i, text in enumerate(
            "NULL" if name is None else f'"{MOMENTS[name]}"' for name in moments))
        mof = self.write("times.mof", TIMES + instances)
        return self.table("SELECT At FROM T_Time ORDER BY Id ASC", mof=mof)["At"]

    def test_timestamps_are_instants_in_utc(self):
        self.assertEqual(self.column("timestamp", None), ("timestamp[us, UTC]", [1709269199999999, None]))

    def test_intervals_are_durations(self):
        self.assertEqual(self.column("interval", None), ("duration[us]", [1000000, None]))

    def test_what_no_number_tells_makes_the_column_a_text(self):
        for moments in (("timestamp", "interval"), ("timestamp", "wildcards"), ("interval", "wildcards")):
            self.assertEqual(self.column(*moments), ("utf8", [MOMENTS[name] for name in moments]))

    def test_a_column_without_any_has_timestamps(self):
        self.assertEqual(self.column(None), ("timestamp[us, UTC]", [None]))

    def test_the_ends_of_both_kinds(self):
        mof = self.write("times.mof", TIMES + 'instance of T_Time { Id = 1; At = "00000101000000.000000+000"; };'
                         'instance of T_Time { Id = 2; At = "99991231235959.999999+000"; };')
        self.assertEqual(self.table("SELECT At FROM T_Time ORDER BY Id ASC", mof=mof)["At"][1],
                         [-62167219200000000, 253402300799999999])
        mof = self.write("spans.mof", TIMES + 'instance of T_Time { Id = 1; At = "99999999235959.999999:000"; };')
        self.assertEqual(self.table("SELECT At FROM T_Time", mof=mof)["At"], ("duration[us]", [8639999999999999999]))


class Streams(Arrow):
    def many(self, count, text=""):
        mof = self.write("many.mof", "class N { [Key] uint32 K; string T; };" + "".join(
            f'instance of N {{ K = {i}; T = "{text}"; }};' for i in range(count)))
        return mof, "SELECT K, T FROM N"

    def test_names_are_unique(self):
        stream = self.stream("-m", MODEL, "SELECT Id AS X, Name AS X, Size AS X_2 FROM Shop_Item")
        self.assertEqual([field.name for field in stream.fields], ["X", "X_3", "X_2"])

    def test_each_result_is_a_stream(self):
        streams = self.streams("-m", MODEL, "SELECT Id FROM Shop_Item WHERE Id < 3; SELECT Name FROM Shop_Empty")
        self.assertEqual([(stream.types(), stream.rows) for stream in streams],
                         [({"Id": "uint32"}, [[1], [2]]), ({"Name": "utf8"}, [])])

    def test_rows_come_in_batches(self):
        mof, query = self.many(40000)
        stream = self.stream("-m", mof, query)
        self.assertEqual(stream.batches, [16384, 16384, 7232])
        self.assertEqual(stream.rows, [[i, ""] for i in range(40000)])

    def test_long_texts_end_a_batch(self):
        mof, query = self.many(9, "x" * 300000)
        self.assertEqual(self.stream("-m", mof, query).batches, [4, 4, 1])

    def test_a_result_that_breaks_off_is_no_whole_stream(self):
        mof, query = self.many(20000, "x" * 100)
        with subprocess.Popen([toolcase.TOOL, "--no-live", "-m", mof, "-o", "arrow", "--timeout", "2", query],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
            begin = process.stdout.read(8)  # the rest waits in the pipe until the time is over
            time.sleep(2.5)
            data = begin + process.stdout.read()
            error = process.stderr.read().decode()
        self.assertEqual(process.returncode, 1)
        self.assertIn("qorql: error:", error)
        self.assertGreater(len(data), 100000)
        with self.assertRaisesRegex(arrowreader.Broken, "metadata that is cut"):
            arrowreader.read(data)

    def test_an_error_before_the_first_row_prints_nothing(self):
        result = self.run_tool("--no-live", "-m", MODEL, "-o", "arrow", "SELECT 1 / (Id - 3) AS Q FROM Shop_Item")
        self.refused(result, 1, "qorql: error: Division by zero (CIM status 1)")
        self.assertEqual(result.raw, b"")

    @at_terminal
    def test_a_terminal_gets_none(self):
        own, other = pty.openpty()
        self.addCleanup(os.close, own)
        try:
            done = subprocess.run([toolcase.TOOL, "--no-live", "-m", MODEL, "-o", "arrow", "SELECT Id FROM Shop_Item"],
                                  stdin=subprocess.DEVNULL, stdout=other, stderr=subprocess.PIPE, timeout=60, check=False)
        finally:
            os.close(other)
        self.assertEqual((done.returncode, done.stderr.decode()), (
            1, "qorql: error: arrow is for programs and not for a terminal: send it to a file or a pipe (CIM status 1)\n"))

    def test_the_reader_sees_what_is_wrong(self):
        data = self.run_tool("--no-live", "-m", MODEL, "-o", "arrow", "SELECT * FROM Shop_Item").raw
        self.assertEqual(len(arrowreader.read(data)[0].rows), 5)
        for wrong in (data[:-8], data[:-9], data[8:], data[:200] + data[208:]):
            with self.assertRaises(arrowreader.Broken):
                arrowreader.read(wrong)


if __name__ == "__main__":
    toolcase.main()
