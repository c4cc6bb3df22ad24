"""scripts/bare in earnest, with its namespaces and mounts, on a small tree and with a stand-in for mmdebstrap that lends
this system's programs.

Run as bare_test.py ROOT.
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = sys.argv.pop()
SKIPPED = 77

# Makes the tree of its last arguments: /usr as it is here, but for /usr/local, where stand-ins tell of their calls.
MMDEBSTRAP = """#!/bin/bash
while [ "$1" != bookworm ]; do shift; done
tree=$2
[ ! -e "$STAND_IN/broken" ] || { echo "no such mirror"; exit 1; }
mkdir -p "$tree"/{usr,etc,proc,sys,dev/pts,dev/shm,root,tmp,var}
mount --bind /usr "$tree/usr" && mount -o remount,bind,ro "$tree/usr"
for name in bin lib lib64 sbin; do [ ! -L /$name ] || ln -s usr/$name "$tree/$name"; done
cp -a /dev/{null,zero,full,random,urandom,tty} "$tree/dev"
mount -t tmpfs none "$tree/usr/share/keyrings" && mount -t tmpfs none "$tree/usr/local" && mkdir "$tree/usr/local/bin"
for name in cmake apt-get man qorql; do
  printf '#!/bin/bash\\necho "%s $*" >>/root/calls\\n' $name >"$tree/usr/local/bin/$name"
done
cat >>"$tree/usr/local/bin/cmake" <<'END'
[ "$1" = --build ] && mkdir -p "$2" && printf '#!/bin/bash\\n' >"$2/${2##*/}" && chmod +x "$2/${2##*/}"
exit 0
END
chmod +x "$tree"/usr/local/bin/*
"""
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
        for name, text in (("README.md", README), ("qorql", QORQL), ("test", TEST), ("../bin/mmdebstrap", MMDEBSTRAP)):
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

    def start(self, command):
        environment = {**os.environ, "TMPDIR": self.room, "STAND_IN": self.folder,
                       "PATH": os.path.join(self.folder, "bin") + ":" + os.environ["PATH"]}
        environment.pop("CCACHE_DIR", None)
        return subprocess.Popen(os.path.join(self.tree, command).split(), env=environment, text=True,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE)

    def run_it(self, command="scripts/bare"):
        with self.start(command) as process:
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
        self.assertEqual(lines[13:], ["files: README.md build qorql scripts test ", "a terminal", "a root"])

    def test_without_the_option_the_tests_do_not_run(self):
        status, out, err = self.run_it()
        self.assertEqual((status, out), (0, "answer\n"), err)

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
        self.assertEqual(self.run_it("scripts/bare --tests"), (1, "", "bare: usage: scripts/bare [--test]\n"))


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
