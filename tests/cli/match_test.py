"""qorql match: which instances of MOF files a filter matches."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import unittest

import toolcase
from toolcase import ToolCase

SCHEMA = os.path.join(toolcase.HERE, "filters.mof")
ALERTS = """instance of CIM_AlertIndication { OwningEntity = "SNIA"; MessageID = "FC1"; };
instance of CIM_AlertIndication { OwningEntity = "SNIA"; MessageID = "FC2"; };
"""
CREATION = ('instance of CIM_InstCreation { SourceInstance = "instance of XYZ_Volume { Id = \\"v\\"; Size = 10; '
            'OperationalStatus = {2, 17}; };"; };\n')
FC1 = "SELECT * FROM CIM_AlertIndication WHERE OwningEntity = 'SNIA' AND MessageID = 'FC1'"
ALERT_PATH = "root/cimv2:CIM_AlertIndication"


class MatchCase(ToolCase):
    def match(self, *arguments, stdin=b""):
        return self.run_tool("match", "--no-live", *arguments, stdin=stdin)

    def why(self, condition, mof, source="CIM_InstCreation"):
        line = self.succeed(self.match("--quiet", "--why", "-m", SCHEMA, f"SELECT * FROM {source} WHERE {condition}",
                                       stdin=mof))
        return line.split("\n")[0].split("\t")[1:]


class Match(MatchCase):
    def test_files_in_their_order(self):
        first = self.write("first.mof", ALERTS)
        second = self.write("second.mof", CREATION)
        self.assertEqual(self.succeed(self.match("-m", SCHEMA, FC1, second, first)),
                         f"root/cimv2:CIM_InstCreation#1\tno match\n{ALERT_PATH}#2\tmatch\n{ALERT_PATH}#3\tno match\n")

    def test_many_filters_are_told_by_their_lines(self):
        filters = self.write("filters.txt", f"{FC1}\n\nSELECT * FROM CIM_AlertIndication\r\n"
                             "SELECT * FROM CIM_InstCreation\n"
                             "SELECT * FROM CIM_AlertIndication WHERE MessageID = 'FC2'\n")
        instances = self.write("instances.mof", ALERTS + CREATION)
        self.assertEqual(self.succeed(self.match("-m", SCHEMA, "--filters", filters, instances)),
                         f"{ALERT_PATH}#1\t1,3\n{ALERT_PATH}#2\t3,5\nroot/cimv2:CIM_InstCreation#3\t4\n")
        self.assertEqual(self.succeed(self.match("-m", SCHEMA, "--filters", filters, stdin=ALERTS)),
                         f"{ALERT_PATH}#1\t1,3\n{ALERT_PATH}#2\t3,5\n")
        self.write("filters.txt", "SELECT * FROM CIM_AlertIndication WHERE MessageID = 'FC3'\n")
        self.assertEqual(self.succeed(self.match("--filters", filters, stdin=ALERTS)), f"{ALERT_PATH}#1\t\n{ALERT_PATH}#2\t\n")

    def test_many_filters_are_told_by_their_names(self):
        filters = self.write("filters.txt", f"# alerts\nfirst: {FC1}\n\nrest:\n  SELECT * FROM CIM_AlertIndication\n"
                             "SELECT * FROM CIM_Indication\n")
        self.assertEqual(self.succeed(self.match("--filters", filters, stdin=ALERTS)),
                         f"{ALERT_PATH}#1\tfirst,rest,6\n{ALERT_PATH}#2\trest,6\n")
        self.write("filters.txt", f"a: {FC1}\nb: SELECT\n")
        self.assertIn("qorql: error: line 2 (b): the filter is not valid: ",
                      self.match("--filters", filters, stdin=ALERTS).err)
        self.write("filters.txt", f"a: {FC1}\na: {FC1}\n")
        self.refused(self.match("--filters", filters, stdin=ALERTS), 1,
                     "qorql: error: line 2: there is a filter a in line 1 already")

    def test_a_file_without_a_filter_is_refused(self):
        for text in ("", "\n\n", "# SELECT * FROM CIM_AlertIndication\n"):
            filters = self.write("filters.txt", text)
            result = self.match("--filters", filters, stdin=ALERTS)
            self.assertEqual(result.out, "")
            self.refused(result, 1, f"qorql: error: {filters} holds no filter")

    def test_many_filters_of_which_some_are_not_valid(self):
        filters = self.write("filters.txt", f"SELECT\n{FC1}\nSELECT * FROM CIM_Nope\n")
        result = self.match("--filters", filters, stdin=ALERTS)
        self.assertEqual((result.status, result.out), (1, ""))
        self.assertRegex(result.err, "qorql: error: line 1: the filter is not valid: .*\n"
                         "(.*\n)*qorql: error: line 3: the filter is not valid: .*CIM_Nope")

    def test_many_filters_and_strict(self):
        filters = self.write("filters.txt", f"{FC1} OR MessageID = 'x'\n")
        self.assertEqual(self.match("--filters", filters, stdin=ALERTS).status, 0)
        result = self.match("--strict", "--filters", filters, stdin=ALERTS)
        self.assertEqual((result.status, result.out), (1, ""))

    def test_filters_and_why_do_not_go_together(self):
        result = self.match("--why", "--filters", self.write("filters.txt", FC1), stdin=ALERTS)
        self.assertEqual((result.status, result.out), (2, ""))
        self.assertIn("--why excludes --filters", result.err)
        self.assertEqual(self.match(stdin=ALERTS).status, 2)

    def test_standard_input(self):
        expected = f"{ALERT_PATH}#1\tmatch\n{ALERT_PATH}#2\tno match\n"
        self.assertEqual(self.succeed(self.match(FC1, stdin=ALERTS)), expected)
        self.assertEqual(self.succeed(self.match(FC1, "-", stdin=ALERTS)), expected)
        self.assertEqual(self.succeed(self.match(FC1, stdin=b"")), "")

    def test_an_instance_with_keys_shows_its_path_and_is_not_stored(self):
        twice = 'instance of XYZ_Volume { Id = "v"; Size = 1; };\n' * 2
        self.assertEqual(self.succeed(self.match("-m", SCHEMA, "SELECT * FROM XYZ_Element WHERE Id = 'v'", stdin=twice)),
                         'root/cimv2:XYZ_Volume.Id="v"\tmatch\n' * 2)

    def test_instances_of_the_schema_are_not_decided(self):
        path = self.write("with.mof", 'class XYZ_One { [Key] string Id; };\ninstance of XYZ_One { Id = "1"; };\n')
        self.assertEqual(self.succeed(self.match("-m", path, "SELECT * FROM XYZ_One", stdin='instance of XYZ_One { Id = "2"; };')),
                         'root/cimv2:XYZ_One.Id="2"\tmatch\n')

    def test_another_namespace(self):
        path = self.write("other.mof", '#pragma namespace("root/other")\nclass XYZ_There { [Key] string Id; };\n')
        there = '#pragma namespace("root/other")\ninstance of XYZ_There { Id = "1"; };\n'
        self.assertEqual(self.succeed(self.match("-m", path, "-n", "root/other", "SELECT * FROM XYZ_There", stdin=there)),
                         'root/other:XYZ_There.Id="1"\tmatch\n')
        self.assertEqual(self.succeed(self.match("-m", path, "--why", "SELECT * FROM CIM_InstCreation", stdin=there)),
                         'root/other:XYZ_There.Id="1"\tno match\tits namespace is root/other, the filter\'s root/cimv2\n')

    def test_live_classes_are_known(self):
        made = 'instance of CIM_InstCreation { SourceInstance = "instance of Linux_Process { Handle = \\"1\\"; };"; };'
        self.assertEqual(self.succeed(self.run_tool("match", "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA "
                                                             "CIM_Process", stdin=made)),
                         "root/cimv2:CIM_InstCreation#1\tmatch\n")


class Json(MatchCase):
    def json(self, *arguments, stdin=b""):
        return json.loads(self.succeed(self.match("-o", "json", *arguments, stdin=stdin)))

    def test_one_filter(self):
        self.assertEqual(self.json(FC1, stdin=ALERTS), [{"path": f"{ALERT_PATH}#1", "match": True},
                                                        {"path": f"{ALERT_PATH}#2", "match": False}])
        self.assertEqual(self.json("--why", FC1, stdin=ALERTS)[1]["why"], "MessageID = 'FC1' ('FC2' = 'FC1')")
        self.assertEqual(self.json(FC1, stdin=b""), [])

    def test_many_filters(self):
        filters = self.write("filters.txt", f"fan-1: {FC1}\nSELECT * FROM CIM_Indication\n")
        self.assertEqual(self.json("--filters", filters, stdin=ALERTS),
                         [{"path": f"{ALERT_PATH}#1", "filters": ["fan-1", 2]}, {"path": f"{ALERT_PATH}#2", "filters": [2]}])

    def test_a_path_with_quotes(self):
        decided = self.json("-m", SCHEMA, "SELECT * FROM XYZ_Volume", stdin='instance of XYZ_Volume { Id = "a\\"b"; };')
        self.assertEqual(decided, [{"path": 'root/cimv2:XYZ_Volume.Id="a\\"b"', "match": True}])

    def test_a_filter_that_is_not_valid_prints_nothing(self):
        self.assertEqual(self.match("-o", "json", "SELECT", stdin=ALERTS).out, "")
        self.assertEqual(self.match("-o", "json", FC1, "nowhere.mof").out, "")

    def test_another_form(self):
        result = self.match("-o", "xml", FC1, stdin=ALERTS)
        self.assertEqual((result.status, result.out), (2, ""))
        self.assertIn("'xml' is not one of json, text", result.err)


class Why(MatchCase):
    def test_the_first_condition_that_failed_and_its_values(self):
        self.assertEqual(self.succeed(self.match("--why", FC1, stdin=ALERTS)),
                         f"{ALERT_PATH}#1\tmatch\n{ALERT_PATH}#2\tno match\tMessageID = 'FC1' ('FC2' = 'FC1')\n")

    def test_the_class(self):
        self.assertEqual(self.why("MessageID = 'x'", CREATION, "CIM_AlertIndication"),
                         ["no match", "its class CIM_InstCreation is not in FROM"])

    def test_embedded_objects(self):
        self.assertEqual(self.why("SourceInstance ISA CIM_AlertIndication", CREATION),
                         ["no match", "SourceInstance ISA CIM_AlertIndication (XYZ_Volume ISA CIM_AlertIndication)"])
        self.assertEqual(self.why("SourceInstance.XYZ_Volume::Size > 3 AND SourceInstance.Size <= 9", CREATION),
                         ["no match", "SourceInstance.Size <= 9 (10 <= 9)"])
        self.assertEqual(self.why("SourceInstance.OperationalStatus[1] = 2", CREATION),
                         ["no match", "SourceInstance.OperationalStatus[1] = 2 (17 = 2)"])
        self.assertEqual(self.why("SourceInstance.OperationalStatus[2] = 2", CREATION),
                         ["no match", "SourceInstance.OperationalStatus[2] = 2 (NULL = 2)"])
        self.assertEqual(self.why("ANY SourceInstance.XYZ_Volume::OperationalStatus[*] = 6", CREATION),
                         ["no match", "ANY SourceInstance.XYZ_Volume::OperationalStatus[*] = 6 ({2, 17} = 6)"])
        self.assertEqual(self.why("SourceInstance.Size + 1 = SourceInstance.Size * 2", CREATION),
                         ["no match", "SourceInstance.Size + 1 = SourceInstance.Size * 2 (11 = 20)"])
        self.assertEqual(self.why("(SourceInstance.Size = -5)", CREATION),
                         ["no match", "SourceInstance.Size = -5 (10 = -5)"])

    def test_what_never_matches(self):
        self.assertEqual(self.why("SourceInstance.Size = 10 AND NOT SourceInstance.Size = 3", CREATION),
                         ["no match", "NOT SourceInstance.Size = 3 (a condition under NOT never matches)"])
        self.assertEqual(self.why("SourceInstance.Size = 11 AND NOT SourceInstance.Size = 3", CREATION),
                         ["no match", "SourceInstance.Size = 11 (10 = 11)"])
        self.assertEqual(self.why("SourceInstance.Id LIKE 'v'", CREATION),
                         ["no match", "SourceInstance.Id LIKE 'v' (a condition with LIKE never matches)"])

    def test_bytes_that_are_no_text(self):
        condition = b"SELECT * FROM CIM_AlertIndication WHERE MessageID = 'a\xe9b\xff\x80\xe2\x82d\xc3\xa9\x1b'"
        mof = 'instance of CIM_AlertIndication { MessageID = "\xe9"; };'
        self.assertEqual(self.succeed(self.match("--why", condition, stdin=mof.encode())),
                         f"{ALERT_PATH}#1\tno match\tMessageID = 'a\\xE9b\\xFF\\x80\\xE2\\x82d\xe9\\x1B' "
                         "('\xe9' = 'a\\xE9b\\xFF\\x80\\xE2\\x82d\xe9\\x1B')\n")

    def test_values_that_do_not_compare(self):
        self.assertEqual(self.why("MessageID = 5", ALERTS, "CIM_AlertIndication")[1],
                         "MessageID = 5 ('FC1' = 5): string and uint8 do not compare")
        self.assertEqual(self.why("SourceInstance.OperationalStatus = 2", CREATION)[1],
                         "SourceInstance.OperationalStatus = 2 ({2, 17} = 2): "
                         "an array compares with a value under ANY or EVERY only")

    def test_a_path_of_an_alert(self):
        alert = 'instance of CIM_AlertIndication { AlertingElementFormat = 2; AlertingManagedElement = "//h/n:CIM_X.K=1"; };'
        self.assertEqual(self.succeed(self.match("--why", "SELECT * FROM CIM_AlertIndication WHERE "
                                                          "AlertingManagedElement ISA CIM_FCPort", stdin=alert)),
                         f"{ALERT_PATH}#1\tno match\tAlertingManagedElement ISA CIM_FCPort "
                         "('//h/n:CIM_X.K=1' ISA CIM_FCPort)\n")


class Faults(MatchCase):
    def test_a_filter_that_is_not_valid(self):
        self.refused(self.match("SELECT * FROM CIM_AlertIndicaton", stdin=ALERTS), 1,
                     "qorql: error: the filter is not valid: CIM_AlertIndicaton is not a class of root/cimv2: "
                     "did you mean CIM_AlertIndication? (line 1, column 15)")
        self.refused(self.match("-q", "SQL", FC1, stdin=ALERTS), 1,
                     "qorql: error: the filter is not valid: 'SQL' is not a filter language: use DMTF:CQL, CQL or WQL")

    def test_instances_that_are_not_good_decide_nothing(self):
        good = self.write("good.mof", ALERTS)
        for mof, says in (("class X { };", "a class cannot be declared here, only instances"),
                          ("instance of CIM_Nothing { };", "CIM_Nothing"),
                          ('instance of CIM_AlertIndication { Wheels = 4; };', "Wheels"),
                          ("instance of", "bad.mof:1:12")):
            result = self.match(FC1, good, self.write("bad.mof", mof))
            self.assertEqual((result.status, result.out), (3, ""))
            self.assertIn(says, result.err)
        result = self.match(FC1, good, os.path.join(self.folder, "nowhere.mof"))
        self.assertEqual((result.status, result.out), (3, ""))

    def test_a_warning_for_what_never_matches(self):
        result = self.match("SELECT * FROM CIM_AlertIndication WHERE NOT MessageID = 'x'", stdin=ALERTS)
        self.assertEqual((result.status, result.err), (0, "qorql: warning: a condition under NOT never matches "
                                                        "(line 1, column 41)\n"))
        self.assertEqual(result.out, f"{ALERT_PATH}#1\tno match\n{ALERT_PATH}#2\tno match\n")

    def test_wrong_usage(self):
        for arguments, says in (([], "FILTER"), (["-q"], "--language"), (["--why=1", FC1], "--why takes no value"),
                                (["--no-such", FC1], "--no-such"), (["-m"], "--mof")):
            result = self.run_tool("match", *arguments)
            self.assertEqual((result.status, result.out), (2, ""), arguments)
            self.assertEqual(result.err.splitlines()[-1], "Try qorql match --help.")
            self.assertIn(says, result.err)

    def test_help(self):
        text = self.succeed(self.run_tool("match", "--help"))
        for part in ("--why", "FILTER", "FILE", "--language", "Exit status"):
            self.assertIn(part, text)


if __name__ == "__main__":
    toolcase.main()
