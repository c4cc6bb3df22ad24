"""What a client writes to subscribe to indications."""
# SPDX-License-Identifier: Apache-2.0
from xml.sax import saxutils

from eventcase import INTEROP, EventCase, instance

ALERTS = "SELECT * FROM CIM_AlertIndication"

DISKS = """
[Association] class DISK_Tie { [Key] DISK_Disk REF Left; [Key] DISK_Disk REF Right; };
class DISK_Disk { [Key] string Name; uint64 Size; string Labels[]; };
instance of DISK_Disk { Name = "declared"; Size = 1; };
"""


def disk(name, size=1):
    return instance("DISK_Disk", Name=name, Size=("uint64", size))


def disk_name(name):
    return (f'<INSTANCENAME CLASSNAME="DISK_Disk"><KEYBINDING NAME="Name"><KEYVALUE VALUETYPE="string" TYPE="string">'
            f"{saxutils.escape(name)}</KEYVALUE></KEYBINDING></INSTANCENAME>")


class SubscriptionCase(EventCase):
    def serve_disks(self, *arguments, **more):
        return self.serve("--no-live", "--writable", "-m", self.write("disks.mof", DISKS), *arguments, **more)

    def create(self, server, content, namespace=INTEROP):
        """The name of the new instance, as its element; or the status when it is refused."""
        reply = self.call(server, "CreateInstance", namespace, NewInstance=content)
        if reply.error:
            return reply.error
        text = reply.body.decode()
        return text[text.index("<INSTANCENAME"):text.rindex("</INSTANCENAME>") + len("</INSTANCENAME>")]

    def create_filter(self, server, query=ALERTS, name="f", language="DMTF:CQL"):
        return self.create(server, instance("CIM_IndicationFilter", Name=name, Query=query, QueryLanguage=language))

    def create_handler(self, server, url, name="h", **more):
        return self.create(server, instance("CIM_ListenerDestinationCIMXML", Name=name, Destination=url, **more))

    def tie(self, server, handed_filter, handler, **more):
        content = instance("CIM_IndicationSubscription", **more).replace("</INSTANCE>", "")
        for name, value, of in (("Filter", handed_filter, "CIM_IndicationFilter"),
                                ("Handler", handler, "CIM_ListenerDestination")):
            content += (f'<PROPERTY.REFERENCE NAME="{name}" REFERENCECLASS="{of}"><VALUE.REFERENCE>{value}'
                        f"</VALUE.REFERENCE></PROPERTY.REFERENCE>")
        return self.create(server, content + "</INSTANCE>")

    def subscribe(self, server, url, query=ALERTS, **more):
        name = self.tie(server, self.create_filter(server, query, name=url), self.create_handler(server, url, name=url),
                        **more)
        self.assertIsInstance(name, str)
        return name

    def alert(self, server, message, **more):
        reply = self.export(server, instance("CIM_AlertIndication", Message=message, **more))
        self.assertEqual((reply.status, reply.error), (200, 0))

    def set_retry(self, server, attempts, seconds):
        found = self.call(server, "EnumerateInstanceNames", INTEROP, ClassName="CIM_IndicationService").body.decode()
        name = found[found.index("<INSTANCENAME"):found.rindex("</INSTANCENAME>") + len("</INSTANCENAME>")]
        changed = instance("CIM_IndicationService", DeliveryRetryAttempts=("uint16", attempts),
                           DeliveryRetryInterval=("uint32", seconds))
        self.assertEqual(self.call(server, "ModifyInstance", INTEROP, ModifiedInstance=
                                   f"<VALUE.NAMEDINSTANCE>{name}{changed}</VALUE.NAMEDINSTANCE>").error, 0)

    def delete(self, server, name, namespace=INTEROP):
        return self.call(server, "DeleteInstance", namespace, InstanceName=name).error

    def queue(self, server, name):
        """A number of the only queue."""
        reply = self.call(server, "EnumerateInstances", INTEROP, ClassName="QORQL_IndicationQueue")
        return int(reply.tree.findtext(f".//PROPERTY[@NAME='{name}']/VALUE"))

    def disks(self, server):
        reply = self.call(server, "EnumerateInstances", ClassName="DISK_Disk")
        return [(one.findtext("PROPERTY[@NAME='Name']/VALUE"), one.findtext("PROPERTY[@NAME='Size']/VALUE"))
                for one in reply.tree.iter("INSTANCE")]
