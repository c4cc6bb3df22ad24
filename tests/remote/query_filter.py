"""The small query language of the tests' WBEM server: SELECT names or * FROM a class, WHERE comparisons joined by AND.

What it does not know it refuses, as servers do.
"""
# SPDX-License-Identifier: Apache-2.0
import operator
import re
import xml.etree.ElementTree as ElementTree

STATEMENT = re.compile(r"\s*SELECT\s+(.+?)\s+FROM\s+(\w+)(?:\s+WHERE\s+(.+?))?\s*;?\s*$", re.IGNORECASE | re.DOTALL)
CONDITION = re.compile(r"\s*\(*\s*(?:(\w+)\.)?(\w+)\s*(<>|<=|>=|=|<|>)\s*('(?:[^'\\]|'')*'|-?\d+(?:\.\d+)?|TRUE|FALSE)\s*\)*\s*$",
                       re.IGNORECASE)
OPERATORS = {"=": operator.eq, "<>": operator.ne, "<": operator.lt, "<=": operator.le, ">": operator.gt,
             ">=": operator.ge}


def literal(text):
    if text.startswith("'"):
        return text[1:-1].replace("''", "'")
    if text.upper() in ("TRUE", "FALSE"):
        return text.upper() == "TRUE"
    return float(text) if "." in text else int(text)


def value_of(instance, name):
    """The scalar value of a property, as a number, a boolean or a text; None for NULL and for what is no scalar."""
    for element, title, text in instance.properties:
        if title.lower() == name.lower() and element == "PROPERTY":
            tree = ElementTree.fromstring(text)
            value = tree.find("VALUE")
            if value is None:
                return None
            kind = tree.get("TYPE")
            if "int" in kind:
                return int(value.text)
            if "real" in kind:
                return float(value.text)
            return value.text == "TRUE" if kind == "boolean" else value.text or ""
    return None


class Filter:
    """RAISES ValueError for a statement that it does not know."""

    def __init__(self, text):
        found = STATEMENT.match(text)
        if not found:
            raise ValueError(f"not understood: {text}")
        self.class_name = found[2]
        names = [name.strip().split(".")[-1].lower() for name in found[1].split(",")]
        self.wanted = None if "*" in names else set(names)
        self.conditions = []
        for part in re.split(r"\s+AND\s+", found[3], flags=re.IGNORECASE) if found[3] else []:
            condition = CONDITION.match(part)
            if not condition:
                raise ValueError(f"not understood: {part}")
            self.conditions.append((condition[2], OPERATORS[condition[3]], literal(condition[4])))

    def matches(self, instance):
        def holds(name, compare, wanted):
            value = value_of(instance, name)
            is_alike = isinstance(value, str) == isinstance(wanted, str)
            return value is not None and is_alike and compare(value, wanted)
        return all(holds(*condition) for condition in self.conditions)
