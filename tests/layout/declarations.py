"""What a header of this tree declares: classes and operations with their names, access, and the comments that they have.

Reads the code as clang-format lays it out, without macros that hide declarations; no compiler is asked.
"""
# SPDX-License-Identifier: Apache-2.0
import dataclasses
import re

SCOPE = re.compile(r"^(?:template\s*<.*>\s*)?(?:(class|struct|union|namespace|enum(?:\s+class)?)\b\s*(?:\[\[.*?\]\]\s*)?([\w:]*)|extern \"C\")")
NAME = re.compile(r"((?:\w+::)*operator\s*(?:\(\)|\[\]|new|delete|[^\s\w(]+|[\w:]+(?:\s*[*&]+)?)|~?[\w:]+)\s*$")
ACCESS = re.compile(r"^(public|protected|private)\s*:")
INITIALISED = re.compile(r"\)\s*(?:noexcept\s*)?:\s*(?!:).*[\w>]$")  # the name of a member before its brace
NOT_FUNCTIONS = ("using ", "typedef ", "static_assert", "friend class ", "friend struct ")


@dataclasses.dataclass
class Declaration:
    kind: str  # "class", "function", "constant"
    name: str  # with its classes
    access: str
    line: int
    text: str
    comment: str = ""  # above it, or behind it
    opens_paragraph: bool = True  # nothing but a comment stands between it and a blank line or an opening brace


BLANKED = re.compile(r"//[^\n]*|^[ \t]*#(?:[^\n]*\\\n)*[^\n]*|\"(?:[^\"\\\n]|\\.)*\"|'(?:[^'\\\n]|\\.)'", re.MULTILINE)


def code_of(text):
    """The text with blanks for comments, preprocessor lines and what stands between quotes; lines stay where they are."""
    return BLANKED.sub(lambda match: re.sub(r"[^\n]", " ", match.group(0)), text)


def strip_templates(text):
    """Without what stands between angle brackets, and attributes."""
    text = re.sub(r"\[\[.*?\]\]", "", text)
    text = re.sub(r"\boperator\s*(<=>|<<|>>|<=|>=|->\*?|<|>)", lambda match: "operator" + "".join(
        {"<": "\x01", ">": "\x02"}.get(sign, sign) for sign in match.group(1)), text)
    while True:
        stripped = re.sub(r"<[^<>]*>", "", text)
        if stripped == text:
            return text.replace("\x01", "<").replace("\x02", ">")
        text = stripped


def function_name(text):
    """The name of the function that the text declares; None when it declares none."""
    if text.startswith(NOT_FUNCTIONS):
        return None
    flat = re.sub(r"^template\s*", "", strip_templates(text)).strip()
    flat = re.sub(r"^requires\s*\((?:[^()]|\([^()]*\))*\)", "", flat).strip()
    call = re.match(r"(.*?\boperator\s*\(\))\s*\(", flat)
    head = call.group(1) if call else flat.split("(", 1)[0]
    if "(" not in flat or re.search(r"[^=!<>]=(?!=)", re.sub(r"\boperator\s*[^\w\s]+", "", head)):
        return None
    match = NAME.search(head)
    return re.sub(r"\s+", " ", match.group(1)) if match else None


def constant_name(text):
    flat = strip_templates(text)
    match = re.match(r"^(?:inline |constexpr |extern )*static\b[^(=;{]*?(\w+)\s*(?:=|;|\{|$)", flat)
    return match.group(1) if match else None


class Reader:
    """Walks one header, sign by sign."""

    def __init__(self, text):
        self.lines = text.split("\n")
        self.code = code_of(text)
        self.at = 0
        self.found = []
        self.scopes = []  # (name, access); a namespace is public
        self.begin()

    def begin(self):
        """What comes next is a declaration of its own."""
        self.start, self.mark, self.head, self.parens = None, self.at, "", 0

    def text(self):
        return re.sub(r"\s+", " ", self.head + self.code[self.mark:self.at]).strip()

    def read(self):
        steps = {";": self.end_declaration, "}": self.close_scope, "{": self.open_brace}
        while self.at < len(self.code):
            sign = self.code[self.at]
            if self.start is None and not sign.isspace() and sign not in steps and self.enter():
                continue
            self.parens += {"(": 1, ")": -1}.get(sign, 0)
            if sign in steps and self.parens == 0:
                steps[sign]()
            else:
                self.at += 1
        return self.found

    def enter(self):
        """Notes where a declaration starts; True when it is none but says who may see what follows."""
        label = ACCESS.match(self.code[self.at:self.at + 20])
        if label and self.scopes:
            self.scopes[-1] = (self.scopes[-1][0], label.group(1))
            self.at += label.end()
            self.begin()
            return True
        self.start = self.at
        return False

    def end_declaration(self):
        self.record()
        self.at += 1
        self.begin()

    def close_scope(self):
        if self.scopes:
            self.scopes.pop()
        self.at += 1
        self.begin()

    def open_brace(self):
        if self.opens_scope():
            self.at += 1
            self.begin()
        elif function_name(self.text()) and not INITIALISED.search(self.text()):
            self.record()
            self.skip_braces()
            self.begin()
        else:  # an initialiser, or the names of an enumeration
            self.head = self.text() + "{}"
            self.skip_braces()
            self.mark = self.at

    def skip_braces(self):
        depth = 0
        while self.at < len(self.code):
            depth += {"{": 1, "}": -1}.get(self.code[self.at], 0)
            self.at += 1
            if depth == 0:
                return

    def opens_scope(self):
        """Enters a class or a namespace; False when the brace opens something else."""
        match = SCOPE.match(strip_templates(self.text()).strip()) or SCOPE.match(self.text())
        if not match or (match.group(1) or "").startswith("enum"):
            return False
        kind, name = match.group(1), match.group(2) or ""
        is_outlying = kind != "namespace" and "::" in name  # a nested class, which its class keeps to itself
        if kind in ("class", "struct", "union") and name and not is_outlying:
            self.add("class", name)
        hidden = kind == "class" or is_outlying or (kind == "namespace" and not name)
        self.scopes.append((name, "private" if hidden else "public"))
        return True

    def record(self):
        name = function_name(self.text())
        if name and "::" not in name.split("operator", 1)[0]:  # else the definition of what a class declares
            self.add("function", name)
        elif not name and constant_name(self.text()):
            self.add("constant", constant_name(self.text()))

    def add(self, kind, name):
        start, end = (self.code.count("\n", 0, place) for place in (self.start, self.at))
        comment, opens = self.comment_of(start, end)
        access = next((access for _, access in self.scopes if access != "public"), "public")
        full = "::".join([scope for scope, _ in self.scopes if scope] + [name])
        self.found.append(Declaration(kind, full, access, start + 1, self.text(), comment, opens))

    def comment_of(self, start, end):
        """What stands above the lines and behind them, and whether nothing but that stands above up to a blank line."""
        above, number = [], start - 1
        while number >= 0 and self.lines[number].strip().startswith("//"):
            above.append(self.lines[number].strip().lstrip("/ "))
            number -= 1
        behind = [re.search(r"//\s*(.*)$", re.sub(r'"(?:[^"\\]|\\.)*"', "", line)) for line in self.lines[start:end + 1]]
        opens = number < 0 or not self.lines[number].strip() or bool(re.search(r"[{:]$", self.lines[number].strip()))
        return " ".join(above[::-1] + [match.group(1) for match in behind if match]), opens


def read(text):
    return Reader(text).read()


def read_file(path):
    with open(path, encoding="utf-8") as header:
        return read(header.read())
