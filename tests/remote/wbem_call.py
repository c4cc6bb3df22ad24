"""A call to a WBEM server: read from its message, judged as a server judges it, and kept for tests to look at."""
# SPDX-License-Identifier: Apache-2.0
import urllib.parse
import xml.etree.ElementTree as ElementTree


class Refused(Exception):
    """A call that is refused by HTTP: a status, and what header CIMError tells."""

    def __init__(self, status, error):
        super().__init__(f"{status} {error}")
        self.status = status
        self.error = error


def text_of(element):
    return "" if element is None else "".join(element.itertext())


class Call:
    """An intrinsic call, or, with another response, one of a method, which this server has none of."""

    def __init__(self, body, headers, user):
        self.request = body
        self.user = user
        self.request_headers = dict(headers.items())
        message = self.message_of(body)
        self.id = message.get("ID")
        request = message.find("SIMPLEREQ")
        method = next((one for one in request if one.tag in ("IMETHODCALL", "METHODCALL")), None)
        if method is None or method.get("NAME") is None:
            raise Refused(400, "request-not-valid")
        self.operation = method.get("NAME")
        self.response = method.tag.replace("CALL", "RESPONSE")
        self.namespace = "/".join(step.get("NAME") for step in next(method.iter("LOCALNAMESPACEPATH"), ()))
        self.parameters = {one.get("NAME"): one[0] for one in method.findall("IPARAMVALUE") if len(one)}
        self.judge(headers)
        # What became of it; the server fills it in.
        self.status = None       # of CIM, 0 when all is well
        self.http_status = None
        self.reply_bytes = 0     # of the body as it was sent
        self.reply_headers = {}
        self.reply = b""         # the body before compression, when the server keeps replies
        self.fault = None
        self.connection = None

    @staticmethod
    def message_of(body):
        try:
            tree = ElementTree.fromstring(body)
        except ElementTree.ParseError:
            raise Refused(400, "request-not-well-formed") from None
        message = tree.find("MESSAGE")
        if tree.tag != "CIM" or message is None or not message.get("ID"):
            raise Refused(400, "request-not-valid")
        if message.find("MULTIREQ") is not None:
            raise Refused(400, "multiple-requests-unsupported")
        if message.find("SIMPLEREQ") is None:
            raise Refused(400, "request-not-valid")
        if not tree.get("DTDVERSION", "").startswith("2."):
            raise Refused(400, "unsupported-dtd-version")
        if not message.get("PROTOCOLVERSION", "").startswith("1."):
            raise Refused(400, "unsupported-protocol-version")
        return message

    def judge(self, headers):
        """The headers say the same as the message, where they say it."""
        if headers.get("CIMOperation", "").lower() != "methodcall":
            raise Refused(400, "unsupported-operation")
        if urllib.parse.unquote(headers.get("CIMMethod", "")) != self.operation:
            raise Refused(400, "header-mismatch")
        if self.response != "METHODRESPONSE" and urllib.parse.unquote(headers.get("CIMObject", "")) != self.namespace:
            raise Refused(400, "header-mismatch")

    # Parameters.

    def text(self, name, default=""):
        return text_of(self.parameters[name]) if name in self.parameters else default

    def flag(self, name, default):
        return self.text(name).strip().lower() == "true" if name in self.parameters else default

    def number(self, name, default):
        text = self.text(name).strip()
        return int(text) if text.isdigit() else default

    def name_of_class(self, name):
        element = self.parameters.get(name)
        return "" if element is None else element.get("NAME", "") or text_of(element)

    @property
    def properties(self):
        """The PropertyList as it came; None where there was none."""
        element = self.parameters.get("PropertyList")
        return None if element is None else [text_of(value) for value in element]

    def wanted(self):
        names = self.properties
        return None if names is None else {name.lower() for name in names}

    @property
    def class_name(self):
        """The class that the call is about, where it is about one."""
        for name in ("ClassName", "ObjectName", "InstanceName"):
            element = self.parameters.get(name)
            if element is not None:
                found = next(element.iter("INSTANCENAME"), None)
                return self.name_of_class(name) if found is None else found.get("CLASSNAME")
        return ""

    def told(self):
        """As a line of the log has it."""
        return {"operation": self.operation, "namespace": self.namespace, "class": self.class_name,
                "properties": self.properties, "parameters": {name: text_of(one) for name, one in self.parameters.items()},
                "user": self.user, "connection": self.connection, "request_bytes": len(self.request),
                "reply_bytes": self.reply_bytes, "http_status": self.http_status, "status": self.status,
                "fault": self.fault}
