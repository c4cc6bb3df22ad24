"""The commands that tell what a model holds: contents, describe and get; and instances of many classes."""
# SPDX-License-Identifier: Apache-2.0
import csv
import io
import json
import os
import re
import xml.etree.ElementTree

import toolcase
from toolcase import MODEL, ToolCase, at_terminal
from shell_test import Person

WORLD = """
#pragma namespace("root/cimv2")
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Description : string = null, Scope(any), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier Values : string[], Scope(property), Flavor(EnableOverride, ToSubclass, Translatable);
Qualifier ValueMap : string[], Scope(property), Flavor(EnableOverride, ToSubclass);
Qualifier EmbeddedInstance : string = null, Scope(property), Flavor(EnableOverride, ToSubclass);
[Description("A thing\\nthat is there, e.g. a box. It may hold things.")]
class W_Thing { [Key, Description("Names it.")] string Id; [Key] uint16 Number = 0; [Description("Approx. 4.5 kg. Heavy.")] real32 Weight; };
class W_Box : W_Thing {
  [Description("Its state."), ValueMap{"0", "2", "4..6", "..", "-3"}, Values{"Unknown", "OK", "Bad", "Other", "Below"}]
  sint16 State; [Values{"None", "One"}] uint8 Count[2];
  [Description("Of the box.")] real32 Weight; [EmbeddedInstance("W_Thing")] string Held[];
};
class W_Ball : W_Thing { };
class W_None : W_Thing { };
[Association] class W_Holds { [Key] W_Thing REF Outer; [Key] W_Thing REF Inner; };
instance of W_Box as $a { Id = "a"; State = 2; };
instance of W_Box as $b { Id = "b"; };
instance of W_Ball as $c { Id = "c\\"1"; Number = 7; };
instance of W_Ball as $d { Id = "c\\"1"; Number = 8; };
instance of W_Holds { Outer = $a; Inner = $b; };
instance of W_Holds { Outer = $a; Inner = $c; };
instance of W_Holds { Outer = $b; Inner = $d; };
#pragma namespace("root/second")
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
class S_One { [Key] string Id; };
instance of S_One { Id = "1"; };
"""


class WorldCase(ToolCase):
    def setUp(self):
        super().setUp()
        self.mof = self.write("world.mof", WORLD)

    def world(self, command, *arguments, env=None):
        return self.run_tool(command, "--no-live", "-m", self.mof, *arguments, env=env)


class Elsewhere(ToolCase):
    """The model is in other namespaces than the one that is asked."""

    def setUp(self):
        super().setUp()
        self.mof = self.write("far.mof", "".join(
            f'#pragma namespace ("{name}")\nQualifier Key : boolean = false, Scope(property), Flavor(DisableOverride);\n'
            f"class F_{name[-1]} {{ [Key] string K; }};\nclass F_All {{ [Key] string K; }};\n" for name in ("interop", "root/b")))

    def far(self, command, *arguments):
        return self.run_tool(command, "--no-live", "-m", self.mof, *arguments)

    def test_no_class_at_all(self):
        for command in ("classes", "instances"):
            self.refused(self.far(command), 1, "qorql: error: no class in namespace root/cimv2 but in interop, root/b")

    def test_a_class(self):
        for command in ("class", "describe", "instances"):
            self.refused(self.far(command, "F_b"), 1,
                         "qorql: error: there is no class F_b in namespace root/cimv2 but in root/b")
            self.refused(self.far(command, "F_All"), 1,
                         "qorql: error: there is no class F_All in namespace root/cimv2 but in interop, root/b")
        self.refused(self.far("get", 'F_b.K="a"'), 1,
                     "qorql: error: there is no class F_b in namespace root/cimv2 but in root/b")

    def test_a_pattern(self):
        for command in ("classes", "instances"):
            self.refused(self.far(command, "F_p*"), 1,
                         'qorql: error: no class matches "F_p*" in namespace root/cimv2 but in interop')

    def test_contents_that_no_class_matches(self):
        self.refused(self.far("contents", "Nope"), 1, 'qorql: error: no class matches "Nope"')
        self.refused(self.far("contents", "-n", "root/b", "-o", "json", "F_p"), 1,
                     'qorql: error: no class matches "F_p" in namespace root/b but in interop')
        self.assertIn("root/b", self.succeed(self.far("contents", "F_b")))  # without instances


class Contents(WorldCase):
    def lists(self, *arguments):
        """The rows of the three lists, of CSV."""
        out = self.succeed(self.world("contents", "-o", "csv", *arguments))
        return [list(csv.reader(io.StringIO(part)))[1:] for part in out.split("\n\n")]

    def test_namespaces_classes_and_associations(self):
        self.assertEqual(self.lists(), [
            [["root/cimv2", "5", "7"], ["root/second", "1", "1"]],
            [["root/cimv2", "W_Ball", "2"], ["root/cimv2", "W_Box", "2"], ["root/second", "S_One", "1"]],
            [["root/cimv2", "W_Holds", "Outer W_Box, Inner W_Box", "1"],
             ["root/cimv2", "W_Holds", "Outer W_Box, Inner W_Ball", "2"]]])

    def test_one_namespace(self):
        self.assertEqual(self.lists("-n", "root/second"), [[["root/second", "1", "1"]], [["root/second", "S_One", "1"]], []])

    def test_a_pattern(self):
        namespaces, classes, ties = self.lists("ball")
        self.assertEqual(len(namespaces), 2)
        self.assertEqual(classes, [["root/cimv2", "W_Ball", "2"]])
        self.assertEqual([tie[2] for tie in ties], ["Outer W_Box, Inner W_Ball"])
        self.assertEqual(len(self.lists("*holds")[2]), 2)

    def test_json(self):
        out = self.succeed(self.world("contents", "-o", "jsonl", "-n", "root/second"))
        self.assertEqual([json.loads(line) for line in out.splitlines()],
                         [{"Namespace": "root/second", "Classes": 1, "Instances": 1},
                          {"Namespace": "root/second", "Class": "S_One", "Instances": 1}])

    def test_a_table(self):
        self.assertIn("root/cimv2   W_Ball          2\n", self.succeed(self.world("contents")))

    def test_live_classes(self):
        result = self.run_tool("contents", "-o", "csv", "Linux_Op*")
        self.assertEqual(result.status, 0, result.err)
        self.assertIn("\nroot/cimv2,Linux_OperatingSystem,1\n", result.out)

    def test_nothing_there(self):
        self.assertEqual(self.succeed(self.run_tool("contents", "--no-live", "-o", "jsonl")), "")

    def test_wrong_usage(self):
        for arguments, says in ((["-o", "xml"], "'xml' is not one of csv, dot, html, json, jsonl, svg, table"), (["a", "b"], "b")):
            self.wrong_usage(self.world("contents", *arguments), says, command="qorql contents")


class Picture(WorldCase):
    def drawn(self, form):
        # The libraries that lay it out keep fonts and a page until the process ends.
        environment = self.passing_leaks_of("libgvc", "libfontconfig", "libpango")
        result = self.world("contents", "-o", form, env=environment)
        if result.status != 0 and "libgvc" in result.err:
            self.assertRegex(result.err, r"\Aqorql: error: a picture needs graphviz \(Debian's package libgvc6\), and \S+ "
                                         r"cannot be loaded; -o dot prints the graph without it\n\Z")
            self.assertEqual((result.status, result.out), (3, ""))
            self.skipTest("graphviz's library is not installed")
        return self.succeed(result)

    def test_the_graph(self):
        dot = self.succeed(self.world("contents", "-o", "dot"))
        self.assertTrue(dot.startswith("digraph model {\n"))
        for line in ('label="root/cimv2";', 'label="root/second";', '"0:W_Ball" [label="W_Ball\\n2"];',
                     '"0:W_Thing" [label="W_Thing", style="rounded,dashed"',
                     '"0:W_Thing" -> "0:W_Box" [dir=back, arrowtail=empty, style=dashed];',
                     '"0:W_Box" -> "0:W_Ball" [dir=none, color="#2f6fed", label="W_Holds 2", tooltip="Outer - Inner"];',
                     '"0:W_Box" -> "0:W_Box" [dir=none, color="#2f6fed", label="W_Holds 1", tooltip="Outer - Inner"];',
                     '"1:S_One" [label="S_One\\n1"];'):
            self.assertIn(f"    {line}", dot)
        self.assertNotIn("W_None", dot)
        self.assertEqual(dot.count("arrowtail"), 2)

    def test_a_pattern(self):
        dot = self.succeed(self.world("contents", "-o", "dot", "-n", "root/cimv2", "W_Ball"))
        self.assertIn('"0:W_Box" -> "0:W_Ball"', dot)
        self.assertNotIn("W_Holds 1", dot)

    def test_superclasses_without_a_meeting_are_left_out(self):
        path = self.write("line.mof", "class L_A { [Key] string Id; }; class L_B : L_A { }; class L_C : L_B { }; "
                                      'class L_D : L_C { }; instance of L_B { Id = "b"; }; instance of L_D { Id = "d"; };')
        dot = self.succeed(self.run_tool("contents", "--no-live", "-m", path, "-o", "dot"))
        self.assertEqual(re.findall(r'"0:(\w+)" -> "0:(\w+)"', dot), [("L_B", "L_D")])
        self.assertEqual(set(re.findall(r'"0:(\w+)" \[label', dot)), {"L_B", "L_D"})

    def test_an_association_of_three_ends_is_a_node(self):
        path = self.write("three.mof", "Qualifier Association : boolean = false, Scope(association);\n"
                          "class E { [Key] string Id; }; [Association] class T { [Key] E REF A; [Key] E REF B; [Key] E REF C; };"
                          'instance of T { A = "E.Id=\\"1\\""; B = "E.Id=\\"1\\""; C = "E.Id=\\"1\\""; };')
        dot = self.succeed(self.run_tool("contents", "--no-live", "-m", path, "-o", "dot"))
        self.assertIn('"0:tie 0" [shape=ellipse, style=solid, label="T 1"];', dot)
        self.assertEqual(dot.count('"0:tie 0" -> "0:E"'), 3)
        self.assertIn('"0:E" [label="E"];', dot)

    def test_an_image(self):
        svg = self.drawn("svg")
        names = {element.tag.split("}")[1] for element in xml.etree.ElementTree.fromstring(svg).iter()}
        self.assertIn("svg", names)
        for text in ("W_Ball", "W_Holds 2", "root/second"):
            self.assertIn(f">{text}</text>", svg)

    def test_a_page(self):
        page = self.drawn("html")
        self.assertTrue(page.startswith("<!DOCTYPE html>\n"))
        self.assertIn(">W_Ball</text>", page)
        self.assertTrue(page.endswith("</body>\n</html>\n"))
        for address in re.findall(r'(?:href|src)="([^"]*)"', page):
            self.fail(f"the page needs {address}")

    def test_nothing_to_draw(self):
        self.assertNotIn("->", self.succeed(self.run_tool("contents", "--no-live", "-o", "dot")))


class Describe(WorldCase):
    def properties(self, name):
        rows = json.loads(self.succeed(self.world("describe", "-o", "json", name)))
        return {row.pop("Property"): row for row in rows}

    def test_inherited_properties_and_where_they_come_from(self):
        box = self.properties("w_box")
        self.assertEqual(list(box), ["Id", "Number", "Weight", "State", "Count", "Held"])
        self.assertEqual(box["Id"], {"Type": "string", "Key": True, "Class": "W_Thing", "Description": "Names it.",
                                     "Values": None})
        self.assertEqual((box["Weight"]["Class"], box["Weight"]["Description"]), ("W_Thing", "Of the box."))
        self.assertEqual((box["State"]["Class"], box["State"]["Key"]), ("W_Box", False))

    def test_types(self):
        self.assertEqual([box["Type"] for box in self.properties("W_Box").values()],
                         ["string", "uint16", "real32", "sint16", "uint8[2]", "W_Thing[]"])
        self.assertEqual(self.properties("W_Holds")["Outer"]["Type"], "W_Thing REF")

    def test_values(self):
        box = self.properties("W_Box")
        self.assertEqual(box["State"]["Values"], ["0 (Unknown)", "2 (OK)", "4..6 (Bad)", ".. (Other)", "-3 (Below)"])
        self.assertEqual(box["Count"]["Values"], ["0 (None)", "1 (One)"])

    def test_the_first_sentence(self):
        self.assertEqual(self.properties("W_Thing")["Weight"]["Description"], "Approx. 4.5 kg. Heavy."[:7])
        text = self.succeed(self.world("describe", "W_Thing"))
        self.assertTrue(text.startswith("W_Thing\n    A thing that is there, e.g. a box.\n\nId  "), text)

    def test_text(self):
        self.assertEqual(self.succeed(self.world("describe", "W_Box")),
                         "W_Box\n    derived from W_Thing\n\n"
                         "Id      string     key  W_Thing\n    Names it.\n"
                         "Number  uint16     key  W_Thing\n"
                         "Weight  real32          W_Thing\n    Of the box.\n"
                         "State   sint16          W_Box\n    Its state.\n"
                         "    0 (Unknown), 2 (OK), 4..6 (Bad), .. (Other), -3 (Below)\n"
                         "Count   uint8[2]        W_Box\n    0 (None), 1 (One)\n"
                         "Held    W_Thing[]       W_Box\n")

    def test_a_live_class(self):
        self.assertRegex(self.succeed(self.run_tool("describe", "Linux_Process")),
                         r"\nHandle +string +key +CIM_Process\n    \S")

    def test_every_live_class_tells_what_its_own_properties_mean(self):
        for name in self.succeed(self.run_tool("classes", "Linux_*")).split():
            for row in json.loads(self.succeed(self.run_tool("describe", "-o", "json", name))):
                if row["Class"] == name and not row["Type"].endswith(" REF"):
                    self.assertIsNotNone(row["Description"], f"{name}.{row['Property']}")

    def test_a_pattern(self):
        self.refused(self.world("describe", "W_*"), 1,
                     "qorql: error: there is no class W_* in namespace root/cimv2: a name is needed here, and no pattern; "
                     "qorql classes 'W_*' lists what matches")

    def test_unknown_class(self):
        self.refused(self.world("describe", "W_Bocks"), 1, "qorql: error: there is no class W_Bocks in namespace root/cimv2")
        self.refused(self.world("describe", "W_Bax"), 1,
                     "qorql: error: there is no class W_Bax in namespace root/cimv2: did you mean W_Box?")

    def test_wrong_usage(self):
        self.wrong_usage(self.world("describe"), "CLASS", command="qorql describe")
        self.wrong_usage(self.world("describe", "-o", "table", "W_Box"), "'table' is not one of csv, html, json, jsonl, text",
                         command="qorql describe")


class Get(WorldCase):
    def test_by_all_keys(self):
        for path in ('W_Ball.Id="c\\"1",Number=8', 'root/cimv2:W_Ball.Number=8,Id="c\\"1"', 'w_ball.NUMBER = 8'):
            self.assertEqual(self.succeed(self.world("get", path)),
                             'instance of W_Ball {\n    Id = "c\\"1";\n    Number = 8;\n    Weight = NULL;\n};\n', path)

    def test_json(self):
        self.assertEqual(json.loads(self.succeed(self.world("get", "-o", "json", 'W_Box.Id="a"'))),
                         {"class": "W_Box", "Id": "a", "Number": 0, "Weight": None, "State": 2, "Count": None, "Held": None})

    def test_a_superclass(self):
        self.assertIn("instance of W_Box {", self.succeed(self.world("get", 'W_Thing.Id="b"')))

    def test_references(self):
        text = self.succeed(self.world("get", 'W_Holds.Inner="W_Ball.Number=7,Id=\\"c\\\\\\"1\\""'))
        self.assertIn('Outer = "root/cimv2:W_Box.Id=\\"a\\",Number=0";', text)

    def test_another_namespace(self):
        self.assertIn("instance of S_One", self.succeed(self.world("get", 'root/second:S_One.Id="1"')))
        self.assertIn("instance of S_One", self.succeed(self.world("get", "-n", "root/second", 'S_One.Id="1"')))

    def test_a_host_is_refused(self):
        for prefix in ("//elsewhere/root/cimv2:", "http://elsewhere/root/cimv2:", "//elsewhere/root/second:"):
            self.refused(self.world("get", prefix + 'W_Box.Id="a"'), 1,
                         "qorql: error: the path names the host elsewhere; only this machine's instances are there")
        self.assertIn('"//x/y:a"', self.world("get", 'W_Box.Id="//x/y:a"').err)

    def test_more_than_one(self):
        self.refused(self.world("get", 'W_Ball.Id="c\\"1"'), 1,
                     'qorql: error: 2 instances have these keys; give more of them:\n'
                     '  root/cimv2:W_Ball.Id="c\\"1",Number=7\n  root/cimv2:W_Ball.Id="c\\"1",Number=8')

    def test_none(self):
        self.refused(self.world("get", 'W_Box.Id="z"'), 1, 'qorql: error: there is no instance W_Box.Id="z"')

    def test_what_is_no_path(self):
        for path, says in (("W_Box", "the keys are missing"), ('W_Bix.Id="a"', "did you mean W_Box?"),
                           ('W_Box.Idd="a"', "W_Box has no key Idd: did you mean Id?"), ("W_Box.Id=7", "an integer"),
                           ("W_Box.Id=a", "is not quoted"), ('W_Box.State=2', "W_Box has no key State"),
                           ('W_Box.Id="a', "a closing quote is missing"), ("", "a class name is missing")):
            result = self.world("get", path)
            self.assertEqual((result.status, result.out), (1, ""), path)
            self.assertTrue(result.err.startswith("qorql: error: "), result.err)
            self.assertIn(says, result.err)

    def test_quotes_that_a_shell_has_taken_away(self):
        hint = "qorql: hint: texts stand in double quotes, which a shell leaves within single ones: qorql get '{}'"
        for path, meant in (("W_Box.Id=a", 'W_Box.Id="a"'), ("W_Box.Id=7", 'W_Box.Id="7"'),
                            ("root/cimv2:W_Ball.Id=b 1,Number=7", 'root/cimv2:W_Ball.Id="b 1",Number=7')):
            result = self.world("get", path)
            self.assertEqual((result.status, result.err.splitlines()[-1]), (1, hint.format(meant)))
            self.assertNotIn("hint", self.world("get", "--quiet", path).err)
        for path in ("W_Bix.Id=a", "W_Box", "W_Box.Nope=a", 'W_Box.Id="a', "W_Box.=", "="):
            self.assertNotIn("hint", self.world("get", path).err, path)

    def test_a_live_instance(self):
        out = self.run_tool("get", "-o", "json", f'Linux_Process.Handle="{os.getpid()}"').out
        self.assertEqual(json.loads(out)["ProcessID"], os.getpid())

    def test_wrong_usage(self):
        self.wrong_usage(self.world("get"), "INSTANCE", command="qorql get")
        self.wrong_usage(self.world("get", "-o", "csv", "x"), "'csv' is not one of json, mof", command="qorql get")


class Instances(WorldCase):
    def told(self, *arguments):
        return re.findall(r"instance of (\w+)", self.succeed(self.world("instances", *arguments)))

    def test_all_associations_last(self):
        self.assertEqual(self.told(), ["W_Box"] * 2 + ["W_Ball"] * 2 + ["W_Holds"] * 3)
        self.assertEqual(self.told("-n", "root/second"), ["S_One"])

    def test_all_load_again(self):
        first = self.succeed(self.world("instances"))
        schema = self.write("schema.mof", "".join(self.succeed(self.world("class", name))
                                                  for name in ("W_Box", "W_Ball", "W_Holds")))
        again = self.write("again.mof", first)
        self.assertEqual(self.succeed(self.run_tool("instances", "--no-live", "-m", schema, "-m", again)), first)

    def test_a_pattern_prints_each_instance_once(self):
        self.assertEqual(self.told("w_b*"), ["W_Ball"] * 2 + ["W_Box"] * 2)
        self.assertEqual(self.told("W_[TB]*"), ["W_Box"] * 2 + ["W_Ball"] * 2)
        self.assertEqual(self.told("*None"), [])

    def test_no_class(self):
        self.refused(self.world("instances", "X*"), 1, 'qorql: error: no class matches "X*" in namespace root/cimv2')
        self.refused(self.run_tool("instances", "--no-live"), 1, "qorql: error: no class in namespace root/cimv2")

    def test_live_classes_that_fail_leave_the_others(self):
        result = self.run_tool("instances", "Linux_[OS]*")
        self.assertEqual(result.status, 0, result.err)
        self.assertIn("instance of Linux_OperatingSystem {", result.out)
        if not os.path.exists("/run/systemd/system"):
            self.assertIn("qorql: warning: Linux_Service: systemd does not run here", result.err)


@at_terminal
class Commands(ToolCase):
    """Those of the shell, over the small model."""

    def test_describe(self):
        person = Person(self)
        person.until("qorql> ")
        text = person.ask(".describe shop_empty")
        self.assertEqual(text, "Shop_Empty\n\nId    uint32  key  Shop_Empty\nName  string       Shop_Empty\n")
        self.assertEqual(person.ask(".describe"), "qorql: error: .describe needs the name of a class\n")
        self.assertEqual(person.ask(".describe Shop_Itm"), "qorql: error: there is no class Shop_Itm in namespace root/cimv2: "
                                                           "did you mean Shop_Item?\n")

    def test_lines_are_as_wide_as_the_terminal(self):
        path = self.write("wide.mof", 'Qualifier Description : string = null, Scope(any);\n'
                                      f'[Description("{"word " * 30}")] class W {{ string Id; }};\n')
        person = Person(self, "-m", path, width=50)
        person.until("qorql> ")
        lines = person.ask(".describe W").splitlines()
        self.assertEqual(lines[1:5], ["    " + " ".join(["word"] * 9)] * 3 + ["    word word word"])

    def test_tables(self):
        person = Person(self)
        person.until("qorql> ")
        self.assertEqual(person.ask(".tables"), "Shop_Item 5\n")
        self.assertEqual(person.ask(".tables item"), "Shop_Item 5\n")
        self.assertEqual(person.ask(".tables empty"), 'qorql: error: no class with instances matches "empty" in namespace '
                                                      "root/cimv2\n")

    def test_schema(self):
        person = Person(self)
        person.until("qorql> ")
        item = person.ask(".class Shop_Item")
        empty = person.ask(".class Shop_Empty")
        self.assertEqual(person.ask(".schema shop_item"), item)
        self.assertEqual(person.ask(".schema"), empty + "\n" + item)
        self.assertEqual(person.ask(".schema *empty"), empty)
        self.assertEqual(person.ask(".schema x"), 'qorql: error: no class matches "x" in namespace root/cimv2\n')


if __name__ == "__main__":
    toolcase.main()
