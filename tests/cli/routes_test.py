"""Linux_Route in network namespaces that the test makes up, judged by ip."""
# SPDX-License-Identifier: Apache-2.0
import json
import os
import shutil
import subprocess
import sys
import unittest

import toolcase
from toolcase import ToolCase

sys.path.insert(0, os.path.join(toolcase.HERE, "..", "docs"))
import check_linux  # noqa: E402

QUERY = ("SELECT DestinationAddress, PrefixLength, Gateway, InterfaceName, Metric, TableNumber, Weight, IsRejected, "
         "InstanceID FROM Linux_Route")

# Two networks between the ends of two virtual cables.
CABLES = """
ip link set lo up
for n in 1 2; do
  ip link add left$n type veth peer name right$n
  ip link set left$n up
  ip link set right$n up
  ip addr add 192.0.$n.2/24 dev left$n
  ip -6 addr add 2001:db8:$n::2/64 dev left$n nodad
done
"""


def namespace():
    """The command that runs another one in a network namespace of its own; none where that is not permitted."""
    for command in (["unshare", "--net"], ["unshare", "--net", "--map-root-user"]):
        tried = shutil.which("unshare") and shutil.which("ip") and subprocess.run(
            [*command, "ip", "link", "add", "left", "type", "veth", "peer", "name", "right"], capture_output=True, check=False)
        if tried and tried.returncode == 0:
            return command
    return None


NAMESPACE = namespace()


@unittest.skipUnless(NAMESPACE, "this system has no ip, or permits no network namespace with interfaces")
class Routes(ToolCase):
    def rows(self, commands):
        """What the tool says where these commands have run, which ip agrees with."""
        script = f"set -e\n{CABLES}{commands}\n{toolcase.TOOL} -o json \"{QUERY}\"\necho; ip -N -j -4 route show table all\n" \
                 "echo; ip -N -j -6 route show table all\n"
        ran = subprocess.run([*NAMESPACE, "sh", "-c", script], capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        said, version4, version6 = ran.stdout.split("\n\n")
        rows = json.loads(said)
        judges = {"-4": version4, "-6": version6}
        self.addCleanup(setattr, check_linux, "output_of", check_linux.output_of)
        check_linux.output_of = lambda *command: judges[command[3]]
        self.assertEqual(list(check_linux.routes(rows)), [])
        return rows

    def to(self, rows, destination):
        return [row for row in rows if f"{row['DestinationAddress']}/{row['PrefixLength']}" == destination]

    def test_tables(self):
        rows = self.rows("""
            ip route add default via 192.0.1.1
            ip route add default via 192.0.2.1 table 100
            ip route add 198.51.100.0/24 via 192.0.2.9 table 70000
            ip -6 route add default via 2001:db8:1::1
            ip -6 route add default via 2001:db8:2::1 table 100
            ip -6 route add 2001:db8:9::/48 via 2001:db8:2::9 table 70000""")
        self.assertEqual([(row["Gateway"], row["TableNumber"]) for row in self.to(rows, "0.0.0.0/0")],
                         [("192.0.2.1", 100), ("192.0.1.1", 254)])
        self.assertEqual({(row["Gateway"], row["TableNumber"]) for row in self.to(rows, "::/0")},
                         {("2001:db8:1::1", 254), ("2001:db8:2::1", 100)})
        self.assertEqual([row["InstanceID"] for row in self.to(rows, "198.51.100.0/24")],
                         ["198.51.100.0/24 via 192.0.2.9 dev left2 metric 0 table 70000"])
        self.assertEqual(self.to(rows, "2001:db8:9::/48")[0]["TableNumber"], 70000)

    def test_every_hop_is_a_row_with_its_share(self):
        rows = self.rows("""
            ip route add 198.51.100.0/24 nexthop via 192.0.1.1 weight 3 nexthop via 192.0.2.1
            ip -6 route add 2001:db8:9::/48 nexthop via 2001:db8:1::1 nexthop via 2001:db8:2::1 weight 7""")
        self.assertEqual([(row["Gateway"], row["InterfaceName"], row["Weight"]) for row in self.to(rows, "198.51.100.0/24")],
                         [("192.0.1.1", "left1", 3), ("192.0.2.1", "left2", 1)])
        self.assertEqual({(row["Gateway"], row["Weight"]) for row in self.to(rows, "2001:db8:9::/48")},
                         {("2001:db8:1::1", 1), ("2001:db8:2::1", 7)})
        self.assertEqual({row["Weight"] for row in self.to(rows, "192.0.1.0/24")}, {None})

    def test_gateways_of_the_other_version(self):
        rows = self.rows("ip route add 198.51.100.0/24 via inet6 2001:db8:1::1 dev left1")
        self.assertEqual([row["Gateway"] for row in self.to(rows, "198.51.100.0/24")], ["2001:db8:1::1"])

    def test_where_nothing_is_sent(self):
        rows = self.rows("""
            ip route add blackhole 198.51.100.0/24
            ip route add unreachable 198.51.101.0/24 metric 20
            ip route add prohibit 198.51.102.0/24
            ip route add throw 198.51.103.0/24 table 100
            ip route add 198.51.104.0/24 dev left1""")
        self.assertEqual([[row["IsRejected"] for row in self.to(rows, f"198.51.{third}.0/24")] for third in range(100, 105)],
                         [[True], [True], [True], [True], [False]])

    def test_thousands_of_routes(self):
        rows = self.rows("seq 0 2999 | while read n; do echo route add 10.$((n / 256)).$((n % 256)).0/24 via 192.0.1.1; done "
                         "| ip -batch -")
        self.assertEqual(sum(row["Gateway"] == "192.0.1.1" for row in rows), 3000)

    def test_one_route_is_found_by_its_name(self):
        name = "0.0.0.0/0 via 192.0.1.1 dev left1 metric 0 table 100"
        script = f"{CABLES}ip route add default via 192.0.1.1 table 100\n" \
                 f"{toolcase.TOOL} get 'Linux_Route.InstanceID=\"{name}\"'"
        ran = subprocess.run([*NAMESPACE, "sh", "-ec", script], capture_output=True, text=True, timeout=60, check=False)
        self.assertIn("TableNumber = 100;", ran.stdout, ran.stderr)


if __name__ == "__main__":
    toolcase.main()
