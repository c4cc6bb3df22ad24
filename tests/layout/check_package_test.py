"""Proves that check_package.py finds each disagreement and lets a sound tree pass."""
# SPDX-License-Identifier: Apache-2.0
import os
import tempfile
import unittest

import check_package

RIGHT = {
    "CMakeLists.txt": "# Builds it.\nproject(X VERSION 1.2.0 LANGUAGES CXX)\n",
    "CHANGELOG.md": "# Changes\n\n## 1.2.0\n\n## 1.1.0\n",
    "packages.txt": "# The tool.\ng++ # compiler\nlibz-dev # z\n\n# Tests.\nvalgrind # counts\n",
    "debian/changelog": "x (1.2.0) unstable; urgency=medium\n\nx (1.1.0) unstable; urgency=medium\n",
    "debian/control": "Source: x\nBuild-Depends:\n debhelper-compat (= 13),\n libz-dev,\nStandards-Version: 4\n",
    "debian/libx0.install": "usr/lib/*/lib*.so.*\n",
    "debian/libx-dev.install": "usr/include\nusr/lib/*/[c]*\nusr/lib/*/lib*.so\n",
    "debian/x.install": "usr/bin\nusr/lib/systemd\nusr/share/zsh/_x usr/share/elsewhere\n",
}
FILES = ["lib/libx.so.0", "lib/libx.so", "lib/cmake/X/XConfig.cmake", "include/x/a.h", "bin/x", "share/zsh/_x",
         "lib/systemd/system/x.service"]

WRONG = [
    ({"CHANGELOG.md": "# Changes\n\n## 1.1.0\n"}, [], "CHANGELOG.md begins with version 1.1.0, CMakeLists.txt with 1.2.0"),
    ({"debian/changelog": "x (1.2.1) unstable\n"}, [], "debian/changelog begins with version 1.2.1"),
    ({"packages.txt": "g++\nlibz-dev\ncmake # builds\n# Tests.\n"}, [], "Build-Depends lacks cmake"),
    ({"packages.txt": "g++\n# Tests.\nlibz-dev\n"}, [], "Build-Depends has libz-dev"),
    ({}, ["lib/sysusers.d/x.conf"], "usr/lib/sysusers.d/x.conf: in 0 packages"),
    ({}, ["lib/little.a"], "usr/lib/a-triplet/little.a: in 0 packages"),
    ({}, ["share/man/man1/x.1"], "usr/share/man/man1/x.1: in 0 packages"),
    ({"debian/x.install": "usr/bin\nusr/lib/systemd\nusr/share/zsh\nusr/include\n"}, [], "usr/include/x/a.h: in 2 packages"),
    ({"debian/x.install": "usr/bin\nusr/lib/systemd\nusr/share/zsh\nusr/share/man\n"}, [], "debian/x.install: nothing that is installed matches usr/share/man"),
]


class CheckPackage(unittest.TestCase):
    def run_on(self, files, more):
        with tempfile.TemporaryDirectory() as root:
            os.mkdir(os.path.join(root, "debian"))
            for path, text in {**RIGHT, **files, "manifest": "\n".join("/there/" + path for path in FILES + more)}.items():
                with open(os.path.join(root, path), "w", encoding="utf-8") as out:
                    out.write(text)
            return check_package.check(root, os.path.join(root, "manifest"), "/there")

    def test_a_sound_tree_passes(self):
        self.assertEqual(self.run_on({}, []), [])

    def test_each_disagreement_is_found_alone(self):
        for files, more, message in WRONG:
            with self.subTest(message=message):
                found = self.run_on(files, more)
                self.assertEqual(len(found), 1, found)
                self.assertIn(message, found[0])


if __name__ == "__main__":
    unittest.main()
