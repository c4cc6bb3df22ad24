"""scripts/bare in earnest, with its namespaces and mounts, on a small tree and with a stand-in for mmdebstrap that lends
this system's programs.

Run as bare_test.py ROOT.
"""
# SPDX-License-Identifier: Apache-2.0
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = sys.argv.pop()
SKIPPED = 77

# Makes the tree of its last arguments: /usr as it is here, but for /usr/local, where stand-ins tell of their calls, and
# for /usr/share, which is empty.
MMDEBSTRAP = """#!/bin/bash
while [ "$1" != bookworm ]; do shift; done
tree=$2
[ ! -e "$STAND_IN/broken" ] || { echo "no such mirror"; exit 1; }
mkdir -p "$tree"/{usr,etc,proc,sys,dev/pts,dev/shm,root,tmp,var/cache}
mount --bind /usr "$tree/usr" && mount -o remount,bind,ro "$tree/usr"
for name in bin lib lib64 sbin; do [ ! -L /$name ] || ln -s usr/$name "$tree/$name"; done
cp -a /dev/{null,zero,full,random,urandom,tty} "$tree/dev"
mount -t tmpfs none "$tree/usr/share" && mount -t tmpfs none "$tree/usr/local" && mkdir "$tree/usr/local/bin"
cp "$STAND_IN"/inside/* "$tree/usr/local/bin"
"""
# Each tells of its call. What is installed is in the program's own folder; nothing is there before that.
INSIDE = {
    "man": '#!/bin/bash\necho "man $*" >>/root/calls\n[ "$1" != -w ] || ls /usr/share/man/qorql\n',
    "cmake": """#!/bin/bash
echo "cmake $*" >>/root/calls
case $1 in
  --build) mkdir -p "$2" && printf '#!/bin/bash\necho lamp\n' >"$2/${2##*/}" && chmod +x "$2/${2##*/}" ;;
  --install) printf '#!/bin/bash\\necho "qorql $*" >>/root/calls\\n' >/usr/local/bin/qorql && chmod +x /usr/local/bin/qorql ;;
  -G) [ -e "$4" ] || [ -d /root/qorql ] || { echo "there is no $4"; exit 1; } ;;
esac
exit 0
""",
    "g++": '#!/bin/bash\necho "g++ $*" >>/root/calls\ncp /tmp/embed/embed "${*: -1}"\n',
    "pkg-config": '#!/bin/bash\necho "of $*"\n',
    # As the real one: a package takes others only if they are named or known, and purging takes all of it, or what is told.
    "apt-get": """#!/bin/bash
echo "apt-get $*" >>/root/calls
share=/usr/share
case "$*" in
  *" build-dep "*) [ -e ./debian/control ] || { echo "E: there is no source here" >&2; exit 100; } ;;
  *" purge "*)
    [ ! -d /ccache ] || mktemp /ccache/XXXXXX >/dev/null # somebody else builds
    rm -rf $share/{man,bash-completion,fish,zsh,doc} /usr/local/bin/qorql
    [ ! -e /root/packages/leaves.deb ] || touch /etc/left ;;
  *install*.deb*)
    for word; do
      case $word in
        *.deb) [ -s "$word" ] || { echo "E: Unsupported file $word given on commandline" >&2; exit 100; } ;;
      esac
      case $word in
        ./qorql_*)
          mkdir -p $share/{man,bash-completion/completions,fish/vendor_completions.d,zsh/vendor-completions,doc/qorql/docs}
          echo page >$share/man/qorql
          echo words | tee $share/bash-completion/completions/qorql $share/fish/vendor_completions.d/qorql.fish >/dev/null
          [ -e /root/packages/lacking.deb ] || echo words >$share/zsh/vendor-completions/_qorql
          touch $share/doc/qorql/{README.md,docs/tool.md}
          printf '#!/bin/bash\necho "qorql $*" >>/root/calls\necho answer\n' >/usr/local/bin/qorql
          chmod +x /usr/local/bin/qorql ;;
        ./libqorql-dev_*) mkdir -p $share/doc/libqorql-dev/examples/embed ;;
      esac
    done ;;
esac
""",
    "dpkg-buildpackage": """#!/bin/bash
echo "dpkg-buildpackage $*" >>/root/calls
[ ! -e unbuildable ] || { echo "dpkg-buildpackage: error: it does not build" >&2; exit 2; }
for name in libqorql0 libqorql-dev qorql; do echo package >../${name}_0_all.deb; done
for extra in leaves lacking; do [ ! -e $extra ] || echo package >../$extra.deb; done
echo changes >../qorql_0_all.changes
""",
    "lintian": """#!/bin/bash
echo "lintian $*" >>/root/calls
[ -s "${*: -1}" ] || { echo "lintian: there is no ${*: -1}" >&2; exit 1; }
[ ! -e faulty ] || { echo "E: qorql: no-copyright-file"; exit 2; }
""",
}
README = "# Small\n\n    ./qorql 'SELECT'\n    ./test\n"
QORQL = '#!/bin/bash\n[ ! -e broken ] || exit 5\necho "qorql $*" >>/root/calls\necho answer\n'
# Shows what was called, and the world it is in.
TEST = """#!/bin/bash
cat /root/calls
echo "files: $(ls | tr '\\n' ' ')"
python3 -c 'import os; os.openpty(); print("a terminal")'
grep -q ' / ' /proc/self/mounts && echo "a root"
[ ! -e slow ] || { touch /root/waiting; sleep 600; }
"""


class Bare(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qorql-bare-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.room = os.path.join(self.folder, "room")
        self.tree = os.path.join(self.folder, "tree")
        os.makedirs(self.room)
        for name in ("scripts/bare", "scripts/front-door.sh"):
            os.makedirs(os.path.dirname(os.path.join(self.tree, name)), exist_ok=True)
            shutil.copy(os.path.join(ROOT, name), os.path.join(self.tree, name))
        for name, text in (("README.md", README), ("qorql", QORQL), ("test", TEST), ("debian/control", "Source: x\n"),
                           ("../bin/mmdebstrap", MMDEBSTRAP), *((f"../inside/{name}", text) for name, text in INSIDE.items())):
            os.chmod(self.write(name, text), 0o755)
        self.git("init", "--quiet")
        self.commit()

    def write(self, name, text=""):
        path = os.path.join(self.tree, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as out:
            out.write(text)
        return path

    def git(self, *arguments):
        subprocess.run(["git", "-C", self.tree, "-c", "user.name=x", "-c", "user.email=x@example.org", *arguments], check=True)

    def commit(self):
        self.git("add", "--all")
        self.git("commit", "--quiet", "--message=x")

    def start(self, command, **variables):
        environment = {**os.environ, "TMPDIR": self.room, "STAND_IN": self.folder,
                       "PATH": os.path.join(self.folder, "bin") + ":" + os.environ["PATH"]}
        environment.pop("CCACHE_DIR", None)
        environment.update(variables)
        return subprocess.Popen(os.path.join(self.tree, command).split(), env=environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run_it(self, command="scripts/bare", **variables):
        with self.start(command, **variables) as process:
            out, err = process.communicate(timeout=120)
        self.assertEqual(os.listdir(self.room), [], "something is left behind")
        return process.returncode, out, err

    def test_runs_what_it_says_in_a_clean_clone(self):
        self.write("forgotten")
        status, out, err = self.run_it("scripts/bare --test")
        self.assertEqual(status, 0, err)
        self.assertIn("bare: what is not committed is not in the clone\n", err)
        lines = out.splitlines()
        self.assertEqual(lines[:5], ["answer", "qorql SELECT", "qorql SELECT", "cmake --preset release",
                                     "cmake --build build/release"])
        self.assertEqual(lines[5:13], ["cmake --install build/release --prefix /usr/local", "qorql --version",
                                       "apt-get -qq install -y --no-install-recommends man-db", "man qorql",
                                       "cmake -G Ninja -S examples/embed -B build/embed",
                                       "cmake -G Ninja -S examples/provider -B build/provider",
                                       "cmake --build build/embed", "cmake --build build/provider"])
        self.assertEqual(lines[13:], ["files: README.md build debian qorql scripts test ", "a terminal", "a root"])

    def test_without_the_option_the_tests_do_not_run(self):
        status, out, err = self.run_it()
        self.assertEqual((status, out), (0, "answer\n"), err)

    def test_packages_are_built_in_one_tree_and_tried_in_another(self):
        status, out, err = self.run_it("scripts/bare --package")
        self.assertEqual(status, 0, err)
        example = "/usr/share/doc/libqorql-dev/examples/embed"
        self.assertEqual(err.count("bare: making a bare Debian tree (bookworm)\n"), 2)
        self.assertEqual([line for line in out.splitlines() if not line.startswith("/usr/share/")],
                         ["answer", "README.md", "docs/tool.md", "answer", "lamp"])
        self.assertEqual(re.findall("(?m)^bare: running: (?!ls|cd)(.*)$", err), [
            "apt-get -qq update",
            "apt-get -qq build-dep -y --no-install-recommends ./",
            "dpkg-buildpackage -b -us -uc",
            "apt-get -qq install -y --no-install-recommends lintian",
            "lintian --allow-root --fail-on error ../*.changes",
            "apt-get -qq update",
            "apt-get -qq install -y --no-install-recommends man-db",
            "apt-get -qq install -y --no-install-recommends ./libqorql0_*.deb ./qorql_*.deb",
            "qorql 'SELECT'",
            "man -w qorql",
            "apt-get -qq purge -y --autoremove qorql libqorql0",
            "apt-get -qq install -y --no-install-recommends g++ cmake ninja-build pkg-config",
            "apt-get -qq install -y --no-install-recommends ./libqorql0_*.deb ./libqorql-dev_*.deb",
            f"cmake -G Ninja -S {example} -B /tmp/embed && cmake --build /tmp/embed",
            "/tmp/embed/embed",
            f"g++ -std=c++20 {example}/main.cpp $(pkg-config --cflags --libs qorql qorqlembedded) -o /tmp/embed/alone",
            "/tmp/embed/embed >/tmp/embed/told; /tmp/embed/alone | diff /tmp/embed/told -",
            "apt-get -qq purge -y --autoremove libqorql-dev libqorql0"])

    def test_a_cache_that_others_write_to_is_no_part_of_the_tree(self):
        cache = os.path.join(self.folder, "cache")
        status, out, err = self.run_it("scripts/bare --package", CCACHE_DIR=cache)
        self.assertEqual(status, 0, err)
        self.assertIn("bare: running: apt-get -qq install -y --no-install-recommends ccache\n", err)
        self.assertEqual(os.listdir(cache), [])

    def test_packages_that_are_wrong_are_a_failure(self):
        for fault, message in (("unbuildable", "dpkg-buildpackage: error: it does not build\nbare: this failed: dpkg-buildpackage"),
                               ("faulty", "E: qorql: no-copyright-file"),
                               ("lacking", "cannot access '/usr/share/zsh/vendor-completions/_qorql'"),
                               ("leaves", "> ./etc/left\nbare: the files are not those from before the packages: qorql libqorql0\n")):
            with self.subTest(fault=fault):
                path = self.write(fault, "x")
                self.commit()
                status, out, err = self.run_it("scripts/bare --package")
                self.assertNotEqual(status, 0)
                self.assertIn(message, out + err)
                os.remove(path)

    def test_a_command_that_fails_is_a_failure(self):
        self.write("broken")
        self.commit()
        status, out, err = self.run_it()
        self.assertEqual((status, out), (5, ""))
        self.assertIn("bare: running: ./qorql 'SELECT'\n", err)

    def test_it_cleans_up_when_it_is_interrupted(self):
        self.write("slow")
        self.commit()
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(signal=number), self.start("scripts/bare --test") as process:
                until = time.monotonic() + 60
                while not [1 for _, _, names in os.walk(self.room) if "waiting" in names]:
                    self.assertTrue(process.poll() is None and time.monotonic() < until)
                    time.sleep(0.1)
                process.send_signal(number)
                process.communicate(timeout=60)
                self.assertEqual(process.returncode, 128 + number)
                self.assertEqual(os.listdir(self.room), [])

    def test_where_no_tree_can_be_made_it_says_so_with_a_status_of_its_own(self):
        self.write("../broken")
        status, out, err = self.run_it()
        self.assertEqual((status, out), (77, ""))
        self.assertEqual(err.splitlines()[-2:], ["no such mirror", "bare: a bare tree cannot be made here: mmdebstrap fails"])
        os.chmod(self.write("../bin/id", "#!/bin/bash\necho 1000\n"), 0o755)
        self.assertEqual(self.run_it(), (77, "", "bare: a bare tree cannot be made here: it takes root\n"))

    def test_another_option_is_refused(self):
        self.assertEqual(self.run_it("scripts/bare --tests"), (1, "", "bare: usage: scripts/bare [--test | --package]\n"))


def has_namespaces():
    try:
        return os.geteuid() == 0 and subprocess.run(["unshare", "--mount", "--pid", "--fork", "true"], check=False).returncode == 0
    except FileNotFoundError:
        return False


if __name__ == "__main__":
    if not has_namespaces():
        print("skipped: a mount namespace of its own takes root")
        sys.exit(SKIPPED)
    unittest.main()
