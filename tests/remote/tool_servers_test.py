"""The tool asks several servers at the same time."""
# SPDX-License-Identifier: Apache-2.0
import unittest

import remotecase
from toolcase import ToolCase

OPEN = "OpenEnumerateInstances"
HEAD = """Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride, ToSubclass);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
"""
OLD = HEAD + """class V_Pool { [Key] string Id; };
class V_Volume { [Key] string Id; uint64 Size; };
[Association] class V_In { [Key] V_Pool REF Pool; [Key] V_Volume REF Volume; };
"""
NEW = OLD.replace("uint64 Size;", "uint64 Size; string Tier;")


def instances(volumes, tier=""):
    text = 'instance of V_Pool as $p { Id = "p"; };\n'
    for number, size in enumerate(volumes, 1):
        more = f'Tier = "{tier}"; ' if tier else ""
        text += f'instance of V_Volume as $v{number} {{ Id = "v{number}"; Size = {size}; {more}}};\n'
        text += f"instance of V_In {{ Pool = $p; Volume = $v{number}; }};\n"
    return text


class TwoServers(ToolCase):
    def setUp(self):
        super().setUp()
        self.one = self.serve(self.write("one.mof", OLD + instances([10, 20])))
        self.two = self.serve(self.write("two.mof", NEW + instances([30], "gold")))
        self.both = ("--server", f"one={self.one.url}", "--server", f"two={self.two.url}", "-o", "csv")

    def told(self):
        """Enumerations, of both."""
        return [call for server in (self.one, self.two) for call in server.told() if call[0] == OPEN]


class Servers(TwoServers):
    def test_rows_of_all_in_the_order_of_the_servers(self):
        done = self.run_tool(*self.both, "SELECT __SERVER, Id, Size FROM V_Volume")
        self.assert_done(done, "__SERVER,Id,Size\none,v1,10\none,v2,20\ntwo,v1,30\n")

    def test_all_properties_of_differing_classes(self):
        done = self.run_tool(*self.both, "SELECT * FROM V_Volume")
        self.assert_done(done, "__SERVER,Id,Size,Tier\none,v1,10,\none,v2,20,\ntwo,v1,30,gold\n")
        self.assert_done(self.run_tool(*self.both, "SELECT Id FROM V_Volume WHERE Tier = 'gold'"), "Id\nv1\n")

    def test_condition_on_the_server_asks_that_one_alone(self):
        for where, asked, rows in (("__SERVER = 'two'", 1, "v1\n"), ("'two' = __SERVER AND Size > 3", 1, "v1\n"),
                                   ("__SERVER = 'three'", 0, ""), ("__SERVER = 'one' AND __SERVER = 'two'", 0, ""),
                                   ("__SERVER <> 'one'", 2, "v1\n"), ("__SERVER = 'two' OR Size = 20", 2, "v2\n"),
                                   ("NOT (__SERVER = 'one')", 2, "v1\n")):
            self.one.calls.clear()
            self.two.calls.clear()
            done = self.run_tool(*self.both, f"SELECT Id FROM V_Volume WHERE {where}")
            self.assertEqual((done.status, done.out, done.err), (0, "Id\n" + rows, ""), where)
            self.assertEqual(len(self.told()), asked, where)

    def test_class_that_is_named_twice_is_asked_of_all(self):
        done = self.run_tool(*self.both, "SELECT a.Id FROM V_Volume AS a, V_Volume AS b WHERE a.__SERVER = 'one'")
        self.assertEqual((done.status, done.err), (0, ""))
        self.assertEqual({bool(server.told()) for server in (self.one, self.two)}, {True})
        self.assertIn((OPEN, "V_Volume"), self.two.told())

    def test_join_of_a_class_of_one_with_that_of_another(self):
        done = self.run_tool(*self.both, "SELECT a.Size, b.__SERVER FROM V_Volume AS a, V_Pool AS b "
                                         "WHERE a.__SERVER = 'one' AND b.__SERVER = 'two'")
        self.assert_done(done, "Size,__SERVER\n10,two\n20,two\n")
        self.assertEqual(sorted(self.told()), [(OPEN, "V_Pool"), (OPEN, "V_Volume")])

    def test_associations_tie_instances_of_one_server(self):
        done = self.run_tool(*self.both, "SELECT p.__SERVER, v.__SERVER, v.Size FROM V_Pool AS p, V_Volume AS v "
                                         "WHERE V_In = p AND V_In = v")
        self.assert_done(done, "p.__SERVER,v.__SERVER,Size\none,one,10\none,one,20\ntwo,two,30\n")
        self.assertEqual(len(self.told()), 6)

    def test_paths_differ(self):
        done = self.run_tool(*self.both, "SELECT OBJECTPATH(v) AS Path FROM V_Volume AS v WHERE v.Id = 'v1'")
        self.assert_done(done, 'PATH\n"//one/root/cimv2:V_Volume.Id=""v1"""\n"//two/root/cimv2:V_Volume.Id=""v1"""\n')

    def test_every_command_tells_of_a_server_that_fails(self):
        """And its status is 3; what is said of the others stands."""
        new = self.write("new.mof", 'instance of V_Volume { Id = "n"; Size = 7; };\n')
        filters = self.write("filters.txt", "SELECT Id FROM V_Volume WHERE Size > 5\n")
        condition = "SELECT Id FROM V_Volume WHERE Size > 5"
        self.fail_with(self.two, "500")
        for command in (("classes",), ("class", "V_Volume"), ("describe", "V_Volume"), ("instances",),
                        ("instances", "V_Volume"), ("get", 'V_Volume.Id="v1"'), ("contents",), ("contents", "V_Volume"),
                        ("explain", condition), ("validate", condition), ("validate", "-f", filters),
                        ("match", condition, new), ("match", "--filters", filters, new), ("query", condition)):
            done = self.run_tool(command[0], *self.both[:4], *command[1:])
            self.assertEqual(done.status, 3, command)
            self.assertTrue(done.out, command)
            self.assertRegex(done.err, r"(?m)^qorql: error: two: \w+ .*in root/cimv2: HTTP status 500; what follows from the "
                                       r"other servers stands without this one$")
            self.assertEqual(done.err.count("qorql: error: two: "), 1, command)

    def test_names_that_nobody_gave(self):
        done = self.run_tool("--server", self.one.url, "--server", self.two.url, "-o", "csv",
                             "SELECT __SERVER FROM V_Volume WHERE Size = 30")
        self.assert_done(done, f"__SERVER\n127.0.0.1:{self.two.port}\n")
        done = self.run_tool("--server", self.one.url, "SELECT __SERVER FROM V_Volume")
        self.assert_fails(done, "'__SERVER' not found in any class", status=1)
        done = self.run_tool("--server", f"a={self.one.url}", "--server", f"a={self.two.url}", "classes")
        self.assert_fails(done, "two servers have the name a")

    def test_file_of_servers(self):
        file = self.write("all.txt", f"# all of them\none={self.one.url}   # the old one\n\ntwo={self.two.url}\n")
        done = self.run_tool("--servers", file, "-o", "csv", "SELECT COUNT(Id) AS N FROM V_Volume")
        self.assert_done(done, "N\n3\n")
        for content, message in (("", "names no server"), ("x=y\n", "all.txt:1: after NAME= there is a URL")):
            self.assert_fails(self.run_tool("--servers", self.write("all.txt", content), "classes"), message, status=2)

    def test_commands(self):
        both = self.both[:4]
        self.assert_done(self.run_tool("classes", *both), "V_In\nV_Pool\nV_Volume\n")
        self.assertIn("string Tier;", self.run_tool("class", "--alone", *both, "V_Volume").out)
        self.assertEqual(self.run_tool("instances", *both, "V_Volume").out.count("instance of"), 3)
        self.assertIn("Tier", self.run_tool("describe", *both, "V_Volume").out)

    def test_many_at_once(self):
        servers = [self.serve(self.write("one.mof", OLD + instances([number]))) for number in range(12)]
        words = [word for number, server in enumerate(servers) for word in ("--server", f"s{number}={server.url}")]
        done = self.run_tool(*words, "-o", "csv", "SELECT __SERVER, Size FROM V_Volume")
        self.assert_done(done, "__SERVER,Size\n" + "".join(f"s{number},{number}\n" for number in range(12)))


class ServersThatFail(TwoServers):
    """Their rows are missing, and everybody is told."""

    def assert_incomplete(self, done, out, message):
        self.assertEqual((done.status, done.out), (3, out))
        self.assertRegex(done.err, rf"^qorql: error: {message}; what follows from the other servers stands without this one\n$")

    def test_one_that_fails_with_instances(self):
        for kind in ("500", "cut", "dropped"):
            self.fail_with(self.two, kind, OPEN)
            self.assert_incomplete(self.run_tool(*self.both, "SELECT Id FROM V_Volume"), "Id\nv1\nv2\n",
                                   "two: OpenEnumerateInstances of V_Volume in root/cimv2: .*")

    def test_one_that_is_not_there_is_told_once_and_asked_once(self):
        self.two.close()
        done = self.run_tool(*self.both, "SELECT p.Id, v.Id FROM V_Pool AS p, V_Volume AS v WHERE V_In = p AND V_In = v")
        self.assert_incomplete(done, "p.Id,v.Id\np,v1\np,v2\n", "two: GetClass of V_.* in root/cimv2: .*")

    def test_one_that_is_silent(self):
        self.fail_with(self.two, "silence", OPEN)
        done = self.run_tool(*self.both, "--call-timeout", "1", "SELECT Id FROM V_Volume")
        self.assert_incomplete(done, "Id\nv1\nv2\n", "two: OpenEnumerateInstances of V_Volume in root/cimv2: the server sent fewer than 100 bytes a second .*")

    def test_later_statements_run_and_ask_again(self):
        self.fail_with(self.two, "500", OPEN, times=1)
        done = self.run_tool(*self.both, "SELECT Id FROM V_Volume; SELECT Size FROM V_Volume")
        self.assert_incomplete(done, "Id\nv1\nv2\n\nSize\n10\n20\n30\n", "two: .*")

    def test_all_of_them(self):
        for server in (self.one, self.two):
            self.fail_with(server, "500", OPEN)
        self.assert_fails(self.run_tool(*self.both, "SELECT Id FROM V_Volume"), "^qorql: error: one: Open.*HTTP status 500")

    def test_require_all(self):
        self.fail_with(self.two, "500", OPEN)
        self.assert_fails(self.run_tool(*self.both, "--require-all", "SELECT Id FROM V_Volume"), "^qorql: error: two: Open.*500")

    def test_time_of_the_statement(self):
        self.fail_with(self.two, "silence", OPEN)
        done = self.run_tool(*self.both, "--timeout", "1", "SELECT Id FROM V_Volume")
        self.assert_fails(done, "two: OpenEnumerateInstances of V_Volume .* was stopped after 1 second")

    def test_class_that_one_server_lacks_is_no_failure(self):
        three = self.serve()
        done = self.run_tool(*self.both, "--server", f"three={three.url}", "SELECT Id FROM V_Volume WHERE Size > 20")
        self.assert_done(done, "Id\nv1\n")

    def test_commands_tell_too(self):
        self.fail_with(self.two, "500")
        done = self.run_tool("classes", *self.both[:4])
        self.assert_incomplete(done, "V_In\nV_Pool\nV_Volume\n", "two: EnumerateClassNames in root/cimv2: HTTP status 500")


class Profiles(ToolCase):
    def profile(self, content):
        return self.write(".config/qorql/servers.ini", content)

    def test_all_keys(self):
        server = self.serve(users={"ada": "secret"})
        self.write(".config/qorql/secrets/plant", "secret\n")
        self.profile(f"[other]\nurl = https://other.invalid\n[plant]\nurl = {server.url}\nuser = ada\n"
                     "password-file = secrets/plant\nnamespace = root/cimv2\ninsecure = false\n")
        done = self.run_tool("--server", "plant", "-o", "csv", "SELECT __SERVER, Name FROM P_Tank WHERE Litres > 100")
        self.assert_done(done, "__SERVER,Name\nplant,t1\n")

    def test_namespace(self):
        server = self.serve()
        self.profile(f"[plant]\nurl = {server.url}\nnamespace = root/empty\n")
        self.assert_done(self.run_tool("classes", "--server", "plant"), "E_Nothing\n")
        self.assertIn("P_Tank", self.run_tool("classes", "--server", "plant", "-n", "root/cimv2").out)
        self.assertIn("P_Tank", self.run_tool("classes", "-n", "root/cimv2", "--server", "plant").out)

    def test_faults(self):
        for content, message in (("[other]\nurl = https://x\n", "there is no profile plant in .*, which has other"),
                                 ("[plant]\nuser = ada\n", "the profile plant in .* has no url"),
                                 ("[plant]\nurl = https://x\npassword = p\n", r"servers.ini:3: a password does not belong"),
                                 ("[plant]\ncolour = red\n", "servers.ini:2: there is no key colour"),
                                 ("[plant]\ninsecure = perhaps\n", "insecure is true or false"),
                                 ("[plant\n", "servers.ini:1: this is neither")):
            self.profile(content)
            self.assert_fails(self.run_tool("--server", "plant", "classes"), message, status=2)


if __name__ == "__main__":
    remotecase.main()
