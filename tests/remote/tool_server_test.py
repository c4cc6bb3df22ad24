"""The tool asks one server: what it says, which calls it makes, and how it ends when the server does not do its part."""
# SPDX-License-Identifier: Apache-2.0
import unittest

import faults
import habits
import remotecase
from toolcase import ToolCase

OPEN, PULL, PLAIN, CLASS = "OpenEnumerateInstances", "PullInstancesWithPath", "EnumerateInstances", "GetClass"
PUMPS = "SELECT * FROM P_Pump"


class Answers(ToolCase):
    """Byte for byte what the same MOF gives locally."""

    def test_statements(self):
        server = self.serve()
        for form in ("table", "csv", "json", "xml", "mof"):
            self.assert_as_local(server, "-o", form, "SELECT Name, Level, Remarks FROM P_Pump ORDER BY Name")
        for statement in (PUMPS, "SELECT * FROM P_Thing", "SELECT * FROM P_Feeds", "SELECT * FROM P_Cell",
                          "SELECT COUNT(Name) FROM P_Thing", "SELECT Name FROM P_Thing WHERE P_Thing ISA P_Tank",
                          "SELECT p.Name, t.Name FROM P_Pump AS p, P_Tank AS t WHERE P_Feeds = p AND P_Feeds = t",
                          "SELECT OBJECTPATH(p) FROM P_Thing AS p", "SELECT Nam FROM P_Pump", "SELECT * FROM P_Pomp",
                          "SELECT Name FROM"):
            self.assert_as_local(server, "-o", "json", statement)

    def test_commands(self):
        server = self.serve()
        for arguments in (("classes",), ("classes", "-l"), ("classes", "pump"), ("class", "--alone", "P_Tank"),
                          ("describe", "P_Pump"), ("instances", "P_Thing"), ("instances", "P_*"), ("instances", "P_X"),
                          ("get", 'P_Tank.Name="t1"'), ("get", "-o", "json", 'P_Thing.Name="p2"'),
                          ("get", 'P_Tank.Name="none"'), ("contents", "-n", "root/cimv2")):
            self.assert_as_local(server, *arguments)

    def test_server_of_old_or_with_habits(self):
        for habit in sorted({*habits.NAMES} - habits.ENDLESS):
            server = self.serve(habits={habit})
            for statement in (PUMPS, "SELECT * FROM P_Cell", "SELECT * FROM P_Feeds",
                              "SELECT p.Name, t.Name FROM P_Pump AS p, P_Tank AS t WHERE P_Feeds = p AND P_Feeds = t"):
                self.assert_as_local(server, "-o", "json", statement)
        for status in (1, 7):
            self.assert_as_local(self.serve(pull_status=status), PUMPS)
        self.assert_as_local(self.serve(chunked=True, gzip=False), PUMPS)
        self.assert_as_local(self.serve(keep_alive=False), PUMPS)

    def test_namespace(self):
        server = self.serve()
        self.assert_done(self.ask(server, "classes", "-n", "root/empty"), "E_Nothing\n")
        self.assert_fails(self.ask(server, "-n", "root/none", "SELECT * FROM E_Nothing"),
                          r"GetClass of E_NOTHING in root/none: CIM_ERR_INVALID_NAMESPACE \(3\)")

    def test_mof_beside_a_server(self):
        owners = self.write("owners.mof", "Qualifier Key : boolean = false, Scope(property);\n"
                            'class Owner { [Key] string Pump; string Who; };\n'
                            'instance of Owner { Pump = "p2"; Who = "Ada"; };\n')
        done = self.ask(self.serve(), "-m", owners, "-o", "csv",
                        "SELECT o.Who, p.Level FROM P_Pump AS p, Owner AS o WHERE o.Pump = p.Name")
        self.assert_done(done, "Who,Level\nAda,0\n")

    def test_address_of_ipv6(self):
        self.assert_as_local(self.serve(address="::1"), PUMPS)


class Calls(ToolCase):
    """What is asked, and how often."""

    def told(self, server, *arguments):
        self.assertEqual(self.ask(server, *arguments).status, 0)
        calls = server.told()
        server.calls.clear()
        return calls

    def test_class_with_its_superclasses_and_one_enumeration(self):
        calls = self.told(self.serve(), "SELECT Name FROM P_Tank")
        self.assertEqual(calls, [(CLASS, "P_TANK"), (CLASS, "P_Thing"), (OPEN, "P_Tank")])

    def test_only_what_the_statement_uses_is_asked_for(self):
        server = self.serve(keeps_replies=True)
        self.told(server, "SELECT Level FROM P_BigPump WHERE Turns IS NULL")
        self.ask(server, "SELECT Level FROM P_BigPump WHERE Turns IS NULL")
        reply = next(call.reply for call in server.calls if call.operation == OPEN).decode()
        self.assertIn('NAME="Level"', reply)
        self.assertNotIn('PROPERTY NAME="Place"', reply)

    def test_batches(self):
        calls = self.told(self.serve(), "--batch", "1", "SELECT Name FROM P_Tank")
        self.assertEqual([call for call in calls if call[0] != CLASS][:2], [(OPEN, "P_Tank"), (PULL, "")])

    def test_server_without_batches_is_asked_once_only(self):
        calls = self.told(self.serve(pull_status=7), "SELECT Name FROM P_Tank; SELECT Name FROM P_Pump")
        self.assertEqual([call for call in calls if call[0] != CLASS],
                         [(OPEN, "P_Tank"), (PLAIN, "P_Tank"), (PLAIN, "P_Pump")])

    def test_classes_are_kept(self):
        calls = self.told(self.serve(), "SELECT Name FROM P_Tank; SELECT Place FROM P_Tank")
        self.assertEqual(sum(call[0] == CLASS for call in calls), 2)

    def test_one_connection_for_declarations_and_one_for_instances(self):
        server = self.serve()
        self.ask(server, "SELECT Name FROM P_Pump; SELECT Name FROM P_Tank")
        self.assertEqual(len({call.connection for call in server.calls}), 2)

    def test_many_whole_instances_are_fetched_at_once(self):
        many = "".join(f'instance of Q_Disk {{ Id = "{i}"; Size = {i}; Note = "n{i}"; }};\n' for i in range(40))
        mof = self.write("many.mof", "Qualifier Key : boolean = false, Scope(property, reference);\n"
                         "class Q_Disk { [Key] string Id; uint32 Size; string Note; };\n" + many)
        server = self.serve(mof)
        for least, calls in ((37, [(OPEN, "Q_Disk"), *3 * [("GetInstance", "Q_Disk")]]),
                             (0, [(OPEN, "Q_Disk"), *3 * [("GetInstance", "Q_Disk")], (OPEN, "Q_Disk")])):
            query = f"SELECT INSTANCEOF(OBJECTPATH(d)) FROM Q_Disk AS d WHERE d.Size >= {least}"
            local = self.run_tool("--no-live", "-m", mof, "-o", "json", query)
            server.calls.clear()
            done = self.ask(server, "-o", "json", query)
            self.assertEqual((done.status, done.out, done.err), (0, local.out, local.err))
            self.assertEqual([call for call in server.told() if call[0] != CLASS], calls)

    def test_association_of_many_sources_is_asked_for_once(self):
        things = "".join(f'instance of Q_Disk as $d{i} {{ Id = "{i}"; }};\ninstance of Q_Pool as $p{i} {{ Id = "{i}"; }};\n'
                         f"instance of Q_In {{ Disk = $d{i}; Pool = $p{i}; }};\n" for i in range(93))
        mof = self.write("many.mof", "Qualifier Key : boolean = false, Scope(property, reference);\n"
                         "Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);\n"
                         "class Q_Disk { [Key] string Id; };\nclass Q_Pool { [Key] string Id; };\n"
                         "[Association] class Q_In { [Key] Q_Disk REF Disk; [Key] Q_Pool REF Pool; };\n" + things)
        server = self.serve(mof)
        done = self.ask(server, "-o", "csv", "SELECT d.Id, p.Id FROM Q_Disk AS d, Q_Pool AS p WHERE Q_In = d AND Q_In = p")
        self.assertEqual((done.status, done.err, len(done.out.splitlines())), (0, "", 94))
        asked = [call for call in server.told() if call[0] == OPEN]
        self.assertEqual(len(asked), len(set(asked)), asked)
        self.assertFalse([call for call in server.told() if call[0] not in (OPEN, CLASS)])


class Told(ToolCase):
    """What is told of calls, before and after them."""

    JOIN = "SELECT p.Name, t.Name FROM P_Pump AS p, P_Tank AS t WHERE P_Feeds = p AND P_Feeds = t"

    def test_explanation(self):
        server = self.serve()
        name = f"127.0.0.1:{server.port}"
        self.assert_done(self.ask(server, "explain", "SELECT Name FROM P_Pump WHERE Level > 3"),
                         " 1  fetch      P_Pump: Name, Level\n 2  filter     Level > 3\n 3  select     Name\n"
                         f"    note: asks {name}: OpenEnumerateInstances of P_Pump in batches of 1000\n")
        done = self.ask(server, "explain", "--batch", "7", self.JOIN)
        self.assertIn("(once, for all P_Pump, through P_Feeds)", done.out)
        for asked in ("P_Pump", "P_Feeds", "P_Tank"):
            self.assertIn(f"note: asks {name}: OpenEnumerateInstances of {asked} in batches of 7\n", done.out)
        self.assertFalse([call for call in server.told() if call[0] == OPEN])

    def test_statistics(self):
        server = self.serve()
        done = self.ask(server, "--stats", "SELECT Name FROM P_Tank")
        name = rf"127\.0\.0\.1:{server.port}"
        self.assertRegex(done.err, rf"qorql: call: {name} GetClass P_TANK: items=1 sent=\d{{3}} received=\d{{3,}} time=\S+ms\n"
                                   rf"qorql: call: {name} GetClass P_Thing: .*\n"
                                   rf"qorql: call: {name} OpenEnumerateInstances P_Tank: items=2 sent=\d+ received=\d+ time=")

    def test_what_the_explanation_says_is_what_is_asked(self):
        server = self.serve()
        told = self.ask(server, "explain", self.JOIN).out
        server.calls.clear()
        self.ask(server, self.JOIN)
        asked = sorted({call[1] for call in server.told() if call[0] == OPEN})
        self.assertEqual(asked, sorted(word.split()[0] for word in told.split("OpenEnumerateInstances of ")[1:]))


class PushDown(ToolCase):
    QUERY = "SELECT Name, Litres FROM P_Tank WHERE Litres > 100 AND Name LIKE '%' AND 't1' = Name"

    def test_server_that_knows_a_language_filters_first(self):
        for language in ("DMTF:CQL", "CQL", "WQL"):
            server = self.serve(queries=(language,))
            self.assert_as_local(server, self.QUERY)
            server.calls.clear()
            done = self.ask(server, "--push-down", "--stats", self.QUERY)
            self.assertEqual((done.status, done.out), (0, self.local(self.QUERY).out))
            self.assertIn("ExecQuery P_Tank: items=1 ", done.err)
            self.assertFalse([call for call in server.told() if call[0] == OPEN])

    def test_server_without_queries_sends_everything(self):
        for server in (self.serve(), self.serve(queries=("OTHER",))):
            done = self.ask(server, "--push-down", self.QUERY + "; " + self.QUERY)
            self.assert_done(done, self.local(self.QUERY + "; " + self.QUERY).out)

    def test_only_conditions_that_every_row_must_satisfy(self):
        server = self.serve(queries=("DMTF:CQL",))
        for where, pushed in (("Litres > 100 AND Place IS NULL", "Litres > 100"), ("Litres > 100 OR Name = 't1'", None),
                              ("NOT (Litres > 100)", None), ("100 < Litres", "Litres > 100"), ("Name > 'a'", None),
                              ("Litres - 1 > 3", None), ("(Litres > 3) AND (Name = 't2')", "Litres > 3 AND Name = 't2'")):
            query = f"SELECT Name FROM P_Tank WHERE {where}"
            done = self.ask(server, "--push-down", query)
            self.assertEqual((done.status, done.out, done.err), (0, self.local(query).out, ""), where)
            note = self.ask(server, "explain", "--push-down", query).out
            wanted = "OpenEnumerateInstances of P_Tank" if pushed is None else f"ExecQuery of P_Tank WHERE {pushed}\n"
            self.assertIn(wanted, note)

    def test_without_the_option_nothing_is_pushed(self):
        server = self.serve(queries=("DMTF:CQL",))
        self.ask(server, self.QUERY)
        self.assertNotIn("ExecQuery", [call[0] for call in server.told()])


class Faults(ToolCase):
    """Each ends in time with a message of its own, and without rows."""

    MESSAGES = {
        "400": r"HTTP status 400, request-not-valid", "401": r"HTTP status 401: the server wants to know who asks",
        "403": r"HTTP status 403: the server refuses this user", "404": r"HTTP status 404: there is no such page",
        "500": r"HTTP status 500", "503": r"HTTP status 503",
        "broken": r"reset by peer", "broken-later": r"reset by peer",
        "control-character": r"not well-formed .* at line 2, column \d+",
        "control-reference": r"invalid character number at line 2, column \d+",
        "cut": r"closed with \d+ bytes remaining", "cut-chunks": r"closed with outstanding",
        "cut-gzip": r"ends too early at line", "cut-whole": r"ends too early at line 3, column \d+",
        "deep": r"VALUE.OBJECT is not allowed", "doctype": r"a DOCTYPE is not accepted at line 2",
        "dropped": r"Empty reply from server", "empty": r"ends too early at line 1, column 1",
        "endless-headers": r"Too large response headers", "entity": r"undefined entity at line 2",
        "garbage": r"Received HTTP/0.9", "ill-formed-utf8": r"not well-formed .* at line 2",
        "long-length": r"closed with 1000 bytes remaining",
        "no-end-of-sequence": r"does not say whether it is the last one",
        "other-id": r'the reply is to message "other", expected "3"',
        "other-operation": r"the reply is to DeleteClass, expected OpenEnumerateInstances",
        "out-of-range": r'found "9+" for Level, expected a uint8', "page": r"not well-formed XML: syntax error at line 1",
        "redirect": r"HTTP status 302: a redirection to http://elsewhere.invalid/cimom, which is not followed",
        "redirect-loop": r"HTTP status 307: a redirection to \S+, which is not followed",
        "short-length": r"ends too early at line", "trailing": r"the document goes on after its end",
        "wrong-chunk": r"hexadecimal sequence in chunked-encoding", "wrong-gzip": r"content unencoding",
        "wrong-tag": r"mismatched tag at line 3", "wrong-value": r'found "many" for Level, expected a uint8',
        "bomb": r"the compressed reply grows without measure",
    }
    STOPPED = ("endless", "silence", "silence-later", "slow", "slow-headers")
    HARMLESS = ("501", "embedded-class", "long-text", "no-length", "other-version")

    def test_all_kinds_are_known(self):
        self.assertEqual(sorted([*self.MESSAGES, *self.STOPPED, *self.HARMLESS]), faults.NAMES)

    def test_reply_that_cannot_be_read(self):
        for kind, message in self.MESSAGES.items():
            server = self.serve()
            self.fail_with(server, kind, OPEN)
            done = self.ask(server, PUMPS)
            self.assert_fails(done, rf"^qorql: error: 127\.0\.0\.1:{server.port}: OpenEnumerateInstances of P_Pump in "
                                    rf"root/cimv2: .*{message}.* \(CIM status 1\)\n$")
            self.assertLess(done.seconds, 20, kind)

    def test_fault_of_a_class(self):
        for kind in ("cut", "doctype", "500", "dropped"):
            server = self.serve()
            self.fail_with(server, kind, CLASS, "P_Thing")
            self.assert_fails(self.ask(server, PUMPS), rf"GetClass of P_Thing in root/cimv2: .*{self.MESSAGES[kind][:6]}")

    def test_server_that_takes_too_long(self):
        for kind in self.STOPPED:
            server = self.serve()
            self.fail_with(server, kind, OPEN)
            done = self.ask(server, "--timeout", "1", PUMPS)
            self.assert_fails(done, r"OpenEnumerateInstances of P_Pump in root/cimv2: the call was stopped after 1 second "
                                    r"\(--timeout\) \(CIM status 1\)\n$")
            self.assertLess(done.seconds, 10, kind)

    def test_silent_class(self):
        server = self.serve()
        self.fail_with(server, "silence", CLASS)
        self.assert_fails(self.ask(server, "--timeout", "1", PUMPS), "GetClass of P_PUMP .* was stopped after 1 second")

    def test_call_that_is_silent_is_given_up(self):
        server = self.serve()
        self.fail_with(server, "silence", OPEN)
        done = self.ask(server, "--call-timeout", "1", PUMPS)
        self.assert_fails(done, r"OpenEnumerateInstances of P_Pump in root/cimv2: the server sent fewer than 100 bytes a second for 1 second")
        self.assertLess(done.seconds, 20)

    def test_oddities_that_are_no_fault(self):
        for kind in self.HARMLESS:
            server = self.serve()
            self.fail_with(server, kind, OPEN)
            self.assert_done(self.ask(server, PUMPS))

    def test_class_as_a_value(self):
        server = self.serve()
        self.fail_with(server, "embedded-class", OPEN)
        done = self.ask(server, "-o", "json", "SELECT Note FROM P_Pump WHERE Note IS NOT NULL")
        self.assert_done(done)
        self.assertIn('{"Note": {"Name": null, "Place": "hall \\"A\\"", "Litres": null}}', done.out)
        self.assertIn("class P_Tank : P_Thing {", self.ask(server, "-o", "mof", "SELECT Note FROM P_Pump").out)

    def test_later_batch_that_fails_gives_no_half_result(self):
        server = self.serve()
        self.fail_with(server, "cut-whole", PULL)
        done = self.ask(server, "--batch", "1", "SELECT Name FROM P_Thing")
        self.assert_fails(done, "PullInstancesWithPath of P_Thing in root/cimv2: the document ends too early")
        self.assertIn("CloseEnumeration", [call[0] for call in server.told()])

    def test_silent_server_is_not_asked_to_close(self):
        server = self.serve()
        self.fail_with(server, "silence", PULL)
        done = self.ask(server, "--batch", "1", "--call-timeout", "1", "SELECT Name FROM P_Thing")
        self.assert_fails(done, "PullInstancesWithPath of P_Thing in root/cimv2: the server sent fewer than 100 bytes a second for 1 second")
        self.assertNotIn("CloseEnumeration", [call[0] for call in server.told()])

    def test_batches_without_end_are_given_up(self):
        for query in ("SELECT Name FROM P_Thing", "SELECT Name FROM P_Tank"):
            server = self.serve(habits={"same-batches"})
            done = self.ask(server, "--batch", "2", query)
            self.assert_fails(done, r"PullInstancesWithPath of P_T\w+ in root/cimv2: the server sends the same instances "
                                    r"again and again \(CIM status 1\)\n$")
            self.assertLess(len(server.calls), 40)
            self.assertIn("CloseEnumeration", [call[0] for call in server.told()])

    def test_new_batches_without_end_are_bounded_by_time(self):
        server = self.serve(habits={"new-batches"})
        done = self.ask(server, "--batch", "2", "--timeout", "1", "SELECT Name FROM P_Tank")
        self.assert_fails(done, r"of P_Tank in root/cimv2: the call was stopped after 1 second \(--timeout\)")
        self.assertGreater(len(server.calls), 20)
        self.assertLess(done.seconds, 10)

    def test_trickle_is_given_up(self):
        """Ten bytes a second are next to nothing."""
        for kind in ("slow", "slow-headers"):
            server = self.serve()
            self.fail_with(server, kind, OPEN)
            done = self.ask(server, "--call-timeout", "1", PUMPS)
            self.assert_fails(done, r"OpenEnumerateInstances of P_Pump in root/cimv2: the server sent fewer than 100 bytes a second for 1 second")
            self.assertLess(done.seconds, 4, kind)

    def test_status_of_the_server(self):
        server = self.serve(refused={OPEN: 2})
        self.assert_fails(self.ask(server, PUMPS), r"P_Pump in root/cimv2: CIM_ERR_ACCESS_DENIED \(2\).*\(CIM status 2\)\n$")

    def test_nobody_there(self):
        server = self.serve()
        server.close()
        self.assert_fails(self.ask(server, PUMPS), "GetClass of P_PUMP in root/cimv2: .*connect")


if __name__ == "__main__":
    remotecase.main()
