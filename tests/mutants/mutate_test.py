#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What scripts/mutate.py makes of a source. `make mutate` runs this first."""
import pathlib
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import mutate  # noqa: E402


def changed(kind, body):
    """The bodies that the changes of this kind make of it."""
    text = f"void f() {{ {body} }}"
    made = (mutant.apply({"f.cpp": text}) for mutant in mutate.Source("f.cpp", text).mutants() if mutant.kind == kind)
    return sorted(source[len("void f() { "):-len(" }")] for source in made)


class Swap(unittest.TestCase):
    def test_neighbouring_calls_change_places(self):
        self.assertEqual(changed("swap", "a(); b(); c();"), ["a(); c(); b();", "b(); a(); c();"])

    def test_declaration_is_not_put_behind_its_use(self):
        self.assertEqual(changed("swap", "int n = a(); b(n);"), [])
        self.assertEqual(changed("swap", "std::vector<Text<char>> ids; b(ids);"), [])
        self.assertEqual(changed("swap", "Hold hold; b();"), ["b(); Hold hold;"])

    def test_nothing_is_put_behind_what_leaves(self):
        self.assertEqual(changed("swap", "a(); return b();"), [])
        self.assertEqual(changed("swap", "a(); throw B();"), [])

    def test_statement_of_a_condition_stays_with_it(self):
        self.assertEqual(changed("swap", "if (x) a(); b();"), [])
        self.assertEqual(changed("swap", "if (x) a(); else b(); c();"), [])
        self.assertEqual(changed("swap", "if (x) { a(); b(); } c();"), ["if (x) { b(); a(); } c();"])


class Double(unittest.TestCase):
    def test_call_is_made_twice(self):
        self.assertEqual(changed("double", "a(1); p->b();"), ["a(1); { p->b(); p->b(); }", "{ a(1); a(1); } p->b();"])

    def test_call_of_a_condition_stays_with_it(self):
        self.assertEqual(changed("double", "if (x) a();"), ["if (x) { a(); a(); }"])

    def test_declarations_assignments_and_what_leaves_are_no_calls(self):
        self.assertEqual(changed("double", "Hold hold(x); n = a(); return b();"), [])


class Choice(unittest.TestCase):
    def test_either_side_is_taken_always_or_in_the_others_place(self):
        self.assertEqual(changed("choice", "g(x ? 1 : n);"), ["g(x ? 1 : 1);", "g(x ? n : 1);", "g(x ? n : n);"])

    def test_choice_in_a_choice_is_changed_by_itself(self):
        self.assertEqual(changed("choice", "g(x ? 1 : y ? 2 : 3);"),
                         ["g(x ? 1 : 1);", "g(x ? 1 : y ? 2 : 2);", "g(x ? 1 : y ? 3 : 2);", "g(x ? 1 : y ? 3 : 3);",
                          "g(x ? y ? 2 : 3 : y ? 2 : 3);"])


class Others(unittest.TestCase):
    def test_operators_constants_and_conditions_are_changed(self):
        self.assertEqual(changed("operator", "n = a + b;"), ["n = a - b;"])
        self.assertEqual(changed("constant", "n = 1;"), ["n = 2;"])
        self.assertEqual(changed("condition", "if (x) a();"), ["if (false) a();", "if (true) a();"])

    def test_statement_is_taken_out(self):
        self.assertEqual(changed("remove", "a(); return b;"), ["; return b;", "a(); return {};"])

    def test_raw_string_is_read_and_left_alone(self):
        self.assertEqual(changed("constant", 'a(R"x(one " two)" 3)x");'), [])

    def test_changes_that_look_alike_are_numbered(self):
        text = "void f() {\n  a();\n  a();\n}\n"
        self.assertEqual([m.change for m in mutate.Source("f.cpp", text).mutants() if m.kind == "double"],
                         ["one call -> two", "one call -> two #2"])


if __name__ == "__main__":
    unittest.main()
