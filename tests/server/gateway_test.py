"""A server that asks others: it answers what they do, and no reply lacks what one of them has without a word."""
# SPDX-License-Identifier: Apache-2.0
import os
import re

import servercase
from servercase import ServerCase

MODEL = 'class T_A { [Key] string Id; };\ninstance of T_A { Id = "%s"; };\n'

# Two servers with the same paths and other values.
TWINS = """
class T_A { [Key] string Id; uint32 N; };
class T_B : T_A { };
[Association] class T_Ab { [Key] T_A REF Here; [Key] T_B REF There; };
instance of T_A as $a { Id = "a1"; N = %d; };
instance of T_B as $b { Id = "%s"; };
instance of T_Ab { Here = $a; There = $b; };
"""

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


def hosted(host, class_name, key, namespace="root/cimv2"):
    return (f"<VALUE.REFERENCE><INSTANCEPATH><NAMESPACEPATH><HOST>{host}</HOST>"
            f"{servercase.namespace_path(namespace)}</NAMESPACEPATH>{path(class_name, key)}</INSTANCEPATH></VALUE.REFERENCE>")


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

    def test_a_namespace_that_is_nowhere_is_asked_for_once_in_a_while(self):
        behind = self.serve("--no-live", "-m", self.write("a.mof", MODEL % "a"))
        gateway = self.serve("--no-live", "--server", behind.url)
        for operation, more in (("EnumerateClassNames", {}), ("GetClass", {"ClassName": "T_A"}),
                                ("EnumerateInstances", {"ClassName": "T_A"}), ("EnumerateClassNames", {})):
            self.assertEqual(self.call(gateway, operation, "root/none", **more).error, 3, operation)
        self.assertEqual(self.call(gateway, "EnumerateInstanceNames", ClassName="T_A").error, 0)
        asked = [line["operation"] for line in behind.log() if line.get("namespace") == "root/none"]
        self.assertEqual(asked, ["EnumerateClassNames"])

    def test_a_path_with_the_host_of_a_server_is_of_that_server(self):
        behind, gateway = self.serve_two(TWINS % (1, "first"), TWINS % (100, "second"))
        client = self.client(gateway)
        for host, number, other in (("one", "1", "first"), ("TWO", "100", "second")):
            found = self.judged(client.call("GetInstance", InstanceName=hosted(host, "T_A", "a1"), LocalOnly=False))
            self.assertEqual(found.tree.findtext(".//PROPERTY[@NAME='N']/VALUE"), number)
            for operation, parameter in (("AssociatorNames", "ObjectName"),
                                         ("OpenAssociatorInstancePaths", "InstanceName")):
                more = {"MaxObjectCount": 9} if operation.startswith("Open") else {}
                found = self.judged(client.call(operation, **{parameter: hosted(host, "T_A", "a1")}, **more))
                self.assertEqual([one.text for one in found.tree.iter("KEYVALUE")], [other], operation)
        nobody = self.judged(client.call("GetInstance", InstanceName=hosted("one", "T_B", "second")))
        self.assertEqual(nobody.error, 6)

    def test_a_path_that_several_servers_have_is_refused_by_their_names(self):
        behind, gateway = self.serve_two(TWINS % (1, "first"), TWINS % (100, "second"))
        client = self.client(gateway)
        for operation, parameter in (("GetInstance", "InstanceName"), ("Associators", "ObjectName"),
                                     ("ReferenceNames", "ObjectName")):
            cut = self.judged(client.call(operation, **{parameter: path("T_A", "a1")}))
            self.assertEqual(cut.error, 1, operation)
            self.assertIn(b"is there on several servers: one, two", cut.body)
            self.assertEqual(self.judged(client.call(operation, **{parameter: path("T_B", "second")})).error, 0)

    def test_what_others_have_is_not_changed_here(self):
        behind = self.serve("--no-live", "-m", self.write("one.mof", TWINS % (1, "first")))
        own = self.write("own.mof", 'class T_Own { [Key] string Id; string Name; }; instance of T_Own { Id = "o"; };')
        gateway = self.serve("--no-live", "--writable", "-m", own, "--server", f"one={behind.url}")
        client = self.client(gateway)
        for name in (path("T_A", "a1"), hosted("one", "T_A", "a1")):
            self.assertEqual(self.judged(client.call("DeleteInstance", InstanceName=name)).error, 7)
        changed = ('<VALUE.NAMEDINSTANCE>%s<INSTANCE CLASSNAME="T_A"><PROPERTY NAME="N" TYPE="uint32"><VALUE>2</VALUE>'
                   "</PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>")
        self.assertEqual(self.judged(client.call("ModifyInstance", ModifiedInstance=changed % path("T_A", "a1"))).error, 7)
        self.assertEqual(self.judged(client.call("DeleteInstance", InstanceName=hosted("one", "T_Own", "o"))).error, 6)
        self.assertEqual(self.judged(client.call("DeleteInstance", InstanceName=path("T_Own", "o"))).error, 0)

    def test_namespaces_of_all_servers_are_told_and_answered(self):
        spaces = 'class T_A { [Key] string Id; }; instance of T_A { Id = "%s"; };'
        behind, gateway = self.serve_two(f'#pragma namespace("root/first")\n{spaces % "one"}',
                                         f'#pragma namespace("Root/Second")\n{spaces % "two"}')
        client = self.client(gateway)
        for operation in ("EnumerateInstances", "EnumerateInstanceNames"):
            found = self.judged(client.call(operation, "root/interop", ClassName="CIM_Namespace"))
            names = [key.findtext("KEYVALUE") for key in found.tree.iter("KEYBINDING") if key.get("NAME") == "Name"]
            self.assertEqual(names, ["root/cimv2", "root/interop", "root/first", "Root/Second"])
        for namespace, key in (("root/first", "one"), ("root/second", "two")):
            found = self.judged(client.call("EnumerateInstances", namespace, ClassName="T_A"))
            self.assertEqual([one.text for one in found.tree.iter("KEYVALUE")], [key])
            self.assertEqual(len(self.judged(client.call("EnumerateClassNames", namespace)).items), 1)
            query = {"QueryLanguage": "DMTF:CQL", "Query": "SELECT Id FROM T_A"}
            self.assertEqual(len(self.judged(client.call("ExecQuery", namespace, **query)).items), 1)
        for namespace in ("root/third", "interop"):
            self.assertEqual(self.judged(client.call("EnumerateInstances", namespace, ClassName="T_A")).error, 3)
        behind[1].stop()
        again = self.judged(client.call("EnumerateInstanceNames", "root/interop", ClassName="CIM_Namespace"))
        self.assertEqual(len(again.items), 4)
        cut = self.judged(client.call("EnumerateInstances", "root/first", ClassName="T_A"))
        self.assertEqual(cut.error, 1, "whether it has some is not known")

    def test_the_namespace_of_a_profile_stands_for_that_of_the_gateway_alone(self):
        spaces = 'class T_A { [Key] string Id; }; instance of T_A { Id = "%s"; };'
        behind = [self.serve("--no-live", "-m", self.write(f"{number}.mof", mof)) for number, mof in enumerate(
            (spaces % "one", f'#pragma namespace("root/far")\n{spaces % "two"}'))]
        os.makedirs(os.path.join(self.folder, ".config", "qorql"))
        profile = os.path.join(self.folder, ".config", "qorql", "servers.ini")
        for namespace, status in (("root/far", 0), ("root/gone", 3)):
            with open(profile, "w", encoding="utf-8") as file:
                file.write(f"[two]\nurl = {behind[1].url}\nnamespace = {namespace}\n")
            client = self.client(self.serve("--no-live", "--server", f"one={behind[0].url}", "--server", "two"))
            found = self.judged(client.call("EnumerateInstances", ClassName="T_A"))
            self.assertEqual(found.error, status)
            self.assertEqual(self.judged(client.call("EnumerateClassNames", "root/bogus")).error, 3)
            if status == 0:
                self.assertEqual([one.text for one in found.tree.iter("KEYVALUE")], ["one", "two"])
                self.assertEqual(self.judged(client.call("EnumerateInstances", "root/bogus", ClassName="T_A")).error, 3)
                far = self.judged(client.call("EnumerateInstances", "root/far", ClassName="T_A"))
                self.assertEqual([one.text for one in far.tree.iter("KEYVALUE")], ["two"])

    def test_a_server_that_is_gone_is_told_in_place_of_fewer_instances(self):
        behind, gateway = self.serve_two(MODEL % "one", MODEL % "two")
        whole = self.judged(self.client(gateway).call("EnumerateInstances", ClassName="T_A"))
        self.assertEqual((whole.error, whole.body.count(b"VALUE.NAMEDINSTANCE>")), (0, 4))
        behind[1].stop()
        for operation, parameters in (("EnumerateInstances", {"ClassName": "T_A"}),
                                      ("EnumerateInstanceNames", {"ClassName": "T_A"}),
                                      ("OpenEnumerateInstances", {"ClassName": "T_A", "MaxObjectCount": 9}),
                                      ("EnumerateClassNames", {}), ("EnumerateClasses", {}),
                                      ("GetInstance", {"InstanceName": path("T_A", "one")}),
                                      ("Associators", {"ObjectName": path("T_A", "one")}),
                                      ("ReferenceNames", {"ObjectName": path("T_A", "one")}),
                                      ("Associators", {"ObjectName": hosted("two", "T_A", "two")}),
                                      ("ExecQuery", {"QueryLanguage": "DMTF:CQL", "Query": "SELECT Id FROM T_A"})):
            cut = self.judged(self.client(gateway).call(operation, **parameters))
            self.assertEqual(cut.error, 1, operation)
            self.assertIn(b"two: ", cut.body, operation)
        for operation in ("GetInstance", "AssociatorNames"):
            parameter = "InstanceName" if operation == "GetInstance" else "ObjectName"
            alone = self.judged(self.client(gateway).call(operation, **{parameter: hosted("one", "T_A", "one")}))
            self.assertEqual(alone.error, 0, "the server that is gone is not asked")


if __name__ == "__main__":
    servercase.main()
