"""The commands that show the model: classes, class and instances, whose text loads again; the cache; a load's memory."""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import unittest

import toolcase
from toolcase import MODEL, ToolCase

RICH = """
Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(EnableOverride, Restricted);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Note : string = null, Scope(any), Flavor(EnableOverride, Restricted, Translatable);
Qualifier Words : string[], Scope(any), Flavor(EnableOverride, ToSubclass);
Qualifier Level : sint32 = 5, Scope(any), Flavor(EnableOverride, ToSubclass);
[Abstract, Note("the \\"root\\"\\nof all")] class T_Root { [Key, Note("who")] string Id; };
[Note("a" " part"), Level(-7) : DisableOverride, Words{"x", "y,z"}, Unknown(3.5)]
class T_Part : T_Root {
  uint8 Small = 7; sint64 Big = -9223372036854775808; real64 Weight = 1.5; boolean On = true; char16 Letter = 'x';
  datetime When = "20260101000000.000000+000"; string Names[] = {"a", "b\\\\c"}; uint16 Three[3] = {1, 2};
  [EmbeddedObject] string Held; [Level] uint32 Plain; [Level(NULL)] string None;
  [Note("does")] uint32 Run([Note("by")] uint8 by, T_Part REF other, string words[]);
  boolean Stop();
};
[Association] class T_Link { [Key] T_Root REF From; [Key] T_Part REF To; };
instance of T_Part as $a { Id = "a\\"b"; Small = 1; Names = {"one", "two, three"}; Letter = '\\'';
  Held = "instance of T_Part { Id = \\"inner\\"; };"; };
instance of T_Part as $b { Id = "ä\\n"; When = NULL; Held = "class T_New : T_Root { uint8 X = 4; };"; };
instance of T_Link { From = $a; To = $b; };
"""


class Classes(ToolCase):
    def test_all_in_the_order_of_names(self):
        self.assertEqual(self.classes(), "Shop_Empty\nShop_Item\n")

    def classes(self, *arguments):
        return self.succeed(self.run_tool("classes", "--no-live", "-m", MODEL, *arguments))

    def test_a_part_of_the_name_in_any_case(self):
        self.assertEqual(self.classes("EMP"), "Shop_Empty\n")

    def test_wildcards_stand_for_the_whole_name(self):
        self.assertEqual(self.classes("*item"), "Shop_Item\n")
        self.assertEqual(self.classes("Shop_?[mn]*"), "Shop_Empty\n")

    def test_long_shows_superclass_and_kind(self):
        rich = self.write("rich.mof", RICH)
        text = self.succeed(self.run_tool("classes", "--no-live", "-m", rich, "-l"))
        self.assertEqual(text, "T_Link\t\tassociation\nT_Part\tT_Root\t\nT_Root\t\tabstract\n")

    def test_none_that_matches(self):
        self.refused(self.run_tool("classes", "--no-live", "-m", MODEL, "Nothing"), 1,
                     'qorql: error: no class matches "Nothing" in namespace root/cimv2')
        self.refused(self.run_tool("classes", "--no-live"), 1, "qorql: error: no class in namespace root/cimv2")

    def test_live_classes(self):
        self.assertIn("Linux_Process\n", self.succeed(self.run_tool("classes", "linux_")))

    def test_wrong_usage(self):
        result = self.run_tool("classes", "a", "b")
        self.assertEqual((result.status, result.out), (2, ""))
        self.assertTrue(result.err.endswith("Try qorql classes --help.\n"), result.err)
        self.assertEqual(self.run_tool("classes", "--long=yes").status, 2)
        self.assertEqual(self.run_tool("classes", "--alone").status, 2)

    def test_mof_failure(self):
        result = self.run_tool("classes", "-m", self.write("bad.mof", "class A : B { };\n"))
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn("bad.mof:1:11: superclass B of class A is not declared", result.err)


class Class(ToolCase):
    def show(self, *arguments):
        return self.succeed(self.run_tool("class", "--no-live", *arguments))

    def test_shows_what_it_needs_to_load_again(self):
        text = self.show("-m", MODEL, "shop_empty")
        self.assertEqual(text, "Qualifier Key : boolean = FALSE, Scope(property, reference), "
                               "Flavor(DisableOverride, ToSubclass);\n\n"
                               "class Shop_Empty {\n    [Key]\n    uint32 Id;\n    string Name;\n};\n")

    def test_alone(self):
        self.assertEqual(self.show("-m", MODEL, "Shop_Empty", "--alone"),
                         "class Shop_Empty {\n    [Key]\n    uint32 Id;\n    string Name;\n};\n")

    def test_what_is_shown_reads_back_as_the_same(self):
        rich = self.write("rich.mof", RICH)
        for name in ("T_Root", "T_Part", "T_Link"):
            first = self.show("-m", rich, name)
            again = self.write(name + ".mof", first)
            self.assertEqual(self.show("-m", again, name), first)
            # An equal declaration is accepted beside the one it was made from; another is not.
            self.assertEqual(self.show("-m", rich, "-m", again, name), first)

    def test_every_live_class_loads_again(self):
        names = self.succeed(self.run_tool("classes", "Linux_*")).split()
        self.assertIn("Linux_FileSystem", names)
        for name in names:
            text = self.succeed(self.run_tool("class", name))
            again = self.write("again.mof", text)
            self.assertEqual(self.show("-m", again, name), text)

    def test_unknown_class(self):
        self.refused(self.run_tool("class", "--no-live", "-m", MODEL, "shop_itme"), 1,
                     "qorql: error: there is no class shop_itme in namespace root/cimv2: did you mean Shop_Item?")
        self.refused(self.run_tool("class", "--no-live", "-m", MODEL, "Shop_None"), 1,
                     "qorql: error: there is no class Shop_None in namespace root/cimv2")

    def test_wrong_usage(self):
        for arguments in (["class"], ["class", "A", "B"], ["class", "--long", "A"], ["class", "-m"]):
            result = self.run_tool(*arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertTrue(result.err.endswith("Try qorql class --help.\n"), result.err)

    def test_help(self):
        text = self.succeed(self.run_tool("class", "--help"))
        self.assertIn("--alone", text)
        self.assertIn("class", self.succeed(self.run_tool("--help")))


class Instances(ToolCase):
    def test_what_is_shown_reads_back_as_the_same(self):
        rich = self.write("rich.mof", RICH)
        classes = self.write("classes.mof", RICH[:RICH.index("instance of")])
        first = self.succeed(self.run_tool("instances", "--no-live", "-m", rich, "T_Root"))
        links = self.succeed(self.run_tool("instances", "--no-live", "-m", rich, "T_Link"))
        self.assertEqual(("\n" + first).count("\ninstance of T_Part {\n"), 2)
        self.assertIn("    Held = \"class T_New", first)
        again = self.write("again.mof", first + links)
        self.assertEqual(self.succeed(self.run_tool("instances", "--no-live", "-m", classes, "-m", again, "T_Root")), first)
        self.assertEqual(self.succeed(self.run_tool("instances", "--no-live", "-m", classes, "-m", again, "T_Link")), links)

    def test_text(self):
        text = self.succeed(self.run_tool("instances", "--no-live", "-m", MODEL, "Shop_Item"))
        self.assertTrue(text.startswith("instance of Shop_Item {\n    Id = 1;\n    Name = \"plain\";\n"), text)
        self.assertEqual(text.count("\n\ninstance of "), 4)

    def test_a_class_without_instances(self):
        self.assertEqual(self.succeed(self.run_tool("instances", "--no-live", "-m", MODEL, "Shop_Empty")), "")

    def test_live_instances(self):
        text = self.succeed(self.run_tool("instances", "Linux_OperatingSystem"))
        self.assertIn("    KernelName = \"Linux\";\n", text)

    def test_unknown_class(self):
        self.refused(self.run_tool("instances", "--no-live", "-m", MODEL, "Shop_None"), 1,
                     "qorql: error: there is no class Shop_None in namespace root/cimv2")

    def test_wrong_usage(self):
        for arguments in (["instances", "A", "B"], ["instances", "--nothing", "A"]):
            result = self.run_tool(*arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertTrue(result.err.endswith("Try qorql instances --help.\n"), result.err)


FAULTY = """#pragma autorecover
class T { [Key] string K; uint8 N; };
instance of T { K = "a"; N = 1; };
instance of T { K = "b"; N = 300; };
class U : V { };
instance of T { K = "c"; N = 3; };
"""

SHOWN = """qorql: warning: {0}:4:30: 300 is out of the range of uint8 (0 to 255)
  instance of T {{ K = "b"; N = 300; }};
                               ^
qorql: warning: {0}:5:11: superclass V of class U is not declared in namespace root/cimv2
  class U : V {{ }};
            ^
qorql: warning: MOF has 2 faults; what is at fault is left out
"""


class Lenient(ToolCase):
    QUERY = ("-o", "csv", "SELECT K, N FROM T")

    def setUp(self):
        super().setUp()
        self.mof = self.write("faulty.mof", FAULTY)

    def test_what_is_sound_is_loaded_and_the_rest_is_told(self):
        result = self.run_tool("--lenient", "--no-live", "-m", self.mof, *self.QUERY)
        self.assertEqual((result.status, result.out, result.err), (0, "K,N\na,1\nc,3\n", SHOWN.format(self.mof)))

    def test_without_it_nothing_is_loaded(self):
        result = self.run_tool("--no-live", "-m", self.mof, *self.QUERY)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn(f"qorql: error: {self.mof}:1:20: found the end of the line, expected \"(\"; a lenient load (--lenient) ", result.err)

    def test_strict_refuses_faults(self):
        result = self.run_tool("--lenient", "--strict", "--no-live", "-m", self.mof, *self.QUERY)
        refusal = "qorql: error: --strict refuses MOF with faults (2)\n"
        self.assertEqual((result.status, result.out, result.err), (3, "", SHOWN.format(self.mof) + refusal))
        filtered = self.run_tool("validate", "--lenient", "--strict", "--no-live", "-m", self.mof,
                                 "SELECT * FROM CIM_InstCreation")
        self.assertEqual((filtered.status, filtered.out), (3, ""))
        self.assertTrue(filtered.err.endswith(refusal), filtered.err)
        sound = self.write("sound.mof", "#pragma x\nclass T { [Key] string K; uint8 N; };")
        self.assertEqual(self.succeed(self.run_tool("--lenient", "--strict", "--no-live", "-m", sound, *self.QUERY)), "K,N\n")

    def test_quiet_does_not_tell(self):
        result = self.run_tool("--lenient", "--quiet", "--no-live", "-m", self.mof, *self.QUERY)
        self.assertEqual((result.status, result.out, result.err), (0, "K,N\na,1\nc,3\n", ""))
        result = self.run_tool("--lenient", "--quiet", "--strict", "--no-live", "-m", self.mof, *self.QUERY)
        self.assertEqual((result.status, result.out, result.err),
                         (3, "", "qorql: error: --strict refuses MOF with faults (2)\n"))

    def test_a_hundred_faults_are_shown(self):
        mof = self.write("many.mof", "class T { [Key] string K; uint8 N; };\n" + "instance of T { K = 1; };\n" * 130)
        result = self.run_tool("--lenient", "--no-live", "-m", mof, *self.QUERY)
        self.assertEqual((result.status, result.out), (0, "K,N\n"))
        self.assertEqual(result.err.count("found an integer, expected a value of type string"), 100)
        self.assertTrue(result.err.endswith("qorql: warning: MOF has 130 faults, of which 100 are shown; "
                                            "what is at fault is left out\n"), result.err)

    def test_what_is_named_must_be_there(self):
        result = self.run_tool("--lenient", "-m", os.path.join(self.folder, "gone.mof"), *self.QUERY)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn("gone.mof: cannot be read: there is no such file", result.err)

    def test_other_commands_take_it(self):
        result = self.run_tool("classes", "--lenient", "--no-live", "-m", self.mof)
        self.assertEqual((result.status, result.out, result.err), (0, "T\n", SHOWN.format(self.mof)))
        result = self.run_tool("instances", "--lenient", "--no-live", "-m", self.mof, "T")
        self.assertEqual((result.status, result.out.count("instance of T")), (0, 2))

    def test_neither_uses_nor_makes_a_cache(self):
        env = {**os.environ, "XDG_CACHE_HOME": os.path.join(self.folder, "xdg")}
        with open(self.mof, "a", encoding="utf-8") as model:
            model.write("// a line that says nothing but is long enough\n" * 8000)
        lenient = ("--lenient", "--no-live", "-m", self.mof, *self.QUERY)
        self.assertEqual(self.run_tool(*lenient, env=env).err, SHOWN.format(self.mof))
        self.assertEqual(self.run_tool(*lenient, env=env).err, SHOWN.format(self.mof))
        self.assertFalse(os.path.exists(env["XDG_CACHE_HOME"]))
        self.assertEqual(self.run_tool("--no-live", "-m", self.mof, *self.QUERY, env=env).status, 3)
        self.wrong_usage(self.run_tool("--lenient", "--cache", "x", *self.QUERY), "--cache", "--lenient")

    def test_filters_know_the_common_indications_where_that_leaves_out_less(self):
        mof = self.write("alert.mof", "class A_Alert : CIM_AlertIndication { string Extra; };\nclass B : Nobody { };\n")
        result = self.run_tool("validate", "--lenient", "--no-live", "-m", mof, "SELECT * FROM A_Alert WHERE Extra = 'x'")
        self.assertEqual((result.status, result.out[:6]), (0, "valid\t"), result.err)
        self.assertTrue(result.err.endswith("MOF has 1 fault; what is at fault is left out\n"), result.err)
        own = self.write("own.mof", "class CIM_Indication { string Mine; };\nclass B : Nobody { };\n")
        result = self.run_tool("validate", "--lenient", "--no-live", "-m", own, "SELECT Mine FROM CIM_Indication")
        self.assertEqual(result.status, 0, result.err + result.out)

    def test_match_reads_the_instances_that_are_sound(self):
        alerts = self.write("alerts.mof", "instance of CIM_AlertIndication { MessageID = \"1\"; };\n"
                                          "instance of CIM_AlertIndication { MessageID = 2; };\n"
                                          "instance of CIM_AlertIndication { MessageID = \"3\"; };\n")
        query = "SELECT * FROM CIM_AlertIndication WHERE MessageID = '3'"
        result = self.run_tool("match", "--lenient", "--no-live", query, alerts)
        self.assertEqual([line.split("\t")[1] for line in result.out.splitlines()], ["no match", "match"])
        self.assertIn(f"{alerts}:2:47: found an integer, expected a value of type string", result.err)
        self.assertEqual(self.run_tool("match", "--no-live", query, alerts).status, 3)
        self.assertEqual(self.run_tool("match", "--lenient", "--strict", "--no-live", query, alerts).status, 3)

    def test_windows_forms_and_utf_16(self):
        text = ('#pragma namespace("\\\\\\\\.\\\\root\\\\x")\r\n#pragma autorecover\r\n'
                '[Description("d") : Amended ToSubclass] class T { [Key : ToInstance] string K; uint8 N; };\r\n'
                'instance of T { K = "\u00e4"; N = 1; };\r\n')
        mof = os.path.join(self.folder, "wide.mof")
        with open(mof, "wb") as file:
            file.write(text.encode("utf-16"))
        result = self.run_tool("--lenient", "--no-live", "-n", "root/x", "-m", mof, *self.QUERY)
        self.assertEqual((result.status, result.out, result.err), (0, "K,N\n\u00e4,1\n", ""))


class LiveNames(ToolCase):
    WARNING = ("qorql: warning: Without Linux_OperatingSystem, which cannot be combined with the MOF files: "
               "they declare a class Linux_OperatingSystem of their own\n")

    def test_a_class_of_another_structure_keeps_its_instances_to_itself(self):
        mof = self.write("own.mof", "class Linux_OperatingSystem { [Key] string Name; };\n"
                                    "instance of Linux_OperatingSystem { Name = \"mine\"; };\n")
        result = self.run_tool("-m", mof, "-o", "csv", "SELECT Name FROM Linux_OperatingSystem")
        self.assertEqual((result.status, result.out, result.err), (0, "Name\nmine\n", self.WARNING))
        self.assertEqual(self.run_tool("-m", mof, "--quiet", "SELECT Name FROM Linux_OperatingSystem").err, "")
        self.assertEqual(self.run_tool("-m", mof, "--no-live", "SELECT Name FROM Linux_OperatingSystem").err, "")

    def test_what_depends_on_it_is_left_out_as_well(self):
        mof = self.write("own.mof", "class Linux_Process { [Key] string Name; };\n")
        result = self.run_tool("classes", "-m", mof, "Linux_*")
        names = result.out.split()
        self.assertIn("Linux_Process", names)
        self.assertIn("Linux_FileSystemDevice", names)
        self.assertNotIn("Linux_ProcessOwner", names)
        self.assertIn("Linux_Process, Linux_ProcessOwner, ", result.err)

    def test_the_live_class_as_it_is_shown_stays_live(self):
        mof = self.write("shown.mof", self.succeed(self.run_tool("class", "Linux_OperatingSystem")))
        result = self.run_tool("-m", mof, "-o", "csv", "SELECT KernelName FROM Linux_OperatingSystem")
        self.assertEqual((result.status, result.out, result.err), (0, "KernelName\nLinux\n", ""))


class Cache(ToolCase):
    ARGUMENTS = ("--no-live", "--log", "info", "-o", "csv", "SELECT Id FROM Shop_Empty")
    TAKEN = "qorql: info: MOF: MOF comes from the cache\n"

    def load(self, *arguments, env=None):
        result = self.run_tool(*arguments, *self.ARGUMENTS, env=env)
        self.assertEqual((result.status, result.out), (0, "Id\n"), result.err)
        return result.err

    def setUp(self):
        super().setUp()
        with open(MODEL, encoding="utf-8") as model:
            self.mof = self.write("model.mof", model.read())
        self.file = os.path.join(self.folder, "kept.mofcache")

    def test_a_named_file_is_made_and_taken(self):
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), "")
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), self.TAKEN)
        again = self.run_tool("instances", "--no-live", "-m", self.mof, "--cache", self.file, "Shop_Item")
        plain = self.run_tool("instances", "--no-live", "-m", self.mof, "--no-cache", "Shop_Item")
        self.assertEqual(self.succeed(again), self.succeed(plain))

    # Classes are read from it when they are asked for, names are there from the start.
    def test_every_command_shows_the_same_from_it(self):
        with open(self.mof, "a", encoding="utf-8") as model:
            model.write("class Shop_Fresh : Shop_Item { uint32 Days = 3; }; class Shop_Cool : Shop_Fresh { };\n"
                        "[Association] class Shop_Beside { [Key] Shop_Item REF Left; [Key] Shop_Item REF Right; };\n")
        self.load("-m", self.mof, "--cache", self.file)
        classes = self.succeed(self.run_tool("classes", "--no-live", "-m", self.mof, "--no-cache")).split()
        self.assertEqual(len(classes), 5)
        commands = [["classes"], ["classes", "-l"], ["classes", "*Empty*"], ["classes", "X*"], ["class", "Shop_Emty"],
                    ["contents"], ["instances", "*"], ["-o", "csv", "SELECT Id FROM Shop_Empti"],
                    ["-o", "csv", "SELECT Idd FROM Shop_Empty"], ["explain", "SELECT Id FROM Shop_Empty WHERE Id = 'a'"],
                    ["validate", "SELECT * FROM Shop_Itm"]]
        for name in classes:
            commands += [["class", name], ["class", "--complete", name], ["describe", name], ["instances", name],
                         ["-o", "csv", f"SELECT * FROM {name}"]]
        for command in commands:
            with self.subTest(command=command):
                plain = self.run_tool(*command, "--no-live", "-m", self.mof, "--no-cache")
                kept = self.run_tool(*command, "--no-live", "-m", self.mof, "--cache", self.file)
                self.assertEqual((kept.status, kept.out, kept.err), (plain.status, plain.out, plain.err))

    def test_a_changed_source_is_seen(self):
        self.load("-m", self.mof, "--cache", self.file)
        with open(self.mof, "a", encoding="utf-8") as model:
            model.write("\n// more\n")
        told = f"qorql: info: MOF: The cache is made anew: {self.mof} has changed\n"
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), told)
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), self.TAKEN)

    def test_a_damaged_cache_is_replaced(self):
        self.load("-m", self.mof, "--cache", self.file)
        with open(self.file, "r+b") as cache:
            cache.seek(100)
            byte = cache.read(1)
            cache.seek(100)
            cache.write(bytes([byte[0] ^ 1]))
        told = "qorql: info: MOF: The cache is made anew: it is damaged\n"
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), told)
        self.assertEqual(self.load("-m", self.mof, "--cache", self.file), self.TAKEN)

    def test_a_file_that_cannot_be_written_is_a_warning(self):
        result = self.run_tool("-m", self.mof, "--cache", self.folder, "--no-live", "-o", "csv", "SELECT Id FROM Shop_Empty")
        self.assertEqual((result.status, result.out), (0, "Id\n"))
        self.assertRegex(result.err, r"\Aqorql: warning: The cache is not kept: .+\n\Z")

    def test_large_mof_is_kept_by_itself_and_small_is_not(self):
        folder = os.path.join(self.folder, "xdg")
        env = {**os.environ, "XDG_CACHE_HOME": folder}
        self.load("-m", self.mof, env=env)
        self.assertFalse(os.path.exists(folder))
        with open(self.mof, "a", encoding="utf-8") as model:
            model.write("// a line that says nothing but is long enough\n" * 8000)
        self.assertEqual(self.load("-m", self.mof, "--no-cache", env=env), "")
        self.assertFalse(os.path.exists(folder))
        self.assertEqual(self.load("-m", self.mof, env=env), "")
        self.assertEqual(len(os.listdir(os.path.join(folder, "qorql"))), 1)
        self.assertEqual(self.load("-m", self.mof, env=env), self.TAKEN)
        self.assertEqual(self.load("-m", self.mof, "-m", self.mof, env=env), "")
        self.assertEqual(len(os.listdir(os.path.join(folder, "qorql"))), 2)

    def test_without_a_cache_folder_nothing_is_kept(self):
        env = {key: value for key, value in os.environ.items() if key not in ("XDG_CACHE_HOME", "HOME")}
        with open(self.mof, "a", encoding="utf-8") as model:
            model.write("// a line that says nothing but is long enough\n" * 8000)
        self.assertEqual(self.load("-m", self.mof, env=env), "")
        self.assertEqual(self.load("-m", self.mof, env={**env, "XDG_CACHE_HOME": "relative"}), "")
        self.assertFalse(os.path.exists("relative"))

    def test_wrong_usage(self):
        self.wrong_usage(self.run_tool("--cache"), "--cache")
        self.wrong_usage(self.run_tool("--cache", "", "SELECT Id FROM T"), "a name is not empty")
        self.wrong_usage(self.run_tool("--no-cache=yes"), "no-cache")
        self.wrong_usage(self.run_tool("--cache", "a", "--cache", "b", "SELECT Id FROM T"), "--cache")
        self.wrong_usage(self.run_tool("--cache", "a", "--no-cache", "SELECT Id FROM T"), "--no-cache", "--cache")


class Memory(ToolCase):
    @unittest.skipIf("QORQL_NEEDS_PROC" in os.environ, "sanitizers have an allocator of their own")
    @unittest.skipUnless(os.path.exists("/sys/kernel/mm/transparent_hugepage"), "the system has no large pages")
    def test_a_load_has_large_pages_at_hand_behind_small_ones(self):
        pipe = os.path.join(self.folder, "slow.mof")
        os.mkfifo(pipe)
        with subprocess.Popen([toolcase.TOOL, "--no-live", "--no-cache", "-o", "csv", "-m", pipe, "SELECT K FROM T"],
                              stdout=subprocess.PIPE) as tool:
            # Opened as soon as the tool reads it; from then on the tool waits for the text.
            with open(pipe, "w", encoding="utf-8") as mof:
                with open(f"/proc/{tool.pid}/smaps", encoding="utf-8") as maps:
                    flags = self.heap_flags(maps)
                mof.write('class T { [Key] string K; };\ninstance of T { K = "a"; };\n')
            self.assertEqual(tool.communicate(timeout=60)[0], b"K\na\n")
        self.assertEqual(["hg" in part for part in flags], [False, True], flags)

    @staticmethod
    def heap_flags(maps):
        """What the parts of the heap are marked with, in the order of addresses."""
        flags, is_heap = [], False
        for line in maps:
            if "-" in line.split(" ")[0]:
                is_heap = line.endswith("[heap]\n")
            elif is_heap and line.startswith("VmFlags:"):
                flags.append(line.split()[1:])
        return flags


if __name__ == "__main__":
    toolcase.main()
