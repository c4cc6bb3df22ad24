"""Certificates for a test server: an authority of its own, and what it signs, also such that no client may take."""
# SPDX-License-Identifier: Apache-2.0
import os
import subprocess

SETTINGS = """[ca]
default_ca = own
[own]
dir = {folder}
new_certs_dir = {folder}
database = {folder}/index.txt
rand_serial = yes
default_md = sha256
unique_subject = no
copy_extensions = copy
policy = anything
[anything]
commonName = supplied
[req]
distinguished_name = name
[name]
[authority]
basicConstraints = critical,CA:TRUE
keyUsage = critical,keyCertSign
subjectKeyIdentifier = hash
"""


class Certificates:
    """Makes its files in a folder; `authority` is the file that clients are to trust."""

    def __init__(self, folder):
        self.folder = folder
        self.settings = os.path.join(folder, "openssl.cnf")
        with open(self.settings, "w", encoding="ascii") as file:
            file.write(SETTINGS.format(folder=folder))
        with open(os.path.join(folder, "index.txt"), "w", encoding="ascii"):
            pass
        self.authority, self.authority_key = self.path("authority.pem"), self.path("authority.key")
        self.openssl("req", "-x509", *self.new_key(self.authority_key), "-out", self.authority, "-days", "2",
                     "-subj", "/CN=Authority of a test", "-extensions", "authority")

    def path(self, name):
        return os.path.join(self.folder, name)

    def openssl(self, command, *arguments):
        done = subprocess.run(["openssl", command, "-config", self.settings, *arguments], capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(done.stderr.decode("utf-8", "replace"))

    @staticmethod
    def new_key(file):
        return ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-keyout", file)

    def make(self, name, holders="IP:127.0.0.1,IP:::1,DNS:localhost", begin="200101000000Z", end="491231235959Z"):
        """(file, key file) of a server's certificate."""
        file, key, wish = self.path(name + ".pem"), self.path(name + ".key"), self.path(name + ".csr")
        self.openssl("req", "-new", *self.new_key(key), "-out", wish, "-subj", f"/CN={name}",
                     "-addext", f"subjectAltName={holders}")
        self.openssl("ca", "-batch", "-notext", "-cert", self.authority, "-keyfile", self.authority_key, "-in", wish,
                     "-out", file, "-startdate", begin, "-enddate", end)
        return file, key

    def good(self):
        return self.make("good")

    def expired(self):
        return self.make("expired", end="210101000000Z")

    def of_other_host(self):
        return self.make("other", "DNS:array-7.example")

    def self_signed(self):
        """Signed by nobody who is trusted."""
        file, key = self.path("self.pem"), self.path("self.key")
        self.openssl("req", "-x509", *self.new_key(key), "-out", file, "-days", "2", "-subj", "/CN=127.0.0.1",
                     "-addext", "subjectAltName=IP:127.0.0.1")
        return file, key
