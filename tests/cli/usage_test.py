"""Every option: a good use, a missing argument, a surplus one; unknown options; help and version."""
# SPDX-License-Identifier: Apache-2.0
import re
import unittest

import toolcase
from toolcase import MODEL, ToolCase

QUERY = "SELECT Id FROM Shop_Item WHERE Id < 3 ORDER BY Id ASC"
CSV = "Id\n1\n2\n"


class Help(ToolCase):
    def test_help_lists_every_option_on_standard_output(self):
        text = self.succeed(self.run_tool("--help"))
        for option in ("--mof", "--namespace", "--output", "--file", "--no-live", "--stats", "--warnings", "--strict", "--config", "--set",
                       "--quiet", "--log", "--version", "--help", "QUERY"):
            self.assertIn(option, text)
        self.assertIn("Exit status: 0 done;", text)

    def test_short_help(self):
        self.assertEqual(self.succeed(self.run_tool("-h")), self.succeed(self.run_tool("--help")))

    def test_version(self):
        self.assertRegex(self.succeed(self.run_tool("--version")), r"\Aqorql \d+\.\d+\.\d+( \([0-9a-f]{7,40}\+?\))?\n\Z")

    def test_help_takes_no_argument(self):
        self.wrong_usage(self.run_tool("--help=yes"))

    def test_help_fits_a_terminal(self):
        for line in self.succeed(self.run_tool("--help")).splitlines():
            self.assertLessEqual(len(line), 110, line)


    def test_an_option_takes_a_value_in_all_commands_or_in_none(self):
        """What stands before a command is read before the command is known."""
        kinds = {}
        commands = re.findall(r"^  (\w+)  ", self.succeed(self.run_tool("--help")).split("Commands")[1], re.MULTILINE)
        self.assertIn("serve", commands)
        for command in commands:
            text = self.succeed(self.run_tool(command, "--help"))
            for names, kind in re.findall(r"^  (-\S+)((?: \S+)*)(?:  |$)", text, re.MULTILINE):
                for name in names.split(","):
                    kinds.setdefault(name, set()).add(bool(kind))
        self.assertEqual((kinds["--mof"], kinds["--no-live"]), ({True}, {False}))
        self.assertEqual([name for name, found in kinds.items() if len(found) > 1], [])


class GoodUse(ToolCase):
    def test_named_command(self):
        self.assertEqual(self.succeed(self.run_tool("query", "--no-live", "-m", MODEL, "-o", "csv", QUERY)), CSV)

    def test_command_behind_options(self):
        before = self.succeed(self.run_tool("classes", "--no-live", "-m", MODEL))
        self.assertEqual(before, "Shop_Empty\nShop_Item\n")
        for options in (("--no-live", "-m", MODEL), ("-m" + MODEL, "--no-live"), ("--mof=" + MODEL, "--no-live"),
                        ("--set", "A.class=query", "--no-live", "--mof", MODEL)):
            with self.subTest(options=options):
                self.assertEqual(self.succeed(self.run_tool(*options, "classes")), before)
        self.assertEqual(self.succeed(self.run_tool("--no-live", "-m", MODEL, "-n", "class", "classes", "item")),
                         "Shop_Item\n")
        self.assertIn("qorql classes [OPTIONS] [PATTERN]", self.succeed(self.run_tool("--help", "classes")))

    def test_a_name_of_a_command_that_is_no_command(self):
        self.assertIn("'SELECT' expected", self.run_tool("--no-live", "--", "classes").err)
        self.assertIn("'SELECT' expected", self.run_tool("query", "--no-live", "classes").err)

    def test_long_and_short_names(self):
        short = self.model("-n", "root/cimv2", "-o", "csv", QUERY)
        long = self.run_tool("--no-live", "--mof", MODEL, "--namespace", "root/cimv2", "--output", "csv", QUERY)
        self.assertEqual(self.succeed(short), CSV)
        self.assertEqual(self.succeed(long), CSV)

    def test_options_after_the_query(self):
        self.assertEqual(self.succeed(self.run_tool(QUERY, "-o", "csv", "--no-live", "-m", MODEL)), CSV)

    def test_mof_is_repeatable_and_leaves_the_query_alone(self):
        more = self.write("more.mof", "class Shop_More { [Key] uint32 Id; };\ninstance of Shop_More { Id = 9; };\n")
        result = self.run_tool("--no-live", "-m", MODEL, "-m", more, "-o", "csv", "SELECT Id FROM Shop_More")
        self.assertEqual(self.succeed(result), "Id\n9\n")

    def test_mof_folder(self):
        self.write("mof/b.mof", "instance of T { K = 2; };\n")
        self.write("mof/a.mof", "Qualifier Key : boolean = false, Scope(property, reference), "
                                "Flavor(DisableOverride, ToSubclass);\nclass T { [Key] uint8 K; };\n")
        self.write("mof/ignored.txt", "no MOF at all")
        result = self.run_tool("--no-live", "-m", self.folder + "/mof", "-o", "csv", "SELECT K FROM T")
        self.assertEqual(self.succeed(result), "K\n2\n")

    def test_namespace_holds_what_mof_declares(self):
        result = self.run_tool("--no-live", "-m", MODEL, "-n", "root/other", "-o", "csv",
                               "SELECT OBJECTPATH(Shop_Item) AS P FROM Shop_Item WHERE Id = 4")
        self.assertEqual(self.succeed(result), "P\nroot/other:Shop_Item.Id=4\n")

    def test_file(self):
        path = self.write("q.qql", QUERY + ";\n")
        self.assertEqual(self.succeed(self.model("-o", "csv", "-f", path)), CSV)
        self.assertEqual(self.succeed(self.model("-o", "csv", "--file", path)), CSV)

    def test_configuration_file_and_setting(self):
        path = self.write("c.ini", "[ZEMO]\nDisablePreFilter = true\n")
        self.assertEqual(self.succeed(self.model("-o", "csv", "--config", path, QUERY)), CSV)
        self.assertEqual(self.succeed(self.model("-o", "csv", "--set", "ZEMO.DisablePreFilter=true", QUERY)), CSV)
        self.assertEqual(self.succeed(self.model("-o", "csv", "--set", "A.B=", "--set", "A.C=x=y", QUERY)), CSV)

    def test_quiet(self):
        self.assertEqual(self.succeed(self.model("-o", "csv", "--quiet", QUERY)), CSV)

    def test_log_trace_shows_the_client_calls(self):
        result = self.model("-o", "csv", "--log", "trace", QUERY)
        self.assertEqual((result.status, result.out), (0, CSV))
        self.assertRegex(result.err, r"(?m)^qorql: trace: CQL: .*SHOP_ITEM")
        for line in result.err.splitlines():
            self.assertRegex(line, r"^qorql: (fatal|error|warning|info|trace): ")

    def test_log_levels(self):
        for level in ("fatal", "error", "warning"):
            self.assertEqual(self.succeed(self.model("-o", "csv", "--log", level, QUERY)), CSV)

    def test_stats(self):
        result = self.model("-o", "csv", "--stats", QUERY)
        self.assertEqual((result.status, result.out), (0, CSV))
        numbers = re.fullmatch(r"qorql: stats: rows=2 instances=(\d+) enumerateInstances=1 associators=0 "
                               r"getInstance=0 parse=\d+\.\d{3}ms fetch=\d+\.\d{3}ms filter=\d+\.\d{3}ms "
                               r"sort=\d+\.\d{3}ms project=\d+\.\d{3}ms execute=\d+\.\d{3}ms output=\d+\.\d{3}ms\n", result.err)
        self.assertIsNotNone(numbers, result.err)
        self.assertEqual(numbers.group(1), "5")

    def test_stats_for_each_statement(self):
        result = self.model("-o", "csv", "--stats", "SELECT Id FROM Shop_Item; SELECT Id FROM Shop_Empty")
        self.assertEqual(re.findall(r"rows=(\d+) instances=(\d+) enumerateInstances=(\d+)", result.err),
                         [("5", "5", "1"), ("0", "0", "1")])

    def test_stats_in_xml(self):
        result = self.model("-o", "xml", "--stats", QUERY)
        self.assertIn("rows=2 ", result.err)


class WrongUse(ToolCase):
    def test_unknown_options(self):
        self.wrong_usage(self.run_tool("--frobnicate"), "--frobnicate")
        self.wrong_usage(self.run_tool("-Z"), "-Z")
        self.wrong_usage(self.run_tool(QUERY, "--outputs", "csv"), "--outputs")

    def test_missing_arguments(self):
        for option in ("-m", "--mof", "-n", "--namespace", "-o", "--output", "-f", "--file", "--config", "--set",
                       "--log"):
            with self.subTest(option=option):
                self.wrong_usage(self.run_tool(option), option.lstrip("-")[:1])

    def test_flags_take_no_argument(self):
        for option in ("--stats=5", "--quiet=maybe", "--warnings=1", "--no-live=1", "--version=1"):
            with self.subTest(option=option):
                self.wrong_usage(self.run_tool(option, QUERY), option.split("=")[0] + " takes no value")

    def test_surplus_query(self):
        self.wrong_usage(self.model(QUERY, "SELECT Id FROM Shop_Empty"), "SELECT Id FROM Shop_Empty")

    def test_a_command_behind_options_knows_its_own(self):
        self.wrong_usage(self.run_tool("--no-live", "classes", "-o", "csv"), "-o", command="qorql classes")

    def test_what_is_not_expected_is_told_as_it_was_typed(self):
        for arguments, extra in ((["classes", "a", "b", "c"], "arguments were not expected: b c"),
                                 (["instances", "-o", "json", "X"], "argument was not expected: -o")):
            self.assertEqual(self.run_tool(*arguments).err.splitlines()[0], f"qorql: The following {extra}")

    def test_a_command_is_named_once(self):
        self.wrong_usage(self.run_tool("classes", "--no-live", "class", "Shop_Item"), "Shop_Item",
                         command="qorql classes")

    def test_options_that_may_stand_once(self):
        path = self.write("q.qql", QUERY)
        for option, value in (("-n", "a"), ("-o", "csv"), ("-f", path), ("--config", path), ("--log", "info")):
            with self.subTest(option=option):
                self.wrong_usage(self.run_tool(option, value, option, value))

    def test_query_and_file(self):
        path = self.write("q.qql", QUERY)
        self.wrong_usage(self.model("-f", path, QUERY), "QUERY", "--file")

    def test_missing_file(self):
        self.wrong_usage(self.model("-f", self.folder + "/none.qql"), "none.qql")

    def test_unknown_form(self):
        self.wrong_usage(self.model("-o", "yaml", QUERY), "'yaml' is not one of arrow, csv, html, json, jsonl, mof, table, xml")

    def test_form_is_case_sensitive_and_not_empty(self):
        self.wrong_usage(self.model("-o", "CSV", QUERY), "'CSV' is not one of")
        self.wrong_usage(self.model("-o", "", QUERY))

    def test_unknown_log_level(self):
        self.wrong_usage(self.model("--log", "loud", QUERY), "'loud' is not one of error, fatal, info, trace, warning")

    def test_settings_without_form(self):
        for setting in ("", "ZEMO", "ZEMO.Key", "ZEMO=1", ".Key=1", "ZEMO.=1", "a=b.c"):
            with self.subTest(setting=setting):
                self.wrong_usage(self.model("--set", setting, QUERY))

    def test_nothing_is_printed_before_wrong_usage_is_found(self):
        self.wrong_usage(self.model(QUERY, "--frobnicate"))


class PlatformFailure(ToolCase):
    def failed(self, result, *parts):
        self.assertEqual((result.status, result.out), (3, ""), result.err)
        self.assertTrue(result.err.startswith("qorql: error: "), result.err)
        for part in parts:
            self.assertIn(part, result.err)

    def test_missing_mof_file(self):
        self.failed(self.run_tool("-m", self.folder + "/none.mof", QUERY), "none.mof")

    def test_mof_that_cannot_be_read_says_why(self):
        self.failed(self.run_tool("-m", "a" * 300, QUERY), "cannot be read: File name too long")

    def test_mof_is_shown_without_harm(self):
        path = self.write("bad.mof", b'class A { string s = "\xff\xfe"; };\n')
        self.failed(self.run_tool("-m", path, QUERY), 'class A { string s = "\\xFF\\xFE"; };\n')

    def test_faults_of_mof_are_told_up_to_twenty(self):
        for count in (19, 20, 25):
            path = self.write("bad.mof", "".join(f"class C{i} : None{i} {{ }};\n" for i in range(count)))
            result = self.run_tool("-m", path, QUERY)
            self.failed(result)
            self.assertEqual(result.err.count("is not declared"), min(count, 20))
            self.assertEqual("No more than 20 faults are shown at once." in result.err, count >= 20)

    def test_wrong_mof_with_file_and_line(self):
        path = self.write("bad.mof", "class A {\n  uint32 X\n};\n")
        self.failed(self.run_tool("-m", path, QUERY), "bad.mof", "3")

    def test_wrong_mof_among_good_ones(self):
        path = self.write("bad.mof", "instance of Nowhere { };\n")
        self.failed(self.run_tool("-m", MODEL, "-m", path, QUERY), "bad.mof", "Nowhere")

    def test_missing_configuration(self):
        self.failed(self.model("--config", self.folder + "/none.ini", QUERY), "none.ini")

    def test_wrong_configuration_with_line(self):
        path = self.write("bad.ini", "[ZEMO]\nthis is no setting\n")
        self.failed(self.model("--config", path, QUERY), "bad.ini", "2")


if __name__ == "__main__":
    toolcase.main()
