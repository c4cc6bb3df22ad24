"""A server that is told to read everything anew."""
# SPDX-License-Identifier: Apache-2.0
import signal
import time

from servercase import Client, ServerCase

CLASS = "class %s { [Key] string Name; };\n"
DONE = "configuration, MOF and users have been read anew"
FAILED = "nothing was read anew: all stays as it was"


class ReloadCase(ServerCase):
    def knows(self, server, name, headers=(), context=None):
        """Whether the server has a class."""
        client = Client(server, **({} if context is None else {"context": context}))
        try:
            return self.judged(client.call("GetClass", headers=headers, ClassName=name)).error == 0
        finally:
            client.close()

    def reload(self, server, message=DONE, count=1):
        """Has everything read anew, and waits until that is told."""
        server.send_signal(signal.SIGHUP)
        end = time.monotonic() + 30
        while server.log_text().count(message) < count and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(server.log_text().count(message), count, server.log_text())
