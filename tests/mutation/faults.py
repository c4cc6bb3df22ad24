"""Where a fault can be planted in a C++ source, and what it would say there.

A fault is a span of the text and what takes its place. Comments, literals of text and lines of the preprocessor are
left alone. What is found is a guess of the text alone: some faults do not compile.
"""
# SPDX-License-Identifier: Apache-2.0
import collections
import re

Fault = collections.namedtuple("Fault", "kind start end replacement")

RELATIONS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",)}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "+=": "-=", "-=": "+=", "&": "|", "|": "&"}
WORDS = {"true": "false", "false": "true", "min": "max", "max": "min", "front": "back", "back": "front",
         "first": "last", "last": "first"}
LITERALS = re.compile(r'//[^\n]*|/\*.*?\*/|R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.DOTALL)
DIRECTIVES = re.compile(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.MULTILINE)
# What a statement begins with that can be left out: no declaration, no jump.
STATEMENT = re.compile(r"(?:\+\+|--|\*|\()*[A-Za-z_][\w:]*(?:\(|\.|->|\[|\+\+|--| [-+*/|&]?= )")
JUMPS = re.compile(r" (?:return|continue|break|throw|QORQL_raise)\b[^;{}]*;")
NO_CALLS = {"if", "while", "for", "switch", "return", "sizeof", "catch"}


def blank(match):
    """Of the same length, so that places stay what they are; quotes stay, since they are operands."""
    text = match.group(0)
    if text.startswith("/"):
        return re.sub(r"[^\n]", " ", text)
    return text[0] + re.sub(r"[^\n]", "_", text[1:-1]) + text[-1]


def bare(text):
    """The text without what is no code."""
    return DIRECTIVES.sub(lambda match: re.sub(r"[^\n]", " ", match.group(0)), LITERALS.sub(blank, text))


def closing(code, start):
    """The place of the parenthesis that closes the one at start; -1 for none."""
    depth = 0
    for place in range(start, len(code)):
        if code[place] in "([{":
            depth += 1
        elif code[place] in ")]}":
            depth -= 1
            if depth == 0:
                return place
    return -1


def operators(code):
    for match in re.finditer(r"(?<= )(<=|>=|==|!=|<|>)(?=[ \n])", code):
        for other in RELATIONS[match.group(1)]:
            yield Fault("relation", *match.span(1), other)
    for match in re.finditer(r"(?<= )(&&|\|\|)(?=[ \n])", code):
        yield Fault("connective", *match.span(1), "||" if match.group(1) == "&&" else "&&")
    for match in re.finditer(r"(?<= )([-+*/%&|]|\+=|-=)(?=[ \n])", code):
        yield Fault("arithmetic", *match.span(1), ARITHMETIC[match.group(1)])
    for match in re.finditer(r"\+\+|--", code):
        yield Fault("arithmetic", *match.span(), "--" if match.group(0) == "++" else "++")
    for match in re.finditer(r"!(?=[\w(])", code):
        yield Fault("negation", *match.span(), "")


def constants(code):
    for match in re.finditer(r"(?<![\w.\"'])(\d+)(?=(?:U|UL|u)?[^\w.\"'])", code):
        number = int(match.group(1))
        yield Fault("constant", *match.span(1), str(number + 1))
        if number > 0:
            yield Fault("constant", *match.span(1), str(number - 1))
    for match in re.finditer(r"\b(true|false)\b|\bstd::(min|max)\b|(?<=[.>])(front|back|first|last)\b(?=\(\))", code):
        group = match.lastindex
        yield Fault("constant", *match.span(group), WORDS[match.group(group)])


def conditions(code):
    for match in re.finditer(r"\b(?:if|while) (\()", code):
        start, end = match.start(1), closing(code, match.start(1))
        condition = code[start + 1:end]
        if end < 0 or ";" in condition or re.match(r"const |auto |[\w:]+[*&]? \w+ = ", condition):
            continue
        yield Fault("condition", start + 1, end, f"!({condition})")
        jump = JUMPS.match(code, end + 1)
        if match.group(0).startswith("if") and jump and not re.match(r"\s*else\b", code[jump.end():]):
            yield Fault("guard", match.start(), jump.end(), ";")


def statements(code):
    for match in re.finditer(r"(?<=[;{}\n])\s*\n( +)(?=\S)", code):
        start = match.end()
        end = code.find(";", start)
        if end >= 0 and STATEMENT.match(code, start) and not re.search(r"[{}]", code[start:end]):
            if not re.match(r"(?:return|continue|break|throw|using|else|case|default|if|for|while|switch)\b",
                            code[start:]):
                yield Fault("statement", start, end, "")
    for match in re.finditer(r"\b(continue|break);", code):
        yield Fault("jump", *match.span(1), "break" if match.group(1) == "continue" else "")


def returns(code):
    for match in re.finditer(r"\breturn ([^;{}]+);", code):
        value = match.group(1)
        if value in ("true", "false"):
            continue
        is_truth = re.search(r" (?:&&|\|\||==|!=|<|>|<=|>=) |^!", value) and "?" not in value
        yield Fault("result", *match.span(1), f"!({value})" if is_truth else "{}")


def parameters(code, start, end):
    """The spans between the commas of an argument list."""
    depth, begin, spans = 0, start, []
    for place in range(start, end):
        depth += code[place] in "([{<"
        depth -= code[place] in ")]}>"
        if code[place] == "," and depth == 0:
            spans.append((begin, place))
            begin = place + 1
    return spans + [(begin, end)]


def arguments(code):
    for match in re.finditer(r"\b(\w+)(\()", code):
        end = closing(code, match.start(2))
        if match.group(1) in NO_CALLS or end < 0:
            continue
        spans = parameters(code, match.end(), end)
        for (a, b), (c, d) in zip(spans, spans[1:]):
            left, right = code[a:b].strip(), code[c:d].strip()
            # With a blank inside it is a declaration, or too much of an expression to be of the same type.
            if left != right and all(re.fullmatch(r"[\w.:>\-()\[\]*&]+", one) for one in (left, right)):
                start = a + len(code[a:b]) - len(code[a:b].lstrip())
                yield Fault("arguments", start, d, f"{right}, {left}")


def find(text):
    """All faults that can be planted in the text, in order of their places."""
    code = bare(text)
    found = [fault for rule in (operators, constants, conditions, statements, returns, arguments)
             for fault in rule(code)]
    # A replacement that repeats a part of the text has its literals blanked: they are put back.
    return sorted((restored(text, code, fault) for fault in found), key=lambda fault: fault[1:])


def restored(text, code, fault):
    span, original = code[fault.start:fault.end], text[fault.start:fault.end]
    if span == original or not fault.replacement:
        return fault
    if fault.kind == "arguments":
        left, right = (text[fault.start + a:fault.start + b].strip() for a, b in parameters(span, 0, len(span)))
        return fault._replace(replacement=f"{right}, {left}")
    return fault._replace(replacement=fault.replacement.replace(span, original))


def line_of(text, fault):
    return text.count("\n", 0, fault.start) + 1


def plant(text, fault):
    return text[:fault.start] + fault.replacement + text[fault.end:]
