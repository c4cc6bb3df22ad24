"""What a WBEM server serves: namespaces with classes and instances, as texts of CIM-XML that are cut to what is asked for.

The texts come from model_dump, which reads MOF. Names are found whatever their case.
"""
# SPDX-License-Identifier: Apache-2.0
import json
import re
import subprocess
import xml.etree.ElementTree as ElementTree
from xml.sax import saxutils

# The elements of properties, which do not nest: what is embedded is escaped text.
PROPERTY = re.compile(r'<(PROPERTY(?:\.ARRAY|\.REFERENCE)?) NAME="([^"]*)"[^>]*(?:/>|>.*?</\1>)', re.DOTALL)
QUALIFIER = re.compile(r'<QUALIFIER NAME="([^"]*)"[^>]*(?:/>|>.*?</QUALIFIER>)', re.DOTALL)
METHOD = re.compile(r'<METHOD NAME="([^"]*)"[^>]*(?:/>|>.*?</METHOD>)', re.DOTALL)


def attribute(name, value):
    return f' {name}={saxutils.quoteattr(value)}'


def with_attributes(element, text):
    """The element with more attributes in its first tag."""
    end = re.match(r"<[^>]*?(?=/?>)", element).end()
    return element[:end] + text + element[end:]


def key_value(element):
    """A key's value in a form that is the same for equal keys."""
    if element.tag == "VALUE.REFERENCE":
        return name_key(element[0])
    text = element.text or ""
    if element.get("VALUETYPE") == "numeric":
        return int(text, 0) if re.fullmatch(r"\s*[+-]?\d+\s*", text) else float(text)
    return text.lower() == "true" if element.get("VALUETYPE") == "boolean" else text


def name_key(element):
    """What an INSTANCENAME, or a path around one, says in a form that is the same for equal names."""
    name = next(element.iter("INSTANCENAME"), None)
    if name is None:  # a class
        return next(element.iter("CLASSNAME")).get("NAME").lower(), None
    keys = frozenset((key.get("NAME").lower(), key_value(key[0])) for key in name)
    return name.get("CLASSNAME").lower(), keys


class Instance:
    """An instance with its properties in order: (element, name, text)."""

    def __init__(self, line):
        self.class_name = line["class"]
        self.name = line["name"]
        self.key = name_key(ElementTree.fromstring(self.name))
        self.properties = [(found[1], found[2], found[0]) for found in PROPERTY.finditer(line["xml"])]
        # For associations: (role, name of the object at that end).
        self.ends = [(name, name_key(next(ElementTree.fromstring(text).iter("VALUE.REFERENCE"))[0]), text)
                     for element, name, text in self.properties
                     if element == "PROPERTY.REFERENCE" and "<VALUE.REFERENCE>" in text]

    def xml(self, wanted=None):
        """INSTANCE with the wanted properties, which are in lower case; None: all."""
        kept = "".join(text for _, name, text in self.properties if wanted is None or name.lower() in wanted)
        return f'<INSTANCE{attribute("CLASSNAME", self.class_name)}>{kept}</INSTANCE>'


class Class:
    def __init__(self, line):
        self.name = line["name"]
        self.superclass = line["superclass"]
        text = line["xml"]
        head = re.split(r"<(?:PROPERTY|METHOD)\b", text, maxsplit=1)[0]
        self.qualifiers = qualifiers_of(head)
        self.properties = [(found[2], found[0]) for found in PROPERTY.finditer(text)]
        self.methods = [(found[1], found[0]) for found in METHOD.finditer(text)]

    def is_association(self):
        return any(name.lower() == "association" and "TRUE" in text for name, text in self.qualifiers)


def first_tag(element):
    return element[:element.index(">")]


def propagated(element):
    """The element as a subclass shows what it has of its superclass."""
    return element if "PROPAGATED=" in first_tag(element) else with_attributes(element, ' PROPAGATED="true"')


def passed_on(qualifiers):
    return [(name, text) for name, text in qualifiers if 'TOSUBCLASS="false"' not in first_tag(text)]


def inherited(features, own, override=lambda old, new: new):
    """The features with the own ones in the places of those that they override, and behind them."""
    mine = {name.lower(): text for name, text in own}
    merged = [(name, override(text, mine.pop(name.lower())) if name.lower() in mine else propagated(text))
              for name, text in features]
    return merged + [(name, text) for name, text in own if name.lower() in mine]


def qualifiers_of(text):
    return [(found[1], found[0]) for found in QUALIFIER.finditer(text)]


def with_old_qualifiers(old, new):
    """An overriding property with the qualifiers that it inherits."""
    qualifiers = inherited(passed_on(qualifiers_of(old)), qualifiers_of(new))
    bare = QUALIFIER.sub("", new)
    end = bare.index(">") + 1
    return bare[:end] + "".join(text for _, text in qualifiers) + bare[end:]


class Namespace:
    def __init__(self, name):
        self.name = name
        self.classes = {}    # by name in lower case
        self.instances = []  # in the order in which they are enumerated
        self.by_key = {}

    def add(self, instance):
        self.instances.append(instance)
        self.by_key[instance.key] = instance

    def lineage(self, class_name):
        """The class and its superclasses, itself first."""
        found = []
        while class_name:
            found.append(self.classes[class_name.lower()])
            class_name = found[-1].superclass
        return found

    def is_a(self, class_name, ancestor):
        return any(one.name.lower() == ancestor.lower() for one in self.lineage(class_name))

    def subclasses(self, class_name, deep):
        """Those of "" are the root classes."""
        def belongs(one):
            if not deep or not class_name:
                return deep or one.superclass.lower() == class_name.lower()
            return one.name.lower() != class_name.lower() and self.is_a(one.name, class_name)
        return [one for one in self.classes.values() if belongs(one)]

    def instances_of(self, class_name):
        return [one for one in self.instances if self.is_a(one.class_name, class_name)]

    def property_names(self, class_name):
        """In lower case, inherited ones included."""
        return {name.lower() for one in self.lineage(class_name) for name, _ in one.properties}

    def class_xml(self, name, local_only=True, qualifiers=True, class_origin=False, wanted=None):
        """CLASS; what superclasses declare is marked as propagated, and there unless local_only."""
        own = self.classes[name.lower()]
        ancestors = [own] if local_only else self.lineage(name)
        properties, methods, class_qualifiers = [], [], []
        for one in reversed(ancestors):
            def told(features, name=one.name):
                mark = attribute("CLASSORIGIN", name) if class_origin else ""
                return [(title, with_attributes(text, mark)) for title, text in features]
            class_qualifiers = inherited(passed_on(class_qualifiers), one.qualifiers)
            properties = inherited(properties, told(one.properties), with_old_qualifiers)
            methods = inherited(methods, told(one.methods))
        kept = [text for title, text in properties if wanted is None or title.lower() in wanted]
        body = "".join([text for _, text in class_qualifiers] + kept + [text for _, text in methods])
        if not qualifiers:
            body = QUALIFIER.sub("", body)
        superclass = attribute("SUPERCLASS", own.superclass) if own.superclass else ""
        return f'<CLASS{attribute("NAME", own.name)}{superclass}>{body}</CLASS>'


class Model:
    def __init__(self, lines=()):
        self.namespaces = {}  # by name in lower case
        for line in lines:
            self.add(json.loads(line))

    @staticmethod
    def of_mof(dump, *files):
        """What MOF files declare, by the program model_dump."""
        done = subprocess.run([dump, *files], capture_output=True, check=False)
        if done.returncode != 0:
            raise ValueError(done.stderr.decode("utf-8", "replace"))
        return Model(done.stdout.decode("utf-8").splitlines())

    def add(self, line):
        if line["kind"] == "namespace":
            self.namespaces[line["name"].lower()] = Namespace(line["name"])
            return
        namespace = self.namespaces[line["namespace"].lower()]
        if line["kind"] == "class":
            namespace.classes[line["name"].lower()] = Class(line)
        else:
            namespace.add(Instance(line))
