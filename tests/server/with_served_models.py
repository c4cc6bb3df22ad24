"""Runs a command against `qorql serve` over the models of a query script:

with_served_models.py --tool QORQL --script FILE.qtest --models FOLDER [--models FOLDER...] [--gateway] -- COMMAND

In the command {url} stands for the server's URL; with --gateway that of a second server, which asks the first one. The
exit status is the command's, or 1 when a server does not end as it should.
"""
# SPDX-License-Identifier: Apache-2.0
import argparse
import itertools
import os
import subprocess
import sys
import tempfile

import servercase
from with_script_models import mof_of  # in the folder that servercase names


def serve(tool, environment, *arguments):
    servercase.TOOL = tool
    return servercase.Server("--no-live", "--listen", "127.0.0.1:0", *arguments, environment=environment)


def stop(server):
    status = server.stop()
    if status != 0:
        print(f"a server ended with {status}:\n{server.log_text()}", file=sys.stderr)
    server.errors.close()
    return status


def run(options, command, folder):
    mof = os.path.join(folder, "models.mof")
    with open(mof, "w", encoding="utf-8") as file:
        file.write(mof_of(options.script, options.models))
    environment = {**os.environ, "HOME": folder, "XDG_CONFIG_HOME": folder, "XDG_CACHE_HOME": folder}
    servers = [serve(options.tool, environment, "-m", mof)]
    try:
        if options.gateway:
            servers.append(serve(options.tool, environment, "--server", servers[0].url))
        url = servers[-1].url
        done = subprocess.run([url if word == "{url}" else word for word in command], check=False)
    finally:
        ended = [stop(server) for server in reversed(servers)]
    return done.returncode or (1 if any(ended) else 0)


def main(arguments):
    own = list(itertools.takewhile(lambda one: one != "--", arguments))
    parser = argparse.ArgumentParser(description="Runs a command against the tool as a server of a script's models.")
    parser.add_argument("--tool", required=True)
    parser.add_argument("--script", required=True)
    parser.add_argument("--models", required=True, action="append")
    parser.add_argument("--gateway", action="store_true")
    options = parser.parse_args(own)
    with tempfile.TemporaryDirectory(prefix="qorql-served-") as folder:
        return run(options, arguments[len(own) + 1:], folder)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
