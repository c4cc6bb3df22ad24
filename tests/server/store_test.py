"""What a server keeps in its store: over restarts, kills, full disks and other files."""
# SPDX-License-Identifier: Apache-2.0
import os
import resource
import signal
import threading

import servercase
from servercase import Client
from subscriptions import DISKS, SubscriptionCase, disk, disk_name


class StoreTest(SubscriptionCase):
    def setUp(self):
        super().setUp()
        self.store = os.path.join(self.folder, "server.db")

    def change(self, server):
        self.assertIn("new", self.create(server, disk("new", 2), "root/cimv2"))
        modified = f"<VALUE.NAMEDINSTANCE>{disk_name('declared')}{disk('declared', 7)}</VALUE.NAMEDINSTANCE>"
        self.assertEqual(self.call(server, "ModifyInstance", ModifiedInstance=modified).error, 0)
        self.assertIn("gone", self.create(server, disk("gone"), "root/cimv2"))
        self.assertEqual(self.delete(server, disk_name("gone"), "root/cimv2"), 0)

    def test_changes_survive_a_kill(self):
        server = self.serve_disks("--store", self.store)
        self.change(server)
        self.assertEqual(server.stop(signal.SIGKILL), -signal.SIGKILL)
        again = self.serve_disks("--store", self.store)
        self.assertEqual(self.disks(again), [("declared", "7"), ("new", "2")])

    def test_changes_survive_reading_anew(self):
        for store in ([], ["--store", self.store]):
            server = self.serve_disks(*store)
            self.change(server)
            self.write("disks.mof", DISKS + 'instance of DISK_Disk { Name = "later"; Size = 9; };\n')
            server.send_signal(signal.SIGHUP)
            self.wait_for(lambda server=server: "read anew" in server.log_text())
            self.assertEqual(self.disks(server), [("declared", "7"), ("later", "9"), ("new", "2")])
            server.stop()

    def test_what_is_written_while_it_reads_anew_is_there_then(self):
        server, written, ended = self.serve_disks(), ["declared"], threading.Event()

        def write(thread):
            number = 0
            while not ended.is_set():
                name = f"{thread}-{number}"
                number += 1
                if name in self.create(server, disk(name), "root/cimv2"):
                    written.append(name)

        threads = [threading.Thread(target=write, args=(number,)) for number in range(2)]
        for thread in threads:
            thread.start()
        for count in range(1, 5):
            server.send_signal(signal.SIGHUP)
            self.wait_for(lambda count=count: server.log_text().count("read anew") == count)
        ended.set()
        for thread in threads:
            thread.join()
        self.assertGreater(len(written), 5)
        self.assertEqual(sorted(name for name, _ in self.disks(server)), sorted(written))

    def test_without_a_store_changes_end_with_the_server(self):
        server = self.serve_disks()
        self.change(server)
        server.stop()
        self.assertEqual(self.disks(self.serve_disks()), [("declared", "1")])

    def test_a_server_that_takes_no_changes_shows_those_of_its_store(self):
        server = self.serve_disks("--store", self.store)
        self.change(server)
        server.stop()
        mof = self.write("disks.mof", DISKS)
        again = self.serve("--no-live", "-m", mof, "--store", self.store)
        self.assertEqual(self.disks(again), [("declared", "7"), ("new", "2")])
        self.assertEqual(self.create(again, disk("x"), "root/cimv2"), 2)

    def refusal(self):
        done = self.run_tool("serve", "--no-live", "--writable", "--listen", "127.0.0.1:0", "--store", self.store)
        self.assertEqual((done.returncode, done.stdout), (3, b""))
        return done.stderr.decode()

    def test_another_file_is_refused_and_stays(self):
        with open(self.store, "w", encoding="utf-8") as file:
            file.write("a letter")
        self.assertIn(f"the store {self.store} cannot be opened: it is not a store of this program", self.refusal())
        with open(self.store, encoding="utf-8") as file:
            self.assertEqual(file.read(), "a letter")

    def test_a_damaged_store_is_refused(self):
        self.serve_disks("--store", self.store).stop()
        with open(self.store, "r+b") as file:
            file.seek(4096)
            file.write(b"x" * 3000)
        self.assertIn("cannot be opened", self.refusal())

    def test_a_store_in_use_is_refused(self):
        self.serve_disks("--store", self.store)
        self.assertIn("another server uses it", self.refusal())

    def test_a_folder_that_is_not_there_is_told(self):
        self.store = os.path.join(self.folder, "none", "server.db")
        self.assertIn("No such file or directory", self.refusal())

    def test_on_a_full_disk_nothing_changes(self):
        server = self.serve_disks("--store", self.store)
        self.change(server)
        before = resource.prlimit(server.process.pid, resource.RLIMIT_FSIZE)
        resource.prlimit(server.process.pid, resource.RLIMIT_FSIZE, (1024, before[1]))
        self.assertEqual(self.create(server, disk("x"), "root/cimv2"), 1)
        self.assertEqual(self.delete(server, disk_name("new"), "root/cimv2"), 1)
        self.assertEqual(self.disks(server), [("declared", "7"), ("new", "2")])
        resource.prlimit(server.process.pid, resource.RLIMIT_FSIZE, before)
        self.assertIn("x", self.create(server, disk("x"), "root/cimv2"))

    def test_many_clients_write_at_once(self):
        server = self.serve_disks("--store", self.store)
        errors = []

        def write(number):
            client = Client(server)
            for one in range(20):
                errors.append(client.call("CreateInstance", NewInstance=disk(f"{number}-{one}")).error)
            client.close()

        threads = [threading.Thread(target=write, args=(number,)) for number in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(errors, [0] * 80)
        server.stop(signal.SIGKILL)
        self.assertEqual(len(self.disks(self.serve_disks("--store", self.store))), 81)


if __name__ == "__main__":
    servercase.main()
