"""Trees of a few files, and what the tests of all checks of a tree have in common."""
# SPDX-License-Identifier: Apache-2.0
import os
import tempfile


def write_tree(root, files):
    """Writes texts by their paths below a folder, with the folders that lead to them."""
    for path, text in files.items():
        place = os.path.join(root, path)
        os.makedirs(os.path.dirname(place), exist_ok=True)
        with open(place, "w", encoding="utf-8") as out:
            out.write(text)


class TreeCheck:
    """For a unittest.TestCase that tells the check, a function of a tree's root that returns messages; the files of a tree
    that passes, RIGHT; and in WRONG each file that breaks a rule, its text, and what the one message must say."""

    def run_on(self, extra, *options):
        """What the check says of the right tree with other files, or other texts, in it."""
        with tempfile.TemporaryDirectory() as root:
            write_tree(root, {**self.RIGHT, **extra})
            return type(self).check(root, *options)

    def assert_one(self, found, message):
        self.assertEqual(len(found), 1, found)
        self.assertIn(message, found[0])

    def test_a_right_tree_passes(self):
        self.assertEqual(self.run_on({}), [])

    def test_each_wrong_file_is_found_alone(self):
        for path, text, message in self.WRONG:
            with self.subTest(path=path, message=message):
                self.assert_one(self.run_on({path: text}), message)
