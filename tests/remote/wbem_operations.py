"""The operations of a WBEM server over a model: what each answers, and with which status it refuses.

An answer is a sequence of elements, so that a long one is sent while it is made, and output parameters behind it.
"""
# SPDX-License-Identifier: Apache-2.0
import itertools
import re
import threading
import time
import uuid
from xml.sax import saxutils

import habits
import query_filter
from cim_model import attribute, name_key

FAILED, INVALID_NAMESPACE, INVALID_PARAMETER, INVALID_CLASS, NOT_FOUND, NOT_SUPPORTED = 1, 3, 4, 5, 6, 7
QUERY_LANGUAGE_NOT_SUPPORTED, INVALID_QUERY, INVALID_ENUMERATION_CONTEXT = 14, 15, 21
FILTERED_ENUMERATION_NOT_SUPPORTED, CONTINUATION_ON_ERROR_NOT_SUPPORTED = 25, 26

CUT = {"LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}
OPEN = {"FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError", "MaxObjectCount"}
TIES = {"AssocClass", "ResultClass", "Role", "ResultRole"}
# The operations with the parameters that each knows.
PARAMETERS = {
    "GetClass": {"ClassName"} | CUT - {"DeepInheritance"},
    "EnumerateClasses": {"ClassName"} | CUT - {"PropertyList"},
    "EnumerateClassNames": {"ClassName", "DeepInheritance"},
    "GetInstance": {"InstanceName"} | CUT - {"DeepInheritance"},
    "EnumerateInstances": {"ClassName"} | CUT,
    "EnumerateInstanceNames": {"ClassName"},
    "Associators": {"ObjectName", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"} | TIES,
    "AssociatorNames": {"ObjectName"} | TIES,
    "References": {"ObjectName", "ResultClass", "Role", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"},
    "ReferenceNames": {"ObjectName", "ResultClass", "Role"},
    "ExecQuery": {"QueryLanguage", "Query"},
    "OpenEnumerateInstances": {"ClassName"} | OPEN | CUT - {"LocalOnly", "IncludeQualifiers"},
    "OpenEnumerateInstancePaths": {"ClassName"} | OPEN,
    "OpenAssociatorInstances": {"InstanceName", "IncludeClassOrigin", "PropertyList"} | OPEN | TIES,
    "OpenAssociatorInstancePaths": {"InstanceName"} | OPEN | TIES,
    "OpenReferenceInstances": {"InstanceName", "ResultClass", "Role", "IncludeClassOrigin", "PropertyList"} | OPEN,
    "OpenReferenceInstancePaths": {"InstanceName", "ResultClass", "Role"} | OPEN,
    "PullInstancesWithPath": {"EnumerationContext", "MaxObjectCount"},
    "PullInstancePaths": {"EnumerationContext", "MaxObjectCount"},
    "CloseEnumeration": {"EnumerationContext"},
}


class Status(Exception):
    """What is answered in place of a result."""

    def __init__(self, code, description):
        super().__init__(f"{code}: {description}")
        self.code = code
        self.description = description


class Answer:
    def __init__(self, elements=(), outputs=()):
        self.elements = elements
        self.outputs = list(outputs)  # (name, type, text)


class Enumeration:
    """What an open operation began and pulls go on with."""

    def __init__(self, call, elements, pull, timeout):
        self.namespace = call.namespace.lower()
        self.user = call.user
        self.pull = pull  # the operation that goes on with it
        self.timeout = timeout
        self.elements = list(elements)
        self.batches = 0
        self.touch()

    def touch(self):
        self.end = time.monotonic() + self.timeout


class Operations:
    def __init__(self, model, behaviour):
        self.model = model
        self.behaviour = behaviour
        self.enumerations = {}
        self.lock = threading.Lock()

    def answer(self, call):
        """The answer to a call. RAISES Status."""
        if call.operation not in PARAMETERS:
            raise Status(NOT_SUPPORTED, f"this server has no {call.operation}")
        unknown = set(call.parameters) - PARAMETERS[call.operation]
        if unknown:
            raise Status(INVALID_PARAMETER, f"{call.operation} has no parameter {sorted(unknown)[0]}")
        if call.operation in self.behaviour.refused:
            raise Status(self.behaviour.refused[call.operation], f"{call.operation} is refused")
        if call.operation.startswith(("Open", "Pull", "Close")) and self.behaviour.pull_status:
            raise Status(self.behaviour.pull_status, "this server has no pull operations")
        if call.operation in ("OpenEnumerateInstances", "EnumerateInstances"):
            unlisted = self.behaviour.unlisted.get(call.class_name.lower())
            if unlisted:
                raise Status(unlisted, f"instances of {call.class_name} are not listed")
        if call.namespace.lower() not in self.model.namespaces:
            raise Status(INVALID_NAMESPACE, f"there is no namespace {call.namespace}")
        if call.operation.startswith("Open"):
            return self.open(call)
        if call.operation.startswith(("Pull", "Close")):
            return self.go_on(call)
        plain = {"EnumerateInstances": self.named, "EnumerateInstanceNames": self.names}
        if call.operation in plain:
            return Answer(plain[call.operation](call))
        if call.operation in ("Associators", "References"):
            return Answer(self.with_path("VALUE.OBJECTWITHPATH", call, self.tied(call, "ObjectName")))
        if call.operation in ("AssociatorNames", "ReferenceNames"):
            return Answer(f"<OBJECTPATH>{self.path(call, one)}</OBJECTPATH>" for one in self.tied(call, "ObjectName"))
        return {"GetClass": self.get_class, "EnumerateClasses": self.classes, "EnumerateClassNames": self.class_names,
                "GetInstance": self.get_instance, "ExecQuery": self.query}[call.operation](call)

    # Classes.

    def namespace(self, call):
        return self.model.namespaces[call.namespace.lower()]

    def class_of(self, call, parameter="ClassName", required=True):
        name = call.name_of_class(parameter)
        if not name:
            if required:
                raise Status(INVALID_PARAMETER, f"{call.operation} needs {parameter}")
            return ""
        if name.lower() not in self.namespace(call).classes:
            raise Status(INVALID_CLASS, f"there is no class {name}")
        return self.namespace(call).classes[name.lower()].name

    def class_xml(self, call, name):
        return self.namespace(call).class_xml(name, call.flag("LocalOnly", True), call.flag("IncludeQualifiers", True),
                                              call.flag("IncludeClassOrigin", False), call.wanted())

    def get_class(self, call):
        return Answer([self.class_xml(call, self.class_of(call))])

    def below(self, call):
        return self.namespace(call).subclasses(self.class_of(call, required=False), call.flag("DeepInheritance", False))

    def classes(self, call):
        return Answer(self.class_xml(call, one.name) for one in self.below(call))

    def class_names(self, call):
        return Answer(f'<CLASSNAME{attribute("NAME", one.name)}/>' for one in self.below(call))

    # Instances.

    def instance_of(self, call, parameter):
        element = call.parameters.get(parameter)
        if element is None:
            raise Status(INVALID_PARAMETER, f"{call.operation} needs {parameter}")
        if next(element.iter("INSTANCENAME"), None) is None:
            raise Status(NOT_SUPPORTED, f"this server has no {call.operation} of classes")
        for path in element.iter("LOCALNAMESPACEPATH"):
            namespace = "/".join(step.get("NAME") for step in path)
            if namespace.lower() not in self.model.namespaces:
                raise Status(INVALID_NAMESPACE, f"there is no namespace {namespace}")
        key = name_key(element)
        if key[0] not in self.namespace(call).classes:
            raise Status(INVALID_CLASS, f"there is no class {key[0]}")
        found = self.namespace(call).by_key.get(key)
        if found is None:
            raise Status(NOT_FOUND, "there is no such instance")
        return found

    def shown(self, call, instance, class_name=None):
        """INSTANCE, cut to what the call asks for."""
        namespace = self.namespace(call)
        wanted = call.wanted()
        if "all-properties" in self.behaviour.habits:
            return instance.xml()
        if call.flag("LocalOnly", "LocalOnly" in PARAMETERS[call.operation]):
            own = {name.lower() for name, _ in namespace.classes[instance.class_name.lower()].properties}
            wanted = own if wanted is None else wanted & own
        if class_name and not call.flag("DeepInheritance", True):
            known = namespace.property_names(class_name)
            wanted = known if wanted is None else wanted & known
        text = instance.xml(wanted)
        return self.with_origins(namespace, instance, text) if call.flag("IncludeClassOrigin", False) else text

    @staticmethod
    def with_origins(namespace, instance, text):
        origins = {name.lower(): one.name for one in namespace.lineage(instance.class_name) for name, _ in one.properties}
        return re.sub(r'(<PROPERTY\S* NAME="([^"]*)")',
                      lambda found: found[1] + attribute("CLASSORIGIN", origins[found[2].lower()]), text)

    def path(self, call, instance):
        host = f"<HOST>{saxutils.escape(self.behaviour.host)}</HOST>"
        steps = "".join(f'<NAMESPACE{attribute("NAME", step)}/>' for step in call.namespace.split("/"))
        local = f"<LOCALNAMESPACEPATH>{steps}</LOCALNAMESPACEPATH>"
        return f"<INSTANCEPATH><NAMESPACEPATH>{host}{local}</NAMESPACEPATH>{instance.name}</INSTANCEPATH>"

    def with_path(self, element, call, instances, class_name=None):
        return (f"<{element}>{self.path(call, one)}{self.shown(call, one, class_name)}</{element}>" for one in instances)

    def get_instance(self, call):
        return Answer([self.shown(call, self.instance_of(call, "InstanceName"))])

    def named(self, call):
        name = self.class_of(call)
        return (f"<VALUE.NAMEDINSTANCE>{one.name}{self.shown(call, one, name)}</VALUE.NAMEDINSTANCE>"
                for one in self.namespace(call).instances_of(name))

    def names(self, call):
        return (one.name for one in self.namespace(call).instances_of(self.class_of(call)))

    # Associations.

    def refers(self, call, instance, source, association, role):
        """The ends of an association that are not that of the source, once for each end that is; all when it is none."""
        if association and not self.namespace(call).is_a(instance.class_name, association):
            return
        for mine, key, _ in instance.ends:
            if key == source.key and (not role or role.lower() == mine.lower()):
                yield [(name, other) for name, other, _ in instance.ends if name != mine]

    def tied(self, call, parameter):
        """The associations that refer to an instance, or the instances at their other ends, each once."""
        source = self.instance_of(call, parameter)
        role = call.text("Role")
        result = self.class_of(call, "ResultClass", False)
        is_reference = "Reference" in call.operation
        association = result if is_reference else self.class_of(call, "AssocClass", False)
        found = {}
        for instance in self.namespace(call).instances:
            for others in self.refers(call, instance, source, association, role):
                if is_reference:
                    found[instance.key] = instance
                    continue
                for name, key in others:
                    other = self.namespace(call).by_key.get(key)
                    if other is not None and self.is_result(call, name, other, result):
                        found[key] = other
        return found.values()

    def is_result(self, call, role, instance, result):
        wanted = call.text("ResultRole")
        return ((not wanted or wanted.lower() == role.lower())
                and (not result or self.namespace(call).is_a(instance.class_name, result)))

    # Queries.

    def query(self, call):
        if not self.behaviour.queries:
            raise Status(NOT_SUPPORTED, "this server has no queries")
        if call.text("QueryLanguage") not in self.behaviour.queries:
            raise Status(QUERY_LANGUAGE_NOT_SUPPORTED, f"this server knows no {call.text('QueryLanguage')}")
        try:
            selected = query_filter.Filter(call.text("Query"))
        except ValueError as error:
            raise Status(INVALID_QUERY, str(error)) from None
        if selected.class_name.lower() not in self.namespace(call).classes:
            raise Status(INVALID_CLASS, f"there is no class {selected.class_name}")
        found = [one for one in self.namespace(call).instances_of(selected.class_name) if selected.matches(one)]
        return Answer(f"<VALUE.OBJECT>{one.xml(selected.wanted)}</VALUE.OBJECT>" for one in found)

    # Pull operations.

    def open(self, call):
        if call.text("FilterQuery") or call.text("FilterQueryLanguage"):
            raise Status(FILTERED_ENUMERATION_NOT_SUPPORTED, "this server filters no enumerations")
        if call.flag("ContinueOnError", False):
            raise Status(CONTINUATION_ON_ERROR_NOT_SUPPORTED, "this server ends at the first error")
        is_paths = call.operation.endswith("Paths")
        if "Enumerate" in call.operation:
            name = self.class_of(call)
            instances = self.namespace(call).instances_of(name)
        else:
            name, instances = None, self.tied(call, "InstanceName")
        if is_paths:
            elements = (self.path(call, one) for one in instances)
        else:
            elements = self.with_path("VALUE.INSTANCEWITHPATH", call, instances, name)
        pull = "PullInstancePaths" if is_paths else "PullInstancesWithPath"
        timeout = call.number("OperationTimeout", 0) or self.behaviour.context_seconds
        return self.batch(call, Enumeration(call, elements, pull, timeout), uuid.uuid4().hex)

    def batch(self, call, enumeration, context):
        count = min(call.number("MaxObjectCount", 0), self.behaviour.most_objects)
        batch, enumeration.elements = enumeration.elements[:count], enumeration.elements[count:]
        if self.behaviour.habits & habits.ENDLESS:
            enumeration.elements += batch
        if "new-batches" in self.behaviour.habits:
            enumeration.batches += 1
            batch = [habits.other_keys(one, enumeration.batches) for one in batch]
        is_end = not enumeration.elements and not (batch and "late-end" in self.behaviour.habits)
        if not is_end:
            enumeration.touch()
            with self.lock:
                self.enumerations[context] = enumeration
        return Answer(batch, [("EnumerationContext", "string", "" if is_end else context),
                              ("EndOfSequence", "boolean", "TRUE" if is_end else "FALSE")])

    def go_on(self, call):
        context = call.text("EnumerationContext")
        with self.lock:
            enumeration = self.enumerations.pop(context, None)
        if (enumeration is None or time.monotonic() > enumeration.end
                or (enumeration.namespace, enumeration.user) != (call.namespace.lower(), call.user)):
            raise Status(INVALID_ENUMERATION_CONTEXT, "there is no such enumeration")
        if call.operation == "CloseEnumeration":
            return Answer()
        if call.operation != enumeration.pull or call.number("MaxObjectCount", None) is None:
            with self.lock:
                self.enumerations[context] = enumeration
            raise Status(INVALID_PARAMETER, f"{enumeration.pull} with MaxObjectCount goes on with this enumeration")
        return self.batch(call, enumeration, context)


def message(call, content):
    begin = f'<?xml version="1.0" encoding="utf-8"?>\n<CIM CIMVERSION="2.0" DTDVERSION="2.0">' \
            f'<MESSAGE{attribute("ID", call.id)} PROTOCOLVERSION="1.0"><SIMPLERSP>'
    response = call.response
    head = f'{begin}<{response}{attribute("NAME", call.operation)}>'
    return itertools.chain([head], content, [f"</{response}></SIMPLERSP></MESSAGE></CIM>\n"])


def reply(call, answer, behaviour):
    """The pieces of the message that answers a call."""
    def content():
        yield "<IRETURNVALUE>"
        for element in answer.elements:
            yield habits.change(element, behaviour.habits)
        yield "</IRETURNVALUE>"
        for name, kind, text in answer.outputs:
            yield (f'<PARAMVALUE{attribute("NAME", name)}{attribute("PARAMTYPE", kind)}>'
                   f"<VALUE>{saxutils.escape(text)}</VALUE></PARAMVALUE>")
    return message(call, content())


def refusal(call, status):
    return message(call, [f'<ERROR{attribute("CODE", str(status.code))}'
                          f'{attribute("DESCRIPTION", status.description)}/>'])
