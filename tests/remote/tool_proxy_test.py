"""The tool asks servers through the proxy that the environment names."""
# SPDX-License-Identifier: Apache-2.0
import unittest

import remotecase
from certificates import Certificates
from proxy import Proxy
from toolcase import ToolCase

QUERY = ("-o", "csv", "SELECT COUNT(Name) AS N FROM P_Tank")
ANSWER = "N\n2\n"


class ProxyCase(ToolCase):
    def proxy(self, user=None, given=None, **how):
        """One that the environment names for both protocols, with the user that is given."""
        proxy = Proxy(user, **how)
        self.addCleanup(proxy.close)
        self.proxies = {"http_proxy": proxy.url(given), "https_proxy": proxy.url(given)}
        return proxy

    def secure(self, **behaviour):
        certificates = Certificates(self.folder)
        server = self.serve(certificate=certificates.make("good"), **behaviour)
        return server, ("--cacert", certificates.authority)


class Through(ProxyCase):
    def test_http(self):
        server, proxy = self.serve(users={"ada": "secret"}), self.proxy()
        file = self.write("password", "secret\n")
        done = self.run_tool("--server", f"http://ada@127.0.0.1:{server.port}", "--password-file", file, *QUERY)
        self.assert_done(done, ANSWER)
        self.assertEqual(set(proxy.asked), {("POST", f"{server.url}/cimom")})
        self.assertEqual(len(proxy.asked), len(server.calls) + len(server.refusals))

    def test_https_in_a_tunnel_that_sees_nothing(self):
        server, options = self.secure(users={"ada": "secret"})
        proxy = self.proxy()
        file = self.write("password", "secret\n")
        done = self.run_tool("--server", f"https://ada@127.0.0.1:{server.port}", "--password-file", file, *options, *QUERY)
        self.assert_done(done, ANSWER)
        self.assertEqual(set(proxy.asked), {("CONNECT", f"127.0.0.1:{server.port}")})
        self.assertLessEqual(len(proxy.asked), 2)
        self.assertFalse([name for headers in proxy.headers for name in headers if name.lower() == "authorization"])

    def test_certificates_are_those_of_the_server(self):
        server, _ = self.secure()
        self.proxy()
        self.assert_fails(self.ask(server, *QUERY), "certificate")

    def test_host_that_needs_no_proxy(self):
        server, proxy = self.serve(), self.proxy()
        self.proxies["no_proxy"] = "127.0.0.1"
        self.assert_done(self.ask(server, *QUERY), ANSWER)
        self.assertEqual(proxy.asked, [])

    def test_user_of_the_proxy(self):
        server, (secure, options) = self.serve(), self.secure()
        for one, more in ((server, ()), (secure, options)):
            self.proxy("bob:pr0xy", "bob:pr0xy")
            self.assert_done(self.ask(one, *more, *QUERY), ANSWER)


class Refusals(ProxyCase):
    def test_user_that_the_proxy_wants(self):
        server, (secure, options) = self.serve(), self.secure()
        for given in (None, "bob:wrong"):
            proxy = self.proxy("bob:pr0xy", given)
            done = self.ask(server, *QUERY)
            self.assert_fails(done, r"GetClass of P_TANK in root/cimv2: HTTP status 407: the proxy does not accept who asks; "
                                    r"user and password of a proxy stand in http_proxy or https_proxy")
            self.assertNotIn("wrong", done.err)
            done = self.ask(secure, *options, *QUERY)
            self.assert_fails(done, r"GetClass of P_TANK in root/cimv2: HTTP status 407: the proxy does not accept who asks")
            self.assertNotIn("wrong", done.err)
            self.assertEqual([method for method, _ in proxy.asked], ["POST", "CONNECT"])
        self.assertEqual((server.calls, secure.calls), ([], []))

    def test_statuses_of_the_proxy(self):
        server, (secure, options) = self.serve(), self.secure()
        for status in (403, 502):
            self.proxy(status=status)
            self.assert_fails(self.ask(server, *QUERY), rf"GetClass of P_TANK in root/cimv2: HTTP status {status}")
            done = self.ask(secure, *options, *QUERY)
            self.assert_fails(done, rf"GetClass of P_TANK in root/cimv2: HTTP status {status} of the proxy")
            self.assertNotIn("What the proxy says", done.err)

    def test_server_that_the_proxy_does_not_reach(self):
        server, (secure, options) = self.serve(), self.secure()
        server.close()
        secure.close()
        self.proxy()
        self.assert_fails(self.ask(server, *QUERY), "HTTP status 502")
        self.assert_fails(self.ask(secure, *options, *QUERY), "HTTP status 502 of the proxy")

    def test_silent_proxy(self):
        server, (secure, options) = self.serve(), self.secure()
        for one, more in ((server, ()), (secure, options)):
            self.proxy(is_silent=True)
            done = self.ask(one, "--timeout", "1", *more, *QUERY)
            self.assert_fails(done, r"the call was stopped after 1 second \(--timeout\)")
            done = self.ask(one, "--call-timeout", "1", *more, *QUERY)
            self.assert_fails(done, r"GetClass of P_TANK in root/cimv2: .*(fewer than 100 bytes a second|time-?out|timed out)")
            self.assertLess(done.seconds, 20)

    def test_proxy_that_is_not_there(self):
        server, proxy = self.serve(), self.proxy()
        proxy.close()
        self.assert_fails(self.ask(server, *QUERY), rf"127\.0\.0\.1 port {proxy.port}")


if __name__ == "__main__":
    remotecase.main()
