"""A server that asks others: no reply lacks what one of them has without a word."""
# SPDX-License-Identifier: Apache-2.0
import servercase
from servercase import ServerCase

MODEL = 'class T_A { [Key] string Id; };\ninstance of T_A { Id = "%s"; };\n'


class GatewayTest(ServerCase):
    def test_a_server_that_is_gone_is_told_in_place_of_fewer_instances(self):
        behind = [self.serve("--no-live", "-m", self.write(f"{name}.mof", MODEL % name)) for name in ("one", "two")]
        gateway = self.serve("--no-live", "--server", f"one={behind[0].url}", "--server", f"two={behind[1].url}")
        whole = self.judged(self.client(gateway).call("EnumerateInstances", ClassName="T_A"))
        self.assertEqual((whole.error, whole.body.count(b"VALUE.NAMEDINSTANCE>")), (0, 4))
        behind[1].stop()
        for operation, parameters in (("EnumerateInstances", {"ClassName": "T_A"}),
                                      ("ExecQuery", {"QueryLanguage": "DMTF:CQL", "Query": "SELECT Id FROM T_A"})):
            cut = self.judged(self.client(gateway).call(operation, **parameters))
            self.assertEqual(cut.error, 1, operation)
            self.assertIn(b"two: ", cut.body, operation)


if __name__ == "__main__":
    servercase.main()
