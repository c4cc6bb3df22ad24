"""Association conditions over worlds by chance, against a second implementation of their rules."""
# SPDX-License-Identifier: Apache-2.0
import random

import toolcase
from toolcase import ToolCase

# Three classes, and the associations by their two ends; LX and LZ tie the same classes.
CLASSES = ("TA", "TB", "TC")
ENDS = {"LX": ("TA", "TB"), "LY": ("TB", "TC"), "LZ": ("TA", "TB")}
WORLDS = 100
STATEMENTS = 12


class World:
    """Objects are (class, id, number); links are (association, left object, right object, number)."""

    def __init__(self, dice):
        self.extents = {}
        for name in CLASSES:
            self.extents[name] = [(name, i, dice.choice([None, 1, 2])) for i in range(dice.randrange(4))]
        for name, (left, right) in ENDS.items():
            pairs = [(a, b) for a in self.extents[left] for b in self.extents[right] if dice.random() < 0.45]
            dice.shuffle(pairs)
            self.extents[name] = [(name, a, b, dice.choice([1, 2])) for a, b in pairs]

    def mof(self):
        lines = [f"class {name} {{ [Key] uint32 Id; uint32 Number; }};" for name in CLASSES]
        lines += [f"[Association] class {name} {{ [Key] {left} REF L; [Key] {right} REF R; uint32 Number; }};"
                  for name, (left, right) in ENDS.items()]
        for name in CLASSES:
            lines += [f"instance of {name} as ${name}{i} {{ Id = {i}; Number = {'NULL' if n is None else n}; }};"
                      for _, i, n in self.extents[name]]
        for name in ENDS:
            lines += [f"instance of {name} {{ L = ${a[0]}{a[1]}; R = ${b[0]}{b[1]}; Number = {n}; }};"
                      for _, a, b, n in self.extents[name]]
        return "\n".join(lines)

    def associates(self, source, association, wanted):
        found = []
        for _, a, b, _ in self.extents[association]:
            other = b if a == source else a if b == source else None
            if other is not None and other[0] == wanted:
                found.append(other)
        return found


class Association:
    def __init__(self, dice):
        self.name = dice.choice(list(ENDS))
        self.source, self.target = dice.sample(ENDS[self.name], 2)
        self.is_outer = dice.random() < 0.5

    def text(self):
        return f"{self.name} {'*=' if self.is_outer else '='} {self.source} AND {self.name} = {self.target}"

    def apply(self, world, columns, rows):
        """The target becomes a column, or filters the one that is there; then the association's own column."""
        source = columns.index(self.source)
        if self.target in columns:
            target = columns.index(self.target)

            def keep(group):
                return [row for found in world.associates(group[0][source], self.name, self.target)
                        for row in group if row[target] == found]
            rows = self.keep_by_group(rows, [target], keep)
        else:
            made = []
            for row in rows:
                found = world.associates(row[source], self.name, self.target)
                made += [row + (one,) for one in found or ([None] if self.is_outer else [])]
            columns, rows = columns + [self.target], made
        if self.name in columns:
            own, target = columns.index(self.name), columns.index(self.target)

            def tied(group):
                return [row for row in group if row[own] and set(row[own][1:3]) == {row[source], row[target]}]
            rows = self.keep_by_group(rows, [own, target], tied)
        return columns, rows

    def keep_by_group(self, rows, left_out, keep):
        groups = {}
        for row in rows:
            groups.setdefault(tuple(cell for i, cell in enumerate(row) if i not in left_out), []).append(row)
        kept = []
        for group in groups.values():
            stay = keep(group)
            if not stay and self.is_outer:
                stay = [tuple(None if i in left_out else cell for i, cell in enumerate(group[0]))]
            kept += stay
        return kept


class Test:
    """A comparison of one property with a number, or with null."""

    def __init__(self, dice, names):
        self.name = dice.choice(names)
        self.operator = dice.choice(["= 1", "<> 1", "IS NULL"])
        self.is_negated = dice.random() < 0.2

    def text(self):
        return f"{'NOT ' if self.is_negated else ''}{self.name}.Number {self.operator}"

    def truth(self, columns, row):
        cell = row[columns.index(self.name)]
        number = None if cell is None else cell[-1]
        if self.operator == "IS NULL":
            return number is None
        return None if number is None else (number == 1) == (self.operator == "= 1")

    def apply(self, world, columns, rows):
        if self.name not in columns:  # a fetch for a condition leaves out what makes it false
            columns, rows = product(columns, rows, self.name, world)
            rows = [row for row in rows if self.truth(columns, row) is not False]
        return columns, [row for row in rows if self.truth(columns, row) is (not self.is_negated)]


def product(columns, rows, name, world):
    objects = world.extents[name]
    if not rows:
        made = [(None,) * len(columns) + (one,) for one in objects]
    else:
        made = [row + (one,) for row in rows for one in objects or [None]]
    return columns + [name], made


class Statement:
    def __init__(self, dice):
        names = list(CLASSES) + [name for name in ENDS if dice.random() < 0.2]
        dice.shuffle(names)
        self.operands = [self.chain(dice, names) for _ in range(2 if dice.random() < 0.2 else 1)]
        self.sources = names
        self.selected = [name for name in names if dice.random() < 0.7]

    @staticmethod
    def chain(dice, names):
        terms = [Test(dice, names)] if dice.random() < 0.3 else []
        terms.append(Association(dice))
        while dice.random() < 0.55:
            terms.append(Association(dice) if dice.random() < 0.55 else Test(dice, names))
        return terms

    def text(self):
        columns = "".join(f", {name}.{'Id' if name in CLASSES else 'Number'} AS {name}X" for name in self.selected)
        condition = " OR ".join(" AND ".join(term.text() for term in terms) for terms in self.operands)
        return f"SELECT '.' AS Mark{columns} FROM {', '.join(self.sources)} WHERE {condition}"

    def not_enumerated(self):
        """Targets that no earlier association has as source, and associations that nothing else names."""
        sources, targets, associations = set(), set(), set()
        for term in self.operands[-1]:
            if isinstance(term, Association):
                if term.source not in targets:
                    sources.add(term.source)
                if term.target not in sources:
                    targets.add(term.target)
                associations.add(term.name)
        named = {term.name for terms in self.operands for term in terms if isinstance(term, Test)}
        return targets | (associations - named - set(self.selected))

    def answer(self, world):
        columns, rows = [], []
        for name in self.sources:
            if name not in self.not_enumerated():
                columns, rows = product(columns, rows, name, world)
        for term in self.operands[-1]:
            columns, rows = term.apply(world, columns, rows)
        return [["."] + [self.cell(row[columns.index(name)]) for name in self.selected] for row in rows]

    @staticmethod
    def cell(one):
        if one is None:
            return ""
        return str(one[1] if one[0] in CLASSES else one[3])


class Associations(ToolCase):
    def test_statements_by_chance(self):
        with_rows = 0
        for seed in range(WORLDS):
            dice = random.Random(seed)
            world = World(dice)
            path = self.write("world.mof", world.mof())
            statements = [Statement(dice) for _ in range(STATEMENTS)]
            text = ";\n".join(statement.text() for statement in statements)
            out = self.succeed(self.run_tool("--no-live", "-m", path, "-o", "csv", text))
            answers = out.rstrip("\n").split("\n\n")
            self.assertEqual(len(answers), STATEMENTS)
            for statement, answer in zip(statements, answers):
                rows = [line.split(",") for line in answer.split("\n")[1:]]
                with self.subTest(seed=seed, statement=statement.text()):
                    self.assertEqual(rows, statement.answer(world))
                with_rows += 1 if rows else 0
        self.assertGreater(with_rows, WORLDS * STATEMENTS // 4)


if __name__ == "__main__":
    toolcase.main()
