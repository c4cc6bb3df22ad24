"""Programs of somebody else over the installed libraries, by what pkg-config says: an object manager of one's own with the
engine and the model, and the guide's program with the object manager that comes along.

Run as outside_test.py ROOT PREFIX LIBRARIES WORK COMPILER...: LIBRARIES is the folder of the libraries below the PREFIX.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess
import sys
import unittest

ROOT, PREFIX, LIBRARIES, WORK = sys.argv[1:5]
COMPILER = sys.argv[5:]
FAKE = os.path.join(ROOT, "tests", "layout", "fake")
PC_FOLDER = os.path.join(PREFIX, LIBRARIES, "pkgconfig")


def pkg_config(*words):
    environment = {**os.environ, "PKG_CONFIG_PATH": PC_FOLDER}
    ran = subprocess.run(["pkg-config", *words], env=environment, capture_output=True, text=True, check=False)
    assert ran.returncode == 0, ran.stderr
    return ran.stdout.split()


class Outside(unittest.TestCase):
    def setUp(self):
        os.makedirs(os.path.join(WORK, "tests", "layout"), exist_ok=True)
        link = os.path.join(WORK, "tests", "layout", "fake")
        if not os.path.lexists(link):
            os.symlink(FAKE, link)

    def build(self, name, packages, sources):
        """The program's standard output. Each source is compiled by itself, so that a compiler cache can know it."""
        flags = pkg_config("--cflags", *packages)
        objects = []
        for source in sources:
            objects.append(os.path.join(WORK, name + "_" + os.path.basename(source) + ".o"))
            subprocess.run([*COMPILER, "-std=c++20", *flags, "-I", WORK, "-c", source, "-o", objects[-1]], check=True)
        program = os.path.join(WORK, name)
        libraries = pkg_config("--libs", *packages)
        subprocess.run([COMPILER[-1], "-o", program, *objects, *libraries, f"-Wl,-rpath,{os.path.join(PREFIX, LIBRARIES)}"],
                       check=True)
        return subprocess.run([program], capture_output=True, text=True, check=True).stdout

    def test_an_object_manager_of_ones_own_links_the_engine_and_the_model(self):
        sources = [os.path.join(ROOT, "tests", "layout", "outside", "main.cpp")]
        sources += [os.path.join(FAKE, name) for name in ("FakeObjectManager.cpp", "FakeObjects.cpp", "FakeServices.cpp")]
        self.assertEqual(self.build("outside", ["qorql", "qorqlmodel"], sources), "found b\n")

    def test_a_program_that_embeds_the_engine_links_the_object_manager(self):
        source = os.path.join(ROOT, "examples", "embed", "main.cpp")
        self.assertIn("lamp: 24.5\n", self.build("embed", ["qorql", "qorqlembedded"], [source]))

    def test_the_headers_are_found_and_nothing_beside_them(self):
        for name in ("qorql", "qorqlmodel", "qorqlembedded"):
            folders = [word[2:] for word in pkg_config("--cflags", name)]
            self.assertEqual([os.path.realpath(folder) for folder in folders], [os.path.realpath(os.path.join(PREFIX, "include/qorql"))])
        self.assertEqual(sorted(os.listdir(os.path.join(PREFIX, "include"))), ["qorql"])

    def test_each_library_names_the_version_of_the_project(self):
        versions = {tuple(pkg_config("--modversion", name)) for name in ("qorql", "qorqlmodel", "qorqlembedded")}
        self.assertEqual(len(versions), 1)


if __name__ == "__main__":
    del sys.argv[1:]
    sys.exit(unittest.main())
