"""Compiles a source with a fault and links the library that it belongs to, beside a finished build."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import re
import shlex
import subprocess

SECONDS = 300


class DoesNotCompile(Exception):
    """The compiler, or the linker, refuses the fault."""


def run(command, folder):
    try:
        done = subprocess.run(command, cwd=folder, capture_output=True, timeout=SECONDS, check=False)
    except subprocess.TimeoutExpired as error:
        raise DoesNotCompile("the compiler does not come to an end") from error
    if done.returncode != 0:
        raise DoesNotCompile(done.stderr.decode(errors="replace"))


class Build:
    """A finished build of the tests: how its files are compiled and its libraries linked."""

    def __init__(self, root, folder):
        self.root, self.folder = root, folder
        with open(os.path.join(folder, "compile_commands.json"), encoding="utf-8") as file:
            self.commands = {os.path.relpath(entry["file"], root): entry["command"] for entry in json.load(file)}
        self.links = {}
        for library in ("libqorql.so.0", "libqorqlmodel.so.0", "libqorqlembedded.so.0"):
            real = os.path.basename(os.path.realpath(os.path.join(folder, library)))
            commands = subprocess.run(["ninja", "-C", folder, "-t", "commands", real], capture_output=True, text=True,
                                      check=True).stdout
            self.links[library] = next(line for line in reversed(commands.splitlines()) if f"-o {real} " in line)

    def compile(self, path, overlay, output):
        """Compiles a source, of which, or of whose headers, the overlay has a version of its own."""
        words = [word for word in shlex.split(self.commands[path])
                 if word not in ("-Werror", "-g1") and not word.endswith("ccache")]
        # Without warnings and debugging data, which would differ where the code does not, and so without the
        # precompiled headers, which have them.
        if "-include" in words:
            del words[words.index("-include"):words.index("-include") + 2]
        words[1:1] = ["-w", f"-I{overlay}"]
        words[words.index("-o") + 1] = output
        own = os.path.join(overlay, path)
        words[words.index("-c") + 1] = own if os.path.exists(own) else os.path.join(self.root, path)
        run(words, self.folder)

    def object_of(self, path):
        words = shlex.split(self.commands[path])
        return words[words.index("-o") + 1]

    def link(self, objects, folder):
        """Links the libraries that the objects belong to: {path of the source: object}."""
        for library, command in self.links.items():
            changed = re.sub(r"-o \S+ ", f"-o {folder}/{library} ", command, count=1)
            mine = 0
            for path, compiled in objects.items():
                name = f" {self.object_of(path)} "
                mine += name in changed
                changed = changed.replace(name, f" {compiled} ")
            if mine:
                run(["sh", "-c", changed], self.folder)
