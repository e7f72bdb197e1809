#!/usr/bin/env python3
"""What faults mutate.py finds in a text."""

import unittest

import mutate


def changed(text, operator):
    """The text with each fault of an operator put in."""
    return [
        text[: mutant.start] + mutant.text + text[mutant.end :]
        for mutant in mutate.mutants_of("app/Some.cpp", text)
        if mutant.operator == operator
    ]


class OperatorsTest(unittest.TestCase):
    def test_comparisons_are_widened_and_turned(self):
        self.assertEqual(changed("b = i < 7;", "relation"), ["b = i <= 7;", "b = i >= 7;"])
        self.assertEqual(changed("b = i == j;", "relation"), ["b = i != j;"])

    def test_template_brackets_and_pointers_are_no_operators(self):
        text = "const std::span<const char *> astAll = Make<4>(&iOne, *piTwo, -iThree);"
        self.assertEqual(changed(text, "relation") + changed(text, "arithmetic"), [])

    def test_numbers_are_one_off_in_their_own_notation(self):
        self.assertEqual(changed("i = 0x0F;", "number"), ["i = 0x10;", "i = 0x0E;"])
        self.assertEqual(changed("i = 0U;", "number"), ["i = 1U;"])

    def test_what_the_compiler_checks_is_left_alone(self):
        text = '#define SIZE 4\n// 1 + 2\nstatic_assert(SIZE == 4, "four");\n'
        self.assertEqual(mutate.mutants_of("app/Some.cpp", text), [])

    def test_conversions_change_their_sign_their_case_and_their_width(self):
        self.assertEqual(changed('Put("%d");', "conversion"), ['Put("%u");', 'Put("%2d");'])
        self.assertEqual(
            changed('Put("%02x");', "conversion"), ['Put("%02X");', 'Put("%2x");', 'Put("%x");']
        )

    def test_every_character_of_a_text_can_be_another_one(self):
        self.assertEqual(changed(r'Put("\nA 1");', "text"),
                         ['Put("A 1");', r'Put("\na 1");', r'Put("\nA1");', r'Put("\nA 2");'])  # fmt: skip

    def test_conditions_are_turned_round(self):
        self.assertEqual(changed("if (a(b)) {}", "condition"), ["if (!(a(b))) {}"])
        self.assertEqual(changed("x = a ? b : c;", "condition"), ["x = a ? c : b;"])

    def test_statements_are_left_out_but_not_declarations(self):
        text = "void F() {\n    int i = 1;\n    Field stField;\n    Run(i);\n    i += 2;\n    break;\n}\n"
        self.assertEqual(
            [text.replace("    ;\n", "") for text in changed(text, "statement")],
            [text.replace(f"    {left_out};\n", "") for left_out in ("Run(i)", "i += 2", "break")],
        )

    def test_arguments_and_elements_change_places_but_not_parameters(self):
        self.assertEqual(changed("Run(a, b + c, d);", "order"),
                         ["Run(b + c, a, d);", "Run(a, d, b + c);"])  # fmt: skip
        self.assertEqual(changed('x = {{1, "a"}, {2, "b"}};', "order"), ['x = {{2, "b"}, {1, "a"}};'])
        self.assertEqual(changed("int Run(int iOne, const char *pcTwo, View stThree) {}", "order"), [])

    def test_other_types_results_and_truths(self):
        self.assertEqual(changed("x = {4, FieldType::I8};", "field type"),
                         ["x = {4, FieldType::U8};", "x = {4, FieldType::I16};"])  # fmt: skip
        self.assertEqual(changed("return a + b;", "result"), ["return {};"])
        self.assertEqual(changed("b = true;", "truth"), ["b = false;"])

    def test_the_same_seed_draws_the_same_faults(self):
        sources = {"app/Some.cpp": "i = 1 + 2;", "ext/Other.cpp": 'Put("%d", a < b);'}
        drawn = list(mutate.draw(5, sources))
        self.assertEqual(drawn, list(mutate.draw(5, sources)))
        self.assertNotEqual(drawn, list(mutate.draw(6, sources)))
        self.assertCountEqual(
            drawn, [mutant for file, text in sources.items() for mutant in mutate.mutants_of(file, text)]
        )


if __name__ == "__main__":
    unittest.main()
