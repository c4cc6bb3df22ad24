"""Statements, filters and models whose size grows with a number n, for the growth test.

Each workload is (kind, text(n)): a query or a filter for the model below, or a model with a query.
"""
# SPDX-License-Identifier: Apache-2.0

MODEL = """class C { [Key] uint32 Id; uint32 K; string Text; };
instance of C { Id = 1; K = 1; Text = "abc"; };
instance of C { Id = 2; K = 2; };
"""
INDICATIONS = """[Indication] class CIM_AlertIndication { uint8 U8; string Text; };
class CIM_Volume { [Key] string Id; };
"""
INDICATION = 'instance of CIM_AlertIndication { U8 = 5; Text = "abc"; };'


def chain(term, operator, n):
    return operator.join([term] * n)


def where(condition):
    return lambda n: (MODEL, "SELECT Id FROM C WHERE " + condition(n))


def rows(n, query):
    return "".join(
        f'instance of C {{ Id = {i + 10}; K = {i}; Text = "t{i * 7919 % n:06}"; }};\n' for i in range(n)), query


def alike_rows(n):
    """Many texts that differ at their ends alone."""
    front = "x" * 100
    return MODEL + "".join(
        f'instance of C {{ Id = {i + 10}; Text = "{front}{i * 7919 % n:06}"; }};\n' for i in range(n))


def long_rows(n):
    """A few texts that are long and hardly differ."""
    middle = "x" * n
    return MODEL + "".join(
        f'instance of C {{ Id = {i + 10}; Text = "{i % 2}{middle}{i % 7}"; }};\n' for i in range(40))


def over_rows(query):
    return lambda n: (MODEL + rows(n, query)[0], query)


def joined(query):
    def texts(n):
        other = "class D { [Key] uint32 Id; uint32 K; };\n" + "".join(
            f"instance of D {{ Id = {i}; K = {i}; }};\n" for i in range(n))
        return MODEL + other + rows(n, query)[0], query
    return texts


def classes(n):
    model = "".join(f"class F{i} {{ [Key] uint32 Id; uint32 P{i}; }};\ninstance of F{i} {{ Id = {i}; }};\n"
                    for i in range(n))
    names = ", ".join(f"F{i} AS f{i}" for i in range(n))
    return model, f"SELECT f0.Id, P{n - 1} FROM {names} WHERE P{n - 1} IS NULL"


QUERIES = {
    "and": where(lambda n: chain("Id = 1", " AND ", n)),
    "or": where(lambda n: chain("Id = 1", " OR ", n)),
    "not": where(lambda n: chain("NOT Id = 3", " AND ", n)),
    "alternating": where(lambda n: chain("Id < 5 OR K = 2 AND Text IS NULL", " OR ", n)),
    "plus": where(lambda n: chain("Id", " + ", n) + " > 0"),
    "minus": where(lambda n: chain("Id", " - ", n) + " >= 0"),
    "times": where(lambda n: chain("1", " * ", n) + " = Id"),
    "divide": where(lambda n: chain("1", " / ", n) + " = Id"),
    "concatenation": where(lambda n: chain("'x'", " + ", n) + " = Text"),
    "parentheses": where(lambda n: chain("(Id + 1)", " + ", n) + " > 0"),
    "like": where(lambda n: chain("Text LIKE 'b'", " AND ", n)),
    "isa": where(lambda n: chain("C ISA C", " AND ", n)),
    "outer": where(lambda n: chain("Id *= K", " AND ", n)),
    "entries": lambda n: (MODEL, "SELECT " + chain("Id", ", ", n) + " FROM C"),
    "aliased entries": lambda n: (MODEL, "SELECT " + ", ".join(f"Id + {i} AS a{i}" for i in range(n)) + " FROM C"),
    "functions": lambda n: (MODEL, "SELECT " + ", ".join(f"OBJECTPATH(C) AS a{i}" for i in range(n)) + " FROM C"),
    "aggregates": lambda n: (MODEL, "SELECT " + ", ".join(f"SUM(Id) AS a{i}" for i in range(n)) + " FROM C"),
    "one class often": lambda n: (MODEL, "SELECT C.Id FROM " + chain("C", ", ", n)),
    "sort key": lambda n: (MODEL, "SELECT Id FROM C ORDER BY " + chain("Id", " + ", n) + " DESC"),
    "dots": where(lambda n: "C.Text" + ".Text" * n + " = 1"),  # one step is a property, and no error
    "blanks": lambda n: (MODEL, "SELECT Id FROM C WHERE" + " \n\t" * n + "Id = 1"),
    "unknown bytes": lambda n: (MODEL, "SELECT Id FROM C WHERE Id = 1" + "?" * n),
    "literal": where(lambda n: "'" + "x" * n + "' = Text"),
    "digits": where(lambda n: "Id < " + "1" * n),
    "property name": where(lambda n: "N" * n + " = 1"),
    "class name": lambda n: (MODEL, "SELECT Id FROM " + "N" * n),
    "alias": lambda n: (MODEL, f"SELECT {'N' * n}.Id FROM C AS {'N' * n}"),
    "scan": over_rows("SELECT Id, Text FROM C"),
    "filter": over_rows("SELECT Id FROM C WHERE K > 5 AND Text LIKE '1'"),
    "sort": over_rows("SELECT Id FROM C WHERE Id > 2 ORDER BY Text ASC"),
    "sort with a null": over_rows("SELECT Id FROM C ORDER BY Text ASC"),
    "sort alike": lambda n: (alike_rows(n), "SELECT Id FROM C WHERE Id > 2 ORDER BY Text DESC"),
    "sort long": lambda n: (long_rows(n), "SELECT Id FROM C WHERE Id > 2 ORDER BY Text ASC"),
    "count": over_rows("SELECT COUNT(Id) AS N, MAX(Text) AS M FROM C WHERE Id > 0"),
    "equality join": joined("SELECT C.Id, D.Id FROM C, D WHERE C.K = D.K"),
    "outer join": joined("SELECT C.Id, D.Id FROM C, D WHERE C.K *= D.K"),
}

FILTERS = {
    "filter and": lambda n: "SELECT * FROM CIM_AlertIndication WHERE " + chain("U8 = 5", " AND ", n),
    "filter sum": lambda n: "SELECT * FROM CIM_AlertIndication WHERE " + chain("U8", " + ", n) + " > 1",
    "filter isa": lambda n: "SELECT * FROM CIM_AlertIndication WHERE " + chain("Text ISA CIM_Volume", " AND ", n),
    "filter entries": lambda n: "SELECT " + chain("U8", ", ", n) + " FROM CIM_AlertIndication",
    "filter classes": lambda n: "SELECT * FROM " + chain("CIM_AlertIndication", ", ", n) + " WHERE U8 = 5",
}

MODELS = {
    "mof properties": lambda n: "class P { [Key] uint32 Id; " + "".join(f"uint32 P{i};" for i in range(n)) + " };",
    "mof subclasses": lambda n: "class P { [Key] uint32 Id; };" + "".join(f"class P{i} : P {{ }};" for i in range(n)),
    "mof comment": lambda n: "/* " + "x\n" * n + " */ class P { };",
    "mof strings": lambda n: "class P { [Description(" + '"x" ' * n + ")] string S; };",
    "mof array": lambda n: "class P { [Key] uint32 Id; uint32 A[] = {" + chain("1", ",", n) + "}; };",
    "mof qualifiers": lambda n: "class P { [" + ", ".join(f"Q{i}(1)" for i in range(n)) + "] string S; };",
    "mof faults": lambda n: "class P { broken };\n" * n,
    "mof aliases": lambda n: "class P { [Key] uint32 Id; };" + "".join(
        f"instance of P as $a{i} {{ Id = {i}; }};\n" for i in range(n)),
}

# Those where each n is a few bytes of one token, literal or comment.
BY_BYTES = {"blanks", "unknown bytes", "literal", "digits", "property name", "class name", "alias", "mof comment",
            "mof strings"}
