"""Proves where faults are planted, and that the same seed plants the same."""
# SPDX-License-Identifier: Apache-2.0
import os
import sys
import unittest

import faults
import mutate
import sources

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def planted(text, kind):
    return [faults.plant(text, fault) for fault in faults.find(text) if fault.kind == kind]


class Faults(unittest.TestCase):
    def test_relations_and_connectives(self):
        self.assertEqual(planted("x = a < b;", "relation"), ["x = a <= b;", "x = a >= b;"])
        self.assertEqual(planted("x = a == b;", "relation"), ["x = a != b;"])
        self.assertEqual(planted("x = a && b || c;", "connective"), ["x = a || b || c;", "x = a && b && c;"])
        self.assertEqual(planted("x = !a;", "negation"), ["x = a;"])

    def test_templates_references_and_pointers_are_no_operators(self):
        for text in ("std::vector<int> a;", "T&& a = b(std::move(c));", "const X* const a = nullptr;", "f(X& a);"):
            self.assertEqual([fault for fault in faults.find(text) if fault.kind != "statement"], [], text)

    def test_constants_are_off_by_one_and_words_change(self):
        self.assertEqual(planted("x = 1;", "constant"), ["x = 0;", "x = 2;"])
        self.assertEqual(planted("x = 0U;", "constant"), ["x = 1U;"])
        self.assertEqual(planted("x = 1.5 + a2;", "constant"), [])
        self.assertEqual(planted("x = true;", "constant"), ["x = false;"])
        self.assertEqual(planted("x = std::min(a, b);", "constant"), ["x = std::max(a, b);"])
        self.assertEqual(planted("x = a.front();", "constant"), ["x = a.back();"])

    def test_conditions_guards_and_jumps(self):
        text = "if (a.b(c)) return d;"
        self.assertEqual(planted(text, "condition"), ["if (!(a.b(c))) return d;"])
        self.assertEqual(planted(text, "guard"), [";"])
        self.assertEqual(planted("if (a) return b; else c();", "guard"), [])
        self.assertEqual(planted("if (const auto* a = b()) return c;", "condition"), [])
        self.assertEqual(planted("if (a) continue;", "jump"), ["if (a) break;"])

    def test_statements_are_left_out_and_declarations_stay(self):
        self.assertEqual(planted("{\n  a.b(c);\n  int d = 1;\n  e = d;\n  return e;\n}", "statement"),
                         ["{\n  ;\n  int d = 1;\n  e = d;\n  return e;\n}", "{\n  a.b(c);\n  int d = 1;\n  ;\n  return e;\n}"])

    def test_results(self):
        self.assertEqual(planted("return a;", "result"), ["return {};"])
        self.assertEqual(planted("return a == b;", "result"), ["return !(a == b);"])

    def test_arguments(self):
        self.assertEqual(planted("f(a, b(c), d);", "arguments"), ["f(b(c), a, d);", "f(a, d, b(c));"])
        self.assertEqual(planted("void f(const X& a, int b);", "arguments"), [])
        self.assertEqual(planted('f(a, "b");', "arguments"), [])

    def test_comments_texts_and_directives_stay(self):
        for text in ("// a < b && !c", "/* return a;\n if (1) */", 'x("a < 1 && true");', "#if 1 < 2", "c('0');"):
            self.assertEqual([fault for fault in faults.find(text) if fault.kind != "statement"], [], text)

    def test_literals_survive_where_a_fault_repeats_them(self):
        self.assertEqual(planted('if (a == "x;y") b();', "condition"), ['if (!(a == "x;y")) b();'])
        self.assertEqual(planted('return a == "x";', "result"), ['return !(a == "x");'])


class Plans(unittest.TestCase):
    def test_the_same_seed_plants_the_same_and_another_something_else(self):
        first, again, other = (mutate.plans(ROOT, ["model"], 20, seed) for seed in (1, 1, 2))
        self.assertEqual(first, again)
        self.assertNotEqual(first, other)
        self.assertEqual(len({(plan.path, plan.line) for plan in first}), 20)

    def test_an_area_has_its_own_files_alone(self):
        for plan in mutate.plans(ROOT, ["mof"], 20, 1):
            self.assertTrue(plan.path.startswith("Cimom/Mof/"), plan.path)

    def test_a_fault_changes_its_line_and_no_other(self):
        for plan in mutate.plans(ROOT, ["embedded"], 100, 3):
            lines = mutate.difference(ROOT, plan)
            self.assertTrue(any(line.startswith("-") for line in lines) and any(line.startswith("+") for line in lines))
            self.assertLess(len(lines), 30)

    def test_a_header_is_compiled_with_all_that_include_it(self):
        users = sources.in_areas(ROOT, ["engine"])
        self.assertIn("Cimom/QORQL/QORQL_Expression.cpp", users["Cimom/QORQL/QORQL_ChainParser.h"])
        self.assertEqual(users["Cimom/QORQL/QORQL_Factor.cpp"], ["Cimom/QORQL/QORQL_Factor.cpp"])


if __name__ == "__main__":
    sys.exit(unittest.main())
