"""Enumerations over the wire: all instances once and in order, in portions, by those alone who opened them."""
# SPDX-License-Identifier: Apache-2.0
import signal
import threading

import servercase
from servercase import ServerCase, head_of, request

PUMP = ('<INSTANCENAME CLASSNAME="P_Tank"><KEYBINDING NAME="Name"><KEYVALUE VALUETYPE="string">t2</KEYVALUE>'
        "</KEYBINDING></INSTANCENAME>")


def names(reply):
    """The values of the key in each path."""
    return [one.findtext(".//KEYVALUE") for one in reply.items]


class PullTest(ServerCase):
    def go_on(self, server, reply, operation="PullInstancesWithPath", most=2):
        return self.call(server, operation, EnumerationContext=reply.output("EnumerationContext"), MaxObjectCount=most)

    def all_of(self, server, reply, operation, most=2):
        found = names(reply)
        while reply.output("EndOfSequence") == "FALSE":
            reply = self.go_on(server, reply, operation, most)
            self.assertEqual(reply.error, 0)
            self.assertLessEqual(len(reply.items), most)
            found += names(reply)
        return found

    def test_all_instances_come_in_order(self):
        server = self.serve_plant()
        for operation, pull in (("OpenEnumerateInstances", "PullInstancesWithPath"),
                                ("OpenEnumerateInstancePaths", "PullInstancePaths")):
            for most in (0, 1, 3, 100):
                first = self.call(server, operation, ClassName="P_Thing", MaxObjectCount=most)
                self.assertEqual(len(first.items), min(most, 4))
                self.assertEqual(self.all_of(server, first, pull), ["p1 <&> \"quoted\" 'x'", "t1", "p2", "t2"])

    def test_associations_are_followed(self):
        server = self.serve_plant()
        for operation, tag in (("OpenAssociatorInstances", "VALUE.INSTANCEWITHPATH"),
                               ("OpenAssociatorInstancePaths", "INSTANCEPATH"),
                               ("OpenReferenceInstances", "VALUE.INSTANCEWITHPATH"),
                               ("OpenReferenceInstancePaths", "INSTANCEPATH")):
            reply = self.call(server, operation, InstanceName=PUMP, MaxObjectCount=9)
            self.assertEqual([one.tag for one in reply.items], [tag])
            self.assertEqual(reply.output("EndOfSequence"), "TRUE")
            name = next(reply.items[0].iter("INSTANCENAME")).get("CLASSNAME")
            self.assertEqual(name, "P_FeedsHot" if "Reference" in operation else "P_Pump")

    def test_what_cannot_be_kept_is_refused(self):
        server = self.serve_plant()
        for status, parameters in ((22, {"OperationTimeout": 0}), (26, {"ContinueOnError": True}),
                                   (4, {"MaxObjectCount": "many"}), (4, {"FilterQuery": "x"}),
                                   (14, {"FilterQuery": "x", "FilterQueryLanguage": "DMTF:FQL"}),
                                   (15, {"FilterQuery": "x", "FilterQueryLanguage": "DMTF:CQL"}),
                                   (25, {"FilterQuery": "SELECT * FROM P_Tank", "FilterQueryLanguage": "DMTF:CQL"})):
            reply = self.call(server, "OpenEnumerateInstances", ClassName="P_Thing", **parameters)
            self.assertEqual(reply.error, status, parameters)
        self.assertEqual(self.call(server, "EnumerationCount", EnumerationContext="x").error, 7)
        self.assertEqual(self.call(server, "PullInstancePaths", EnumerationContext="x", MaxObjectCount=1).error, 21)

    def test_a_closed_enumeration_has_ended(self):
        server = self.serve_plant()
        first = self.call(server, "OpenEnumerateInstances", ClassName="P_Thing", MaxObjectCount=1)
        context = first.output("EnumerationContext")
        self.assertEqual(self.call(server, "CloseEnumeration", EnumerationContext=context).error, 0)
        self.assertEqual(self.go_on(server, first).error, 21)
        self.assertEqual(self.call(server, "CloseEnumeration", EnumerationContext=context).error, 21)

    def test_an_enumeration_belongs_to_its_namespace(self):
        server = self.serve_plant()
        first = self.call(server, "OpenEnumerateInstances", ClassName="P_Thing", MaxObjectCount=1)
        elsewhere = self.call(server, "PullInstancesWithPath", "root/empty", MaxObjectCount=1,
                              EnumerationContext=first.output("EnumerationContext"))
        self.assertEqual(elsewhere.error, 21)
        self.assertEqual(self.go_on(server, first).error, 0)

    def test_a_time_that_the_client_asked_for_ends_it(self):
        server = self.serve_plant()
        first = self.call(server, "OpenEnumerateInstances", ClassName="P_Thing", OperationTimeout=1)
        self.assertEqual(self.go_on(server, first, most=1).error, 0)
        threading.Event().wait(1.3)
        self.assertEqual(self.go_on(server, first).error, 21)

    def test_a_client_has_a_number_of_them(self):
        server = self.serve_plant("--limit", "contexts=3")
        opened = [self.call(server, "OpenEnumerateInstances", ClassName="P_Thing") for _ in range(4)]
        self.assertEqual([one.error for one in opened], [0, 0, 0, 27])
        self.all_of(server, opened[0], "PullInstancesWithPath")
        self.assertEqual(self.call(server, "OpenEnumerateInstances", ClassName="P_Thing").error, 0)

    def test_an_enumeration_ends_when_the_classes_are_read_anew(self):
        server = self.serve_plant()
        first = self.call(server, "OpenEnumerateInstances", ClassName="P_Thing", MaxObjectCount=1)
        server.send_signal(signal.SIGHUP)
        for _ in range(200):
            if "read anew" in server.log_text():
                break
            threading.Event().wait(0.05)
        self.assertEqual(self.go_on(server, first).error, 21)

    def test_a_client_that_leaves_in_the_middle_ends_its_enumeration(self):
        many = "".join(f'instance of M {{ Id = {i}; Text = "{"x" * 500}"; }};\n' for i in range(20000))
        model = self.write("many.mof", "Qualifier Key : boolean = false, Scope(property);\n"
                                       "class M { [Key] uint32 Id; string Text; };\n" + many)
        server = self.serve("--no-live", "-m", model, "--limit", "contexts=1")
        body = request("OpenEnumerateInstances", parameters={"ClassName": "M", "MaxObjectCount": 20000})
        connection = self.raw(server)
        connection.send(head_of("OpenEnumerateInstances", len(body)) + body)
        self.assertEqual(connection.read_head()[0], 200)
        connection.close()
        for _ in range(200):
            reply = self.call(server, "OpenEnumerateInstances", ClassName="M")
            if reply.error == 0:
                break
            self.assertEqual(reply.error, 27)
            threading.Event().wait(0.05)
        self.assertEqual(reply.error, 0)


if __name__ == "__main__":
    servercase.main()
