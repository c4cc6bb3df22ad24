"""The commands that show the model: classes, class and instances; what they print loads again."""
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
        for arguments in (["instances"], ["instances", "A", "B"], ["instances", "--nothing", "A"]):
            result = self.run_tool(*arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertTrue(result.err.endswith("Try qorql instances --help.\n"), result.err)


if __name__ == "__main__":
    toolcase.main()
