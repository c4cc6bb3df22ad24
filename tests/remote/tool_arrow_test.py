"""Arrow of what servers answer: the same as of the same MOF, and a fault leaves no whole stream."""
# SPDX-License-Identifier: Apache-2.0
import os
import sys

import remotecase
from toolcase import ToolCase

sys.path.append(os.path.join(remotecase.TESTS, "cli"))
import arrowreader  # noqa: E402


class Arrow(ToolCase):
    def streams(self, done):
        self.assert_done(done)
        return arrowreader.read(done.out.encode("utf-8", "surrogateescape"))

    def test_a_server_gives_what_its_model_gives(self):
        server = self.serve()
        for statement in ("SELECT * FROM P_Pump", "SELECT * FROM P_Thing", "SELECT * FROM P_Cell", "SELECT * FROM P_Feeds",
                          "SELECT Name, Level FROM P_Pump WHERE Level > 300", "SELECT SUM(Level) AS S FROM P_Pump"):
            self.streams(self.assert_as_local(server, "-o", "arrow", statement))

    def test_several_servers_in_one_stream(self):
        server = self.serve()
        done = self.run_tool("--server", f"a={server.url}", "--server", f"b={server.url}", "-o", "arrow",
                             "SELECT __SERVER, Name, Litres FROM P_Tank")
        (stream,) = self.streams(done)
        self.assertEqual(stream.types(), {"__SERVER": "utf8", "Name": "utf8", "Litres": "uint32"})
        self.assertEqual(stream.rows, [["a", "t1", 500], ["a", "t2", 10], ["b", "t1", 500], ["b", "t2", 10]])

    def test_a_server_that_fails_leaves_no_whole_stream(self):
        server = self.serve()
        self.fail_with(server, "cut-whole", "OpenEnumerateInstances")
        done = self.ask(server, "-o", "arrow", "SELECT * FROM P_Pump")
        self.assert_fails(done, "ends too early")


if __name__ == "__main__":
    remotecase.main()
