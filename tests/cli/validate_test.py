"""qorql validate: whether filters are valid, why not, and what they need."""
# SPDX-License-Identifier: Apache-2.0
import os
import unittest

import toolcase
from toolcase import ToolCase

SCHEMA = os.path.join(toolcase.HERE, "filters.mof")
ALERT = "SELECT * FROM CIM_AlertIndication"


class ValidateCase(ToolCase):
    def validate(self, *arguments, stdin=b""):
        return self.run_tool("validate", "--no-live", *arguments, stdin=stdin)

    def valid(self, text, classes, properties, *arguments):
        self.assertEqual(self.succeed(self.validate(*arguments, text)), f"valid\t{classes}\t{properties}\n")

    def invalid(self, text, reason, *arguments, hint=""):
        """Where there is a hint, a ^ stands in the text at its place."""
        result = self.validate(*arguments, text.replace("^", ""))
        self.assertEqual((result.status, result.out, result.err),
                         (1, f"invalid\t{reason}\n", toolcase.hint(text, hint) if hint else ""))

    def schema_warnings(self, text):
        result = self.validate("--no-live", "-m", SCHEMA, text)
        self.assertEqual(result.status, 0, result.err)
        return [line.removeprefix("qorql: warning: ") for line in result.err.splitlines()]

    def warned(self, text, *warnings):
        result = self.validate(text)
        self.assertEqual(result.err, "".join(f"qorql: warning: {warning}\n" for warning in warnings))
        self.assertTrue(result.out.startswith("valid\t"), result.out)
        quiet = self.validate("--quiet", text)
        self.assertEqual((quiet.status, quiet.out, quiet.err), (0, result.out, ""))


class Valid(ValidateCase):
    def test_names_classes_and_properties_as_they_are_declared(self):
        self.valid("select messageid, a.owningentity from cim_alertindication as a where PERCEIVEDSEVERITY > 3",
                   "CIM_AlertIndication", "MessageID,OwningEntity,PerceivedSeverity")

    def test_star_needs_every_property(self):
        self.valid(ALERT + " WHERE MessageID = 'x'", "CIM_AlertIndication", "*")

    def test_a_path_needs_the_property_that_holds_the_object(self):
        self.valid("SELECT IndicationTime FROM CIM_InstCreation WHERE SourceInstance.XYZ_Volume::Size > 3",
                   "CIM_InstCreation", "IndicationTime,SourceInstance")

    def test_properties_of_several_classes_are_qualified(self):
        self.valid("SELECT a.MessageID, b.SourceInstance FROM CIM_AlertIndication AS a, CIM_InstCreation AS b",
                   "CIM_AlertIndication,CIM_InstCreation", "CIM_AlertIndication.MessageID,CIM_InstCreation.SourceInstance")

    def test_a_class_that_stands_twice_needs_its_properties_once(self):
        self.valid("SELECT a.MessageID, b.EventID FROM CIM_AlertIndication AS a, CIM_AlertIndication AS b",
                   "CIM_AlertIndication,CIM_AlertIndication",
                   "CIM_AlertIndication.MessageID,CIM_AlertIndication.EventID")

    def test_many_from_names(self):
        count = 3000
        selected = ",".join(f"a{i}.MessageID" for i in range(count))
        sources = ",".join(f"CIM_AlertIndication AS a{i}" for i in range(count))
        condition = " AND ".join(f"a{i}.MessageID = 'x'" for i in range(count))
        out = self.succeed(self.validate(stdin=f"SELECT {selected} FROM {sources} WHERE {condition}"))
        self.assertTrue(out.endswith("\tCIM_AlertIndication.MessageID\tline 1\n"))

    def test_the_schema_of_mof_files(self):
        self.valid("SELECT Rack, Owner FROM XYZ_Alert", "XYZ_Alert", "Rack,Owner", "-m", SCHEMA)
        self.invalid("SELECT Rack FROM XYZ_Alert", "XYZ_Alert is not a class of root/cimv2 (line 1, column 18)")

    def test_a_schema_that_builds_on_the_common_indications(self):
        path = self.write("vendor.mof", '[Indication] class XYZ_Rack : XYZ_Base { string Rack; };\n'
                                        "[Indication] class XYZ_Base : CIM_AlertIndication { string Row; };\n")
        self.valid("SELECT Rack, Row, MessageID FROM XYZ_Rack WHERE EventID = 'x'", "XYZ_Rack",
                   "Rack,Row,MessageID,EventID", "-m", path)
        self.valid("SELECT * FROM CIM_InstCreation", "CIM_InstCreation", "*", "-m", path)

    STORAGE = os.path.join(toolcase.HERE, "..", "..", "examples", "storage.mof")

    def test_common_indications_beside_a_short_one_of_the_schema(self):
        self.valid("SELECT PerceivedSeverity, IndicationTime FROM CIM_AlertIndication WHERE SequenceNumber > 3",
                   "CIM_AlertIndication", "PerceivedSeverity,IndicationTime,SequenceNumber", "-m", self.STORAGE)
        self.invalid("SELECT PerceivedSeverity FROM CIM_InstCreation",
                     "PerceivedSeverity is not a property of CIM_InstCreation (line 1, column 8)", "-m", self.STORAGE)

    def test_live_classes_without_room_are_told_of_when_they_are_named(self):
        quiet = self.run_tool("validate", "-m", self.STORAGE, "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_StorageVolume")
        self.assertEqual((quiet.status, quiet.err), (0, ""))
        told = self.run_tool("validate", "-m", self.STORAGE, "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA linux_process")
        self.assertRegex(told.err, r"\Aqorql: warning: Without (CIM_\w+, )*CIM_Process and \d+ more, which cannot be "
                                   r"combined with the MOF files: class CIM_")

    def test_faults_of_a_schema_that_builds_on_the_common_indications(self):
        path = self.write("vendor.mof", "[Indication] class XYZ_Rack : CIM_AlertIndication { string Rack; };\n"
                                        "[Indication] class XYZ_Other : XYZ_Missing { };\n")
        result = self.validate("-m", path, ALERT)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn("vendor.mof:2:", result.err)
        self.assertNotIn("vendor.mof:1:", result.err)
        path = self.write("own.mof", "class CIM_Indication { [Key] string Own; };\n"
                                     "class XYZ_Rack : CIM_AlertIndication { string Rack; };\n")
        result = self.validate("-m", path, ALERT)
        self.assertEqual((result.status, result.out), (3, ""))
        self.assertIn("superclass CIM_AlertIndication of class XYZ_Rack is not declared", result.err)

    def test_languages(self):
        for language in ("CQL", "DMTF:CQL", "WQL", "wql"):
            self.valid(ALERT, "CIM_AlertIndication", "*", "-q", language)
        self.invalid(ALERT, "'SQL' is not a filter language: use DMTF:CQL, CQL or WQL", "--language", "SQL")

    def test_namespaces(self):
        self.valid(ALERT, "CIM_AlertIndication", "*", "-n", "root/interop")


class Invalid(ValidateCase):
    def test_a_text_without_quotes_is_taken_for_a_property(self):
        self.invalid(ALERT + " WHERE OwningEntity = BROCADE",
                     "BROCADE is not a property of CIM_AlertIndication: did you mean 'BROCADE'? (line 1, column 56)")

    def test_a_text_in_double_quotes(self):
        self.invalid(ALERT + ' WHERE OwningEntity = ^"SNIA"',
                     "unexpected token '\"' found: did you mean 'SNIA'? (line 1, column 56)",
                     hint="text goes in single quotes: 'SNIA'")

    def test_a_property_that_is_nearly_right(self):
        for written, meant in (("OwningEntty", "OwningEntity"), ("owningentities", "OwningEntity"),
                               ("MesageID", "MessageID"), ("MessageDI", "MessageID")):
            self.invalid(f"{ALERT} WHERE {written} = 'x'",
                         f"{written} is not a property of CIM_AlertIndication: did you mean {meant}? (line 1, column 41)")
        self.invalid("SELECT a.EvntID FROM CIM_AlertIndication AS a",
                     "EvntID is not a property of CIM_AlertIndication: did you mean EventID? (line 1, column 10)")

    def test_nothing_is_near(self):
        self.invalid(ALERT + " WHERE Temperature > 5",
                     "Temperature is not a property of CIM_AlertIndication (line 1, column 41)")

    def test_a_class_that_is_nearly_right_is_the_cause_of_all_else(self):
        self.invalid("SELECT MessageID FROM CIM_AlertIndicaton WHERE MessageID = 'x'",
                     "CIM_AlertIndicaton is not a class of root/cimv2: did you mean CIM_AlertIndication? (line 1, column 23)")

    def test_a_class_of_another_namespace(self):
        path = self.write("other.mof", '#pragma namespace("root/other")\nclass XYZ_There { [Key] string Id; };\n')
        self.invalid("SELECT * FROM XYZ_There",
                     "XYZ_There is not a class of root/cimv2 but one of root/other (line 1, column 15)", "-m", path)

    def test_a_property_of_several_classes(self):
        self.invalid("SELECT * FROM CIM_AlertIndication AS a, CIM_InstCreation WHERE IndicationTime = 'x'",
                     "IndicationTime is a property of more than one class: write a.IndicationTime or "
                     "CIM_InstCreation.IndicationTime (line 1, column 64)")

    def test_a_qualifier(self):
        self.invalid("SELECT al.EventID FROM CIM_AlertIndication AS alarm",
                     "al is neither a class of FROM nor a property that holds an object (line 1, column 8)")
        self.invalid("SELECT alrm.EventID FROM CIM_AlertIndication AS alarm",
                     "alrm is neither a class of FROM nor a property that holds an object: did you mean alarm? "
                     "(line 1, column 8)")

        self.invalid("SELECT SourceInstance.Size FROM CIM_InstCreation AS c, CIM_InstModification",
                     "SourceInstance is a property of more than one class: write c.SourceInstance or "
                     "CIM_InstModification.SourceInstance (line 1, column 8)")

    def test_what_was_passed_over_may_be_the_cause(self):
        over = "; skipped, since the language does not know it: "
        self.invalid(ALERT + " WHERE OwningEntity = ^\u2018SNIA\u2019",
                     f"SNIA is not a property of CIM_AlertIndication (line 1, column 57){over}\u2018 (line 1, column 56), "
                     "\u2019 (line 1, column 61)", hint="text goes in plain single quotes: 'SNIA'")
        self.invalid(ALERT + " WHERE PerceivedSeverity \u2265 4", f"unexpected token '4' found (line 1, column 61){over}\u2265 "
                     "(line 1, column 59)")
        result = self.validate(ALERT + " WHERE " + "\u2265" * 1000 + "4 5")
        self.assertEqual(result.status, 1)
        self.assertTrue(result.out.startswith(f"invalid\tunexpected token '5' found (line 1, column 1043){over}\u2265 (line 1, "
                                              "column 41), \u2265 (line 1, column 42)"), result.out)
        self.assertTrue(result.out.endswith("\u2265 (line 1, column 60) and 980 more\n"), result.out)
        self.invalid(ALERT + "\u2019", "'SQL' is not a filter language: use DMTF:CQL, CQL or WQL", "-q", "SQL")

    def test_the_name_at_fault_and_not_what_is_spelled_like_it(self):
        self.invalid("SELECT MessageID AS Wheels FROM CIM_AlertIndication WHERE EventID = 'Wheels' AND Wheels = 1",
                     "Wheels is not a property of CIM_AlertIndication (line 1, column 82)")
        self.invalid("SELECT MAX(a.EventID) AS Wheels, MAX(a.Wheels) AS m FROM CIM_AlertIndication AS a",
                     "Wheels is not a property of CIM_AlertIndication (line 1, column 40)")
        self.invalid("SELECT a.EventID AS Nobody, Nobody.EventID FROM CIM_AlertIndication AS a",
                     "Nobody is neither a class of FROM nor a property that holds an object (line 1, column 29)")
        self.invalid("SELECT i.SourceInstance AS Wheels, i.Wheels.XYZ_Volume::Size FROM CIM_InstCreation AS i",
                     "Wheels is not a property of CIM_InstCreation (line 1, column 38)")
        self.invalid("SELECT COUNT(EventID) AS n, ^MessageID FROM CIM_AlertIndication",
                     "Combining Aggregate and NonAggregate expressions is not allowed. (line 1, column 29)",
                     hint="a function has no value in a filter: select properties")

    def test_columns_count_characters_and_lines_count_from_one(self):
        self.invalid(ALERT + "\n WHERE EventID = 'größe' AND\n  EventID ~ 1",
                     "unexpected token '~' found (line 3, column 11)")
        self.invalid("SELECT EventID FROM CIM_AlertIndication\n WHERE OwningEntity = 'größe' AND Evnt = 1",
                     "Evnt is not a property of CIM_AlertIndication (line 2, column 35)")

    def test_the_end_of_the_text(self):
        self.invalid("", "'SELECT' expected (line 1, column 1, at the end)")
        self.invalid(ALERT + " WHERE", "unexpected token '' found (line 1, column 40, at the end)")

    def test_a_reason_is_one_line(self):
        self.invalid(ALERT + " WHERE\tEventID = 'a' 'b\tc'", "unexpected token 'b\\tc' found (line 1, column 55)")


class Warnings(ValidateCase):
    def test_what_never_matches(self):
        for marked, reason in (
                ("EventID = 'a' ^OR EventID = 'b'", "a filter that uses OR"),
                ("EventID = 'OR' ^OR EventID = 'b' OR EventID = 'c'", "a filter that uses OR"),
                ("^NOT EventID = 'a'", "a condition under NOT"),
                ("EventID = 'NOT' AND ^NOT EventID = 'a'", "a condition under NOT"),
                ("EventID ^LIKE 'a'", "a condition with LIKE"), ("EventID ^IS NULL", "a condition with IS NULL"),
                ("(EventID ^IS NOT NULL)", "a condition with IS NOT NULL"),
                ("PerceivedSeverity = ^5 / 0", "a condition on a value that cannot be computed"),
                ("EventID = 'x' AND ^EventID", "a condition without a comparison")):
            place = len(ALERT + " WHERE ") + marked.index("^") + 1
            self.warned(ALERT + " WHERE " + marked.replace("^", ""), f"{reason} never matches (line 1, column {place})")
        self.warned(ALERT + "\n WHERE EventID = 'x'\n  AND EventID LIKE 'a'",
                    "a condition with LIKE never matches (line 3, column 15)")

    def test_names_that_validation_does_not_look_at(self):
        self.warned("SELECT * FROM CIM_InstCreation WHERE SurceInstance.Id = 'x'",
                    "SurceInstance is neither a class of FROM nor a property of one: it never matches; "
                    "did you mean SourceInstance? (line 1, column 38)")
        self.warned(ALERT + " WHERE MessageID.Size = 3 AND 5 = SystemName.XYZ_Volume::Size",
                    "MessageID holds no object: it never matches (line 1, column 41)",
                    "SystemName holds no object: it never matches (line 1, column 68)")
        self.warned("SELECT * FROM CIM_InstCreation AS i WHERE i.Wheels = 'x'",
                    "Wheels is not a property of CIM_InstCreation: it never matches (line 1, column 45)")
        self.warned("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_AlertIndicatoin",
                    "CIM_AlertIndicatoin is not a class of root/cimv2: did you mean CIM_AlertIndication? (line 1, column 57)")
        self.warned("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA 'CIM_AlertIndicatoin'",
                    "CIM_AlertIndicatoin is not a class of root/cimv2: did you mean CIM_AlertIndication? (line 1, column 57)")

    def test_names_behind_an_embedded_path(self):
        creation = "SELECT * FROM CIM_InstCreation WHERE "
        for condition, warning in (
                ("SourceInstance.XYZ_Volume::Sise > 3",
                 "Sise is not a property of XYZ_Volume: it never matches; did you mean Size? (line 1, column 65)"),
                ("SourceInstance.XYZ_Volum::Size > 3",
                 "XYZ_Volum is not a class of root/cimv2: did you mean XYZ_Volume? (line 1, column 53)"),
                ("ANY SourceInstance.XYZ_Volume::OperatinalStatus[*] = 2",
                 "OperatinalStatus is not a property of XYZ_Volume: it never matches; did you mean OperationalStatus? "
                 "(line 1, column 69)"),
                ("SourceInstance ISA XYZ_Volume AND SourceInstance.Wheels > 3",
                 "Wheels is not a property of XYZ_Volume: it never matches (line 1, column 87)"),
                ("Nowhere::IndicationTime = IndicationTime",
                 "Nowhere is not a class of root/cimv2: a scope is not looked at here (line 1, column 38)"),
                ("XYZ_Volume::IndicationTime = IndicationTime",
                 "XYZ_Volume is not a class of FROM: a scope is not looked at here (line 1, column 38)")):
            self.assertEqual(self.schema_warnings(creation + condition), [warning], condition)
        path = self.write("held.mof", 'class XYZ_Inner { [Key] uint8 Id; }; class XYZ_Outer { [Key] uint8 Id; '
                                      '[EmbeddedInstance("XYZ_Inner")] string Held; };\n')
        result = self.validate("-m", path, "SELECT * FROM XYZ_Outer AS o WHERE o.Held.Idd = 3")
        self.assertIn("warning: Idd is not a property of XYZ_Inner: it never matches; did you mean Id? (line 1, column 43)\n",
                      result.err)

    def test_names_that_an_embedded_object_may_have(self):
        for condition in ("SourceInstance.XYZ_Volume::Size > 3", "SourceInstance.XYZ_Element::Size > 3",
                          "SourceInstance ISA XYZ_Element AND SourceInstance.Size > 3", "SourceInstance.Anything > 3",
                          "SourceInstance.Far_Away::Thing > 3", "CIM_Indication::IndicationTime = IndicationTime",
                          "SourceInstance ISA Far_Away AND SourceInstance.Thing = 'x'"):
            self.assertEqual(self.schema_warnings("SELECT * FROM CIM_InstCreation WHERE " + condition), [], condition)

    def test_the_class_behind_isa_tells_of_types(self):
        self.assertEqual(self.schema_warnings("SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA XYZ_Volume AND "
                                              "SourceInstance.OperationalStatus = 2"),
                         ["OperationalStatus is an array: it never matches; to ask its elements write "
                          "ANY SourceInstance.OperationalStatus[*] (line 1, column 72)"])

    def test_arrays_of_other_types(self):
        path = self.write("arrays.mof", "class XYZ_A { [Key] uint8 Id; boolean Truths[]; string Texts[]; uint8 Few[]; "
                                        "real64 Fine[]; };\n")
        for condition, warnings in (
                ("Truths = Texts", "qorql: warning: Truths is an array of boolean and does not compare with Texts, an "
                                   "array of string: it never matches (line 1, column 27)\n"),
                ("Texts <> Few", "qorql: warning: Texts is an array of string and does not compare with Few, an "
                                 "array of uint8: it never matches (line 1, column 27)\n"),
                ("Few = Fine", ""), ("ANY Texts = Id", "qorql: warning: Texts is an array of string and does not compare "
                                                       "with Id, a uint8: it never matches (line 1, column 31)\n"),
                ("Texts = Texts", "")):
            result = self.validate("-m", path, "SELECT * FROM XYZ_A WHERE " + condition)
            self.assertEqual((result.status, result.err), (0, warnings), condition)

    def test_numbers_that_are_taken_for_others(self):
        path = self.write("numbers.mof", "class XYZ_N { [Key] uint64 Big; sint64 Small; real32 Rough; real64 Fine; "
                                         "uint32 Plain; };\n")
        signs = (" is a uint64 and compares with a signed number as a sint64: from 9223372036854775808 on it is negative"
                 " (line 1, column {})")
        rough = "Rough is a real32, which is never exactly that number (the nearest is {}): ask for a range (line 1, column {})"
        for condition, warning in (
                ("Big > -1", "Big" + signs.format(27)), ("Small < Big", "Big" + signs.format(35)),
                ("Small < 9223372036854775808", "9223372036854775808" + signs.format(35)),
                ("Rough = 0.1", rough.format("0.10000000149011612", 27)),
                ("-1.0e-3 < Rough", rough.format("-0.0010000000474974513", 37)),
                ("Rough <> 16777217", rough.format("16777216", 27)),
                ("Rough = 1.0e-3", rough.format("0.0010000000474974513", 27)),
                ("Rough = (0.1)", rough.format("0.10000000149011612", 27)),
                ("Big > -(1)", "Big" + signs.format(27)), ("Big > Plain - 1", "Big" + signs.format(27)),
                ("Big * 100 / 7 = 2",
                 'Operators of one level group to the right: this is "Big * (100 / 7)" (line 1, column 31)'),
                ("Big <> 18446744073709551616", "18446744073709551616 is greater than any integer type holds: it stands for "
                                                "18446744073709551615 (line 1, column 34)"),
                ("-(Plain + 1) < 2", '"-(Plain + 1)" cannot be computed: a uint64 cannot be negated. Write 0 - (Plain + 1) '
                                     "(line 1, column 27)")):
            result = self.validate("--no-live", "-m", path, "SELECT * FROM XYZ_N WHERE " + condition)
            self.assertEqual(result.err, f"qorql: warning: {warning}\n", condition)
        result = self.validate("--no-live", "-m", path, "SELECT * FROM XYZ_N WHERE Small > -9223372036854775808")
        self.assertIn("warning: After a minus 9223372036854775808 fits no type: it stands for another number or null "
                      "(line 1, column 36)\n",
                      result.err)
        for condition in ("Big > 1", "Big = Plain", "Small > -1", "Small < 9223372036854775807", "Rough > 0.5", "Big > -1.5",
                          "Fine = 0.1", "Fine = 1.0e-3", "Rough = Fine"):
            result = self.validate("--no-live", "-m", path, "SELECT * FROM XYZ_N WHERE " + condition)
            self.assertEqual(result.err, "", condition)

    def test_values_that_do_not_compare(self):
        for condition, warning in (
                ("EventID = 5", "EventID is a string and does not compare with a number"),
                ("-5.5 <> EventID", "EventID is a string and does not compare with a number"),
                ("PerceivedSeverity = '5'", "PerceivedSeverity is a uint16 and does not compare with a text"),
                ("IndicationTime > '20240101000000.000000+000'",
                 "IndicationTime is a datetime and does not compare with a text"),
                ("PerceivedSeverity = EventID",
                 "PerceivedSeverity is a uint16 and does not compare with EventID, a string"),
                ("ANY MessageArguments[*] = 5",
                 "MessageArguments is an array of string and does not compare with a number"),
                ("MessageArguments[1] = 5", "MessageArguments is a string and does not compare with a number"),
                ("(EventID = 5)", "EventID is a string and does not compare with a number"),
                ("5 = 'x'", "a number does not compare with a text"),
                ("EventID = 1.5", "EventID is a string and does not compare with a number"),
                ("EventID = 1.5E3", "EventID is a string and does not compare with a number"),
                ("EventID = (1.5E3)", "EventID is a string and does not compare with a number"),
                ("(EventID) = 1.5E3", "EventID is a string and does not compare with a number"),
                ("EventID = 1.5E3 + 1", "EventID is a string and does not compare with a number"),
                ("EventID = -(1.5E3)", "EventID is a string and does not compare with a number"),
                ("PerceivedSeverity + 1 = EventID", "EventID is a string and does not compare with a number"),
                ("PerceivedSeverity = 'a' + 'b'", "PerceivedSeverity is a uint16 and does not compare with a text"),
                ("PerceivedSeverity * 2 = 'a'", "a number does not compare with a text")):
            result = self.validate(ALERT + " WHERE " + condition)
            self.assertIn(f": warning: {warning}: it never matches (line 1, column ", result.err, condition)
        self.warned(ALERT + " AS a WHERE EventID = '' AND a.EventID = 5",
                    "EventID is a string and does not compare with a number: it never matches (line 1, column 63)")

    def test_booleans_and_objects_of_a_named_class(self):
        path = self.write("flag.mof", "class XYZ_Flag { [Key] uint8 Id; boolean On; string Say; "
                                      "[EmbeddedObject] string Held; };\n")
        for condition, warning in (
                ("On = 1", "On is a boolean and does not compare with a number"),
                ("On = 'yes'", "On is a boolean and does not compare with a text but TRUE and FALSE"),
                ("Held = 'x'", "Held is an object and does not compare with a text"),
                ("Held.XYZ_Flag::On > 3", "On is a boolean and does not compare with a number")):
            result = self.validate("-m", path, "SELECT * FROM XYZ_Flag WHERE " + condition)
            self.assertIn(f": warning: {warning}: it never matches", result.err, condition)
        for condition in ("On = TRUE", "'false' = On", "On = Say", "Held = Held", "Held.XYZ_Flag::On = TRUE", "Held.On = 3"):
            self.assertEqual(self.validate("-m", path, "SELECT * FROM XYZ_Flag WHERE " + condition).err, "", condition)

    def test_arrays_and_single_values(self):
        self.warned(ALERT + " WHERE MessageArguments = 'x'",
                    "MessageArguments is an array: it never matches; to ask its elements write ANY MessageArguments[*] "
                    "(line 1, column 41)")
        self.warned(ALERT + " AS a WHERE PerceivedSeverity = 3 AND 'x' = a.MessageArguments",
                    "MessageArguments is an array: it never matches; to ask its elements write ANY a.MessageArguments[*] "
                    "(line 1, column 78)")
        self.warned(ALERT + " WHERE ANY EventID = 'x'",
                    "EventID is not an array, which ANY and EVERY need: it never matches (line 1, column 45)")
        self.warned(ALERT + " WHERE ANY MessageArguments[*] = MessageArguments",
                    "MessageArguments is an array, and an element does not compare with one: it never matches "
                    "(line 1, column 67)")
        self.warned(ALERT + " WHERE MessageArguments > MessageArguments",
                    "arrays have no order: it never matches (line 1, column 41)")

    def test_what_compares_gives_no_warning(self):
        for condition in ("EventID = 'x'", "EventID = TRUE", "PerceivedSeverity = -3", "PerceivedSeverity > 3.5",
                          "5 = PerceivedSeverity", "MessageArguments[0] = 'x'", "ANY MessageArguments[*] = 'x'",
                          "'x' = EVERY MessageArguments", "MessageArguments <> RecommendedActions",
                          "EventTime > IndicationTime", "EventID = MessageID AND (EventID <> '5')",
                          "PerceivedSeverity + 1 = 5", "EventID + 'a' = MessageID", "(EventID) = ('x')",
                          "AlertingManagedElement ISA CIM_FCPort"):
            self.assertEqual(self.validate(ALERT + " WHERE " + condition).err, "", condition)

    def test_a_filter_with_many_of_them(self):
        condition = " AND ".join(["EventID = 5"] * 100000)
        result = self.validate(stdin=ALERT + " WHERE " + condition)
        lines = result.err.splitlines()
        self.assertEqual((result.status, len(lines)), (0, 21))
        self.assertEqual(lines[-1], "qorql: warning: line 1: the rest of the filter is not looked at")

    def test_isa_behind_a_path(self):
        for path in ("SourceInstance.Inner", "SourceInstance.SourceInstance", "CIM_InstCreation::SourceInstance",
                     "CIM_InstCreation.SourceInstance.SourceInstance", "SourceInstance[0]"):
            self.warned(f"SELECT * FROM CIM_InstCreation WHERE {path} ISA CIM_AlertIndication",
                        "ISA asks a property of the instance itself, without path, scope and index: any other never "
                        "matches (line 1, column 38)")
        self.warned("SELECT * FROM CIM_InstCreation AS i WHERE i.Inner ISA CIM_AlertIndication",
                    "Inner is not a property of CIM_InstCreation: it never matches (line 1, column 45)")
        self.warned("SELECT * FROM CIM_InstCreation WHERE 'Source' ISA CIM_AlertIndication",
                    "ISA asks a property of the indication itself, and Source is none: it never matches "
                    "(line 1, column 38)")
        self.warned("SELECT * FROM CIM_InstCreation AS i WHERE i.SourceInstance ISA CIM_AlertIndication AND "
                    "'sourceinstance' ISA CIM_AlertIndication")
        self.warned("SELECT * FROM CIM_InstCreation WHERE 'Source' + 'Instance' ISA CIM_AlertIndication")

    def test_characters_that_the_language_does_not_know(self):
        self.warned(ALERT + " | WHERE EventID = 'a'", "skipped, since the language does not know it: | (line 1, column 35)")
        self.warned(ALERT + " 'open\n WHERE EventID = 'a'", "skipped: a string that is not closed on its line (line 1, column 35)")


class Files(ValidateCase):
    FILTERS = (ALERT + "\r\n\n  SELECT * FROM Nope\n" + ALERT + " WHERE NOT EventID = 'a'\n").encode()
    LINES = ("valid\tCIM_AlertIndication\t*\tline 1\n"
             "invalid\tNope is not a class of root/cimv2 (line 3, column 17)\tline 3\n"
             "valid\tCIM_AlertIndication\t*\tline 4\n")
    WARNING = ("qorql: warning: line 4: a condition under NOT never matches (line 4, column 41)\n"
               "qorql: 3 filters: 2 valid (1 with warnings), 1 invalid\n")

    def test_a_line_for_each_filter(self):
        for option in ("-f", "--file"):
            result = self.validate(option, self.write("filters.txt", b"\xef\xbb\xbf" + self.FILTERS))
            self.assertEqual((result.status, result.out, result.err), (1, self.LINES, self.WARNING))

    def test_standard_input(self):
        result = self.validate(stdin=self.FILTERS)
        self.assertEqual((result.status, result.out, result.err), (1, self.LINES, self.WARNING))

    def test_all_valid(self):
        self.assertEqual(self.succeed(self.validate(stdin=ALERT)), "valid\tCIM_AlertIndication\t*\tline 1\n")

    def test_none(self):
        for arguments, name in (((), "standard input"), (("-f", self.write("none.txt", "# nothing\n")), None)):
            name = name or arguments[1]
            self.refused(self.validate(*arguments, stdin="\n"), 1, f"qorql: error: {name} holds no filter")


class Usage(ValidateCase):
    def wrong(self, *arguments, says):
        result = self.run_tool("validate", *arguments)
        self.assertEqual((result.status, result.out), (2, ""))
        self.assertEqual(result.err.splitlines()[-1], "Try qorql validate --help.")
        self.assertIn(says, result.err)

    def test_wrong_usage(self):
        self.wrong("-f", says="--file")
        self.wrong("-f", "nowhere.txt", says="nowhere.txt")
        self.wrong("-f", SCHEMA, ALERT, says="--file")
        self.wrong("-q", says="--language")
        self.wrong(ALERT, ALERT, says="SELECT")
        self.wrong("--no-such", says="--no-such")

    def test_a_schema_that_fails(self):
        result = self.validate("-m", self.write("bad.mof", "class"), ALERT)
        self.assertEqual((result.status, result.out), (3, ""))

    def test_help(self):
        text = self.succeed(self.run_tool("validate", "--help"))
        for part in ("--language", "--file", "--mof", "Exit status"):
            self.assertIn(part, text)


if __name__ == "__main__":
    toolcase.main()
