"""Habits of servers of the field: what they send in another form than the standards have it, and clients read all the same.

Each changes one element of an answer. Some habits are not of this kind: "all-properties" sends properties that were not
asked for, "late-end" says only with an empty batch that an enumeration is at its end, "same-batches" begins anew in
place of its end, "new-batches" too, but with other keys.
"""
# SPDX-License-Identifier: Apache-2.0
import re

PROPERTY = re.compile(r'<PROPERTY(?:\.ARRAY|\.REFERENCE)? .*?</PROPERTY(?:\.ARRAY|\.REFERENCE)?>', re.DOTALL)
INTEGER = re.compile(r'(<PROPERTY(?:\.ARRAY)? [^>]*TYPE="[us]int\d+"[^>]*(?<!/)>)(.*?)(</PROPERTY)', re.DOTALL)
BOOLEAN = re.compile(r'(<PROPERTY(?:\.ARRAY)? [^>]*TYPE="boolean"[^>]*(?<!/)>)(.*?)(</PROPERTY)', re.DOTALL)


def other_case(text):
    return re.sub(r'(<INSTANCE(?:NAME)? CLASSNAME=)("[^"]*")', lambda found: found[1] + found[2].upper(), text)


def no_types(text):
    """Of instances; nobody could read a class without types."""
    if text.startswith("<CLASS "):
        return text
    return re.sub(r'(<(?:PROPERTY|PROPERTY\.ARRAY|KEYVALUE) [^>]*?) TYPE="\w+"', r"\1", text)


def no_key_types(text):
    return re.sub(r'(<KEYVALUE [^>]*?) TYPE="\w+"', r"\1", text)


def duplicates(text):
    """The first property of each instance comes a second time behind all others."""
    def repeat(found):
        first = PROPERTY.search(found[0])
        return found[0] if first is None else found[0].replace("</INSTANCE>", first[0] + "</INSTANCE>")
    return re.sub(r"<INSTANCE .*?</INSTANCE>", repeat, text, flags=re.DOTALL)


def wrong_value_types(text):
    return no_key_types(re.sub(r'VALUETYPE="(?:numeric|boolean)"', 'VALUETYPE="string"', text))


def within(pattern, change, text):
    """Values of instances; a property of a class may hold those of its qualifiers."""
    if text.startswith("<CLASS "):
        return text
    return pattern.sub(lambda found: found[1] + re.sub(r"<VALUE>(.*?)</VALUE>", change, found[2]) + found[3], text)


def hexadecimal(text):
    return within(INTEGER, lambda found: "<VALUE>%s0x%x</VALUE>" % ("-" if found[1][0] == "-" else "", abs(int(found[1]))),
                  text)


def leading_zeros(text):
    return within(INTEGER, lambda found: "<VALUE>%s000%d</VALUE>" % ("-" if found[1][0] == "-" else "", abs(int(found[1]))),
                  text)


def blanks(text):
    return within(INTEGER, lambda found: f"<VALUE> {found[1]}\n</VALUE>", text)


def lower_booleans(text):
    return within(BOOLEAN, lambda found: f"<VALUE>{found[1].lower()}</VALUE>", text)


def newlines(text):
    """Between elements; the texts of values stay."""
    return re.sub(r"(</?(?!VALUE>|KEYVALUE|HOST)[A-Z.]+(?: [^>]*)?>)(?=<)", "\\1\n  ", text)


def old_embedded(text):
    return text.replace(" EmbeddedObject=", " EMBEDDEDOBJECT=")


def other_keys(text, number):
    """Of an instance with a key of text: "1" as "1-7"."""
    return re.sub(r"(<KEYVALUE [^>]*>[^<]*)<", rf"\1-{number}<", text)


def no_host(text):
    return re.sub(r"<HOST>.*?</HOST>", "", text)


def empty_host(text):
    return re.sub(r"<HOST>.*?</HOST>", "<HOST></HOST>", text)


def unknown_host(text):
    return re.sub(r"<HOST>.*?</HOST>", "<HOST>array-7.nowhere.invalid</HOST>", text)


HABITS = {"other-case": other_case, "no-types": no_types, "no-key-types": no_key_types, "duplicates": duplicates,
          "wrong-value-types": wrong_value_types, "hexadecimal": hexadecimal, "leading-zeros": leading_zeros,
          "blanks": blanks, "lower-booleans": lower_booleans, "newlines": newlines, "old-embedded": old_embedded,
          "no-host": no_host, "empty-host": empty_host, "unknown-host": unknown_host}
ENDLESS = {"same-batches", "new-batches"}
NAMES = sorted([*HABITS, *ENDLESS, "all-properties", "late-end"])


def change(element, wanted):
    for name, habit in HABITS.items():
        if name in wanted:
            element = habit(element)
    return element
