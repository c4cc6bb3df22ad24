"""Runs a command against a WBEM server that serves the models of a query script:

with_script_models.py --dump MODEL_DUMP --script FILE.qtest --models FOLDER [--models FOLDER...] [option...] -- COMMAND

In the command {url} stands for the server's URL. Other options go to wbem_server.py. The exit status is the command's.
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import itertools
import os
import sys
import tempfile

import wbem_server


def read_head(path):
    """(namespace, models, texts in MOF) of a script: what stands in front of its cases."""
    namespace, models, texts = "root/cimv2", [], []
    with open(path, encoding="utf-8") as script:
        lines = iter(script.read().split("\n"))
    for line in itertools.takewhile(lambda one: not one.startswith("case "), lines):
        word, _, rest = line.partition(" ")
        if word == "namespace":
            namespace = rest.strip()
        elif word == "model":
            models.append(rest.strip())
        elif line.split() == ["mof", "{{"]:
            texts.append("\n".join(itertools.takewhile(lambda one: one != "}}", lines)))
    return namespace, models, texts


def find_model(name, folders):
    for folder in folders:
        path = os.path.join(os.path.abspath(folder), name)
        if os.path.exists(path):
            return path
    raise FileNotFoundError(f"{name} is in none of {', '.join(folders)}")


def mof_of(script, folders):
    namespace, models, texts = read_head(script)
    includes = [f'#pragma include ("{find_model(model, folders)}")' for model in models]
    return "\n".join([f'#pragma namespace ("{namespace}")', *includes, *texts, ""])


def main(arguments):
    own = list(itertools.takewhile(lambda one: one != "--", arguments))
    parser = argparse.ArgumentParser(description="Runs a command against a server of a query script's models.")
    parser.add_argument("--script", required=True)
    parser.add_argument("--models", required=True, action="append")
    options, others = parser.parse_known_args(own)
    with tempfile.TemporaryDirectory(prefix="qorql-script-") as folder:
        mof = os.path.join(folder, "models.mof")
        with open(mof, "w", encoding="utf-8") as file:
            file.write(mof_of(options.script, options.models))
        return wbem_server.main([*others, mof, *arguments[len(own):]])


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
