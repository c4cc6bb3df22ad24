"""A server that asks others: it answers what they do, and no reply lacks what one of them has without a word."""
# SPDX-License-Identifier: Apache-2.0
import re

import servercase
from servercase import ServerCase

MODEL = 'class T_A { [Key] string Id; };\ninstance of T_A { Id = "%s"; };\n'

# More neighbours than are asked for one by one, and others of a class of their own.
PIPES = """
class T_Thing { [Key] string Id; };
class T_Pump : T_Thing { uint32 Power; };
class T_Tank : T_Thing { string Name; };
[Association] class T_Feeds { [Key] T_Pump REF Source; [Key] T_Tank REF Sink; string Pipe; };
[Association] class T_FeedsHot : T_Feeds { uint8 Degrees; };
[Association] class T_Near { [Key] T_Thing REF One; [Key] T_Thing REF Other; };
instance of T_Pump as $p { Id = "p"; Power = 5; };
instance of T_Pump as $q { Id = "q"; };
instance of T_Tank as $t { Id = "t"; Name = "first"; };
instance of T_Tank as $u { Id = "u"; };
instance of T_Tank as $v { Id = "v"; };
instance of T_Tank as $w { Id = "w"; };
instance of T_Feeds { Source = $p; Sink = $t; Pipe = "x"; };
instance of T_FeedsHot { Source = $p; Sink = $u; Degrees = 80; };
instance of T_Feeds { Source = $p; Sink = $v; };
instance of T_Feeds { Source = $p; Sink = $w; };
instance of T_Near { One = $t; Other = $u; };
"""

SPACES = """
#pragma namespace("root/other")
class T_B { [Key] string Id; string Name; };
instance of T_B { Id = "b"; Name = "far"; };
#pragma namespace("root/interop")
class T_C { [Key] string Id; };
instance of T_C { Id = "c"; };
#pragma namespace("root/cimv2")
class T_A { [Key] string Id; };
class T_B { [Key] string Id; };
class T_C { [Key] string Id; };
[Association] class T_Far { [Key] T_A REF Here; [Key] T_B REF There; };
[Association] class T_Hidden { [Key] T_A REF Here; [Key] T_C REF There; };
instance of T_A { Id = "a"; };
instance of T_A { Id = "hidden"; };
instance of T_Far { Here = "T_A.Id=\\"a\\""; There = "root/other:T_B.Id=\\"b\\""; };
instance of T_Hidden { Here = "T_A.Id=\\"hidden\\""; There = "root/interop:T_C.Id=\\"c\\""; };
"""


def path(class_name, key):
    return (f'<INSTANCENAME CLASSNAME="{class_name}"><KEYBINDING NAME="Id"><KEYVALUE VALUETYPE="string" TYPE="string">'
            f"{key}</KEYVALUE></KEYBINDING></INSTANCENAME>")


def told(reply):
    """What a reply holds, whoever tells it."""
    if reply.error:
        return reply.error
    text = re.sub("<HOST>[^<]*</HOST>", "", reply.body.decode())
    text = re.sub('<PROPERTY NAME="__SERVER" TYPE="string"><VALUE>[^<]*</VALUE></PROPERTY>', "", text)
    # References of a named server have its name.
    for kind in ("INSTANCEPATH", "NAMESPACEPATH"):
        text = re.sub(f"<{kind}>|</{kind}>|<LOCAL{kind}>|</LOCAL{kind}>", "", text)
    return re.sub('<PARAMVALUE NAME="EnumerationContext".*?</PARAMVALUE>', "", text)


class GatewayTest(ServerCase):
    def serve_two(self, *models):
        behind = [self.serve("--no-live", "-m", self.write(f"{number}.mof", mof)) for number, mof in enumerate(models)]
        return behind, self.serve("--no-live", "--server", f"one={behind[0].url}", "--server", f"two={behind[1].url}")

    def test_associations_of_any_class_are_those_that_the_server_has(self):
        mof = self.write("pipes.mof", PIPES)
        behind = self.serve("--no-live", "-m", mof)
        other = self.serve("--no-live", "-m", self.write("other.mof", MODEL % "z"))
        gateways = [self.serve("--no-live", "--server", behind.url),
                    self.serve("--no-live", "--server", f"one={behind.url}", "--server", f"two={other.url}")]
        direct, *through = [self.client(server) for server in (behind, *gateways)]
        for operation, source, more in self.association_calls():
            name = "InstanceName" if operation.startswith("Open") else "ObjectName"
            parameters = {name: path(*source), **more}
            expected = told(self.judged(direct.call(operation, **parameters)))
            for client in through:
                self.assertEqual(told(self.judged(client.call(operation, **parameters))), expected,
                                 (operation, source, more))

    @staticmethod
    def association_calls():
        sources = (("T_Pump", "p"), ("T_Pump", "q"), ("T_Tank", "u"), ("T_Tank", "none"))
        choices = ({}, {"ResultClass": "T_Tank"}, {"ResultClass": "T_Thing"}, {"Role": "Sink"}, {"ResultRole": "Other"},
                   {"AssocClass": "T_Feeds"}, {"PropertyList": ["Id", "Name"]})
        for source in sources:
            for more in choices:
                for operation in ("Associators", "AssociatorNames"):
                    if operation == "Associators" or "PropertyList" not in more:
                        yield operation, source, more
            for more in ({}, {"ResultClass": "T_FeedsHot"}, {"Role": "Sink"}):
                yield "References", source, more
                yield "ReferenceNames", source, more
            yield "References", source, {"PropertyList": ["Pipe"]}
            for operation in ("OpenAssociatorInstances", "OpenAssociatorInstancePaths", "OpenReferenceInstances",
                              "OpenReferenceInstancePaths"):
                yield operation, source, {"MaxObjectCount": 100}

    def test_ends_of_associations_in_other_namespaces_are_found_or_told(self):
        behind = self.serve("--no-live", "-m", self.write("spaces.mof", SPACES))
        gateway = self.serve("--no-live", "--server", behind.url)
        direct, through = self.client(behind), self.client(gateway)
        for operation in ("Associators", "AssociatorNames"):
            for more in ({}, {"AssocClass": "T_Far"}):
                expected = told(self.judged(direct.call(operation, ObjectName=path("T_A", "a"), **more)))
                self.assertIn('CLASSNAME="T_B"', expected)
                found = self.judged(through.call(operation, ObjectName=path("T_A", "a"), **more))
                self.assertEqual(told(found), expected, (operation, more))
            for more in ({}, {"AssocClass": "T_Hidden"}):
                cut = self.judged(through.call(operation, ObjectName=path("T_A", "hidden"), **more))
                self.assertEqual(cut.error, 1, "the interop namespace is the gateway's own")
                self.assertIn(b"root/interop:T_C.", cut.body)

    def test_a_server_that_is_gone_is_told_in_place_of_fewer_instances(self):
        behind, gateway = self.serve_two(MODEL % "one", MODEL % "two")
        whole = self.judged(self.client(gateway).call("EnumerateInstances", ClassName="T_A"))
        self.assertEqual((whole.error, whole.body.count(b"VALUE.NAMEDINSTANCE>")), (0, 4))
        behind[1].stop()
        for operation, parameters in (("EnumerateInstances", {"ClassName": "T_A"}),
                                      ("ExecQuery", {"QueryLanguage": "DMTF:CQL", "Query": "SELECT Id FROM T_A"})):
            cut = self.judged(self.client(gateway).call(operation, **parameters))
            self.assertEqual(cut.error, 1, operation)
            self.assertIn(b"two: ", cut.body, operation)


if __name__ == "__main__":
    servercase.main()
