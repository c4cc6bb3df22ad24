"""--values: codes with the texts that ValueMap and Values give them."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import socket

import toolcase
from toolcase import ToolCase, at_terminal
from shell_test import Person

MOF = """
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Values : string[], Scope(property), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier ValueMap : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
Qualifier BitMap : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
Qualifier BitValues : string[], Scope(property), Flavor(EnableOverride, ToSubclass, Translatable);
class V_Disk {
  [Key] uint32 Id;
  [ValueMap{"2", "3", "5..9", "10..", ".."}, Values{"OK", "Degraded", "Bad", "Vendor", "Other"}] uint16 State;
  [ValueMap{"2", "3"}, Values{"OK", "Degraded"}] uint16 States[];
  [ValueMap{"-2", "0", "..-5"}, Values{"Below", "Zero", "Deep"}] sint64 Offset;
  [Values{"off", "on"}] uint8 Mode;
  [ValueMap{"a", "b"}, Values{"Alpha"}] string Code;
};
class V_Fast : V_Disk { [ValueMap{"2"}, Values{"Fast"}] uint16 State; [Values{"slow", "quick"}] uint8 Speed; };
class V_File {
  [Key] uint32 Id;
  [BitMap{"0", "2", "63"}, BitValues{"Read", "Execute", "Sticky"}] uint64 Access;
  [BitValues{"Read", "Write"}] uint8 Counted;
  [BitMap{"0", "1"}, BitValues{"Read", "Write"}] uint8 Each[];
  [ValueMap{"0", "3"}, Values{"Nothing", "All"}, BitMap{"0", "1"}, BitValues{"Read", "Write"}] sint16 Both;
};
instance of V_File { Id = 1; Access = 5; Counted = 3; Each = {1, 2, 8}; Both = 0; };
instance of V_File { Id = 2; Access = 0; Counted = 0; Each = {}; Both = 3; };
instance of V_File { Id = 3; Access = 133; Counted = 4; Both = 1; };
instance of V_File { Id = 4; Access = 9223372036854775808; Both = -1; };
instance of V_File { Id = 5; Access = 8; };
instance of V_Disk { Id = 1; State = 2; States = {2, 3, 7}; Offset = -2; Mode = 1; Code = "a"; };
instance of V_Disk { Id = 2; State = 7; States = {}; Offset = -9; Mode = 2; Code = "b"; };
instance of V_Disk { Id = 3; State = 65535; Offset = -3; Code = "c"; };
instance of V_Disk { Id = 4; State = 4; };
instance of V_Disk { Id = 5; };
instance of V_Fast { Id = 6; State = 2; Speed = 1; };
"""


class Values(ToolCase):
    def setUp(self):
        super().setUp()
        self.mof = self.write("disks.mof", MOF)

    def run_values(self, *arguments):
        return self.run_tool("--no-live", "-m", self.mof, "--values", *arguments)

    def column(self, column, condition="Id < 6", source="V_Disk"):
        out = self.succeed(self.run_values("-o", "json", f"SELECT {column} AS C FROM {source} WHERE {condition}"))
        return [row["C"] for row in json.loads(out)]

    def test_codes_and_ranges(self):
        self.assertEqual(self.column("State"), ["2 (OK)", "7 (Bad)", "65535 (Vendor)", "4 (Other)", None])

    def test_signed_codes(self):
        self.assertEqual(self.column("Offset"), ["-2 (Below)", "-9 (Deep)", -3, None, None])

    def test_values_without_a_map_count_from_nothing(self):
        self.assertEqual(self.column("Mode"), ["1 (on)", 2, None, None, None])

    def test_codes_that_are_texts(self):
        self.assertEqual(self.column("Code"), ["a (Alpha)", "b", "c", None, None])

    def test_arrays(self):
        self.assertEqual(self.column("States"), [["2 (OK)", "3 (Degraded)", "7"], [], None, None, None])

    def test_the_bits_that_are_set(self):
        self.assertEqual(self.column("Access", source="V_File"),
                         ["5 (Read, Execute)", 0, "133 (Read, Execute, bit 7)", "9223372036854775808 (Sticky)", 8])

    def test_bits_without_a_map_count_from_the_lowest(self):
        self.assertEqual(self.column("Counted", source="V_File"), ["3 (Read, Write)", 0, 4, None, None])

    def test_bits_of_arrays(self):
        self.assertEqual(self.column("Each", "Id < 3", "V_File"), [["1 (Read)", "2 (Write)", "8"], []])

    def test_the_text_of_the_whole_number_goes_before_those_of_its_bits(self):
        self.assertEqual(self.column("Both", source="V_File"), ["0 (Nothing)", "3 (All)", "1 (Read)", -1, None])

    def test_a_description_lists_bits(self):
        out = self.succeed(self.run_tool("describe", "--no-live", "-m", self.mof, "V_File"))
        self.assertIn("    bit 0 (Read), bit 2 (Execute), bit 63 (Sticky)\n", out)
        self.assertIn("    0 (Nothing), 3 (All), bit 0 (Read), bit 1 (Write)\n", out)

    def test_what_is_computed_stays_a_number(self):
        self.assertEqual(self.column("State + 0", "Id = 1"), [2])
        self.assertEqual(self.column("MIN(State)", "Id < 3"), [2])

    def test_aliases_and_joins(self):
        out = self.succeed(self.run_values("-o", "csv", "SELECT a.State, b.State AS s, b.Speed FROM V_Disk AS a, V_Fast AS b "
                                                        "WHERE a.Id = 1"))
        self.assertEqual(out, "State,S,Speed\n2 (OK),2 (Fast),1 (quick)\n")

    def test_the_class_of_the_object_tells(self):
        out = self.succeed(self.run_values("-o", "csv", "SELECT Id, State FROM V_Disk WHERE State = 2 ORDER BY Id ASC"))
        self.assertEqual(out, "Id,State\n1,2 (OK)\n6,2 (Fast)\n")

    def test_star_and_properties_of_subclasses(self):
        rows = json.loads(self.succeed(self.run_values("-o", "json", "SELECT * FROM V_Disk WHERE Id = 6")))
        self.assertEqual((rows[0]["State"], rows[0]["Speed"]), ("2 (Fast)", "1 (quick)"))

    def test_a_table_and_a_page(self):
        query = "SELECT Id, State FROM V_Disk WHERE Id < 3"
        self.assertEqual(self.succeed(self.run_values(query)), "Id  State\n--  -------\n 1  2 (OK)\n 2  7 (Bad)\n")
        self.assertIn("<td>7 (Bad)</td>", self.succeed(self.run_values("-o", "html", query)))

    def test_mof_and_xml_keep_the_codes(self):
        for form in ("mof", "xml"):
            query = "SELECT Id, State FROM V_Disk WHERE Id < 3"
            plain = self.succeed(self.run_tool("--no-live", "-m", self.mof, "-o", form, query))
            self.assertEqual(self.succeed(self.run_values("-o", form, query)), plain, form)

    def test_without_it_nothing_changes(self):
        self.assertEqual(self.succeed(self.run_tool("--no-live", "-m", self.mof, "-o", "csv",
                                                    "SELECT State FROM V_Disk WHERE Id = 1")), "State\n2\n")

    def test_conditions_and_order_are_of_the_codes(self):
        out = self.succeed(self.run_values("-o", "csv", "SELECT State FROM V_Disk WHERE State >= 4 ORDER BY State ASC"))
        self.assertEqual(out, "State\n4 (Other)\n7 (Bad)\n65535 (Vendor)\n")

    def test_live_classes(self):
        row = self.live(f"SELECT ExecutionState FROM Linux_Process WHERE Handle = '{os.getpid()}'")
        self.assertIn(row["ExecutionState"], ("3 (Running)", "4 (Blocked)"))
        with socket.socket() as listener:
            listener.bind(("127.0.0.1", 0))
            listener.listen()
            port = listener.getsockname()[1]
            row = self.live(f"SELECT FIRST 1 ProtocolIFType FROM Linux_ListeningPort WHERE PortNumber = {port}")
        self.assertEqual(row["ProtocolIFType"], "4111 (TCP)")

    def test_live_classes_have_the_texts_of_a_fuller_schema(self):
        schema = self.write("process.mof", """
            Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
            Qualifier Values : string[], Scope(property), Flavor(EnableOverride, ToSubclass, Translatable);
            Qualifier ValueMap : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
            class CIM_ManagedElement { string Caption; string Description; string ElementName; };
            class CIM_ManagedSystemElement : CIM_ManagedElement {
              datetime InstallDate; string Name;
              [ValueMap{"0", "2"}, Values{"Unknown", "OK"}] uint16 OperationalStatus[];
              [ValueMap{"0", "5"}, Values{"Unknown", "OK"}] uint16 HealthState = 5;
            };
            class CIM_LogicalElement : CIM_ManagedSystemElement {};
            class CIM_EnabledLogicalElement : CIM_LogicalElement {
              [ValueMap{"2", "5"}, Values{"Enabled", "Not Applicable"}] uint16 EnabledState = 5;
            };
            """)
        rows = json.loads(self.succeed(self.run_tool("describe", "-m", schema, "-o", "json", "Linux_Process")))
        values = {row["Property"]: row["Values"] for row in rows}
        self.assertEqual(values["EnabledState"], ["2 (Enabled)", "5 (Not Applicable)"])
        self.assertEqual(values["OperationalStatus"], ["0 (Unknown)", "2 (OK)"])

    def live(self, query):
        return json.loads(self.succeed(self.run_tool("--values", "-o", "jsonl", query)))

    def test_the_example(self):
        storage = os.path.join(toolcase.HERE, "..", "..", "examples", "storage.mof")
        out = self.succeed(self.run_tool("--no-live", "-m", storage, "--values", "-o", "csv",
                                         "SELECT FIRST 1 OperationalStatus FROM CIM_StorageVolume"))
        self.assertRegex(out, r"\AOperationalStatus\n\"?\d+ \([A-Z]")

    @at_terminal
    def test_the_shell_toggles_it(self):
        person = Person(self, "-m", self.mof)
        person.until("qorql> ")
        self.assertEqual(person.ask(".values"), "texts of values on\n")
        self.assertIn("│ 2 (OK) │", person.ask("SELECT State FROM V_Disk WHERE Id = 1;"))
        self.assertEqual(person.ask(".values off"), "texts of values off\n")
        self.assertIn("│     2 │", person.ask("SELECT State FROM V_Disk WHERE Id = 1;"))


if __name__ == "__main__":
    toolcase.main()
