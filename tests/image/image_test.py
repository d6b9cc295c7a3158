#!/usr/bin/env python3
"""image_test.py MAKE SHELL: boot images that MAKE makes of the shell, this machine's busybox and a maker's files."""
import filecmp
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

MAKE, SHELL = sys.argv[1:]
BUSYBOX = shutil.which("busybox")
CONSOLE = "etc/pkg/esh/ttyname.conf"


class Image(unittest.TestCase):
    def setUp(self):
        self.work = tempfile.TemporaryDirectory()
        self.addCleanup(self.work.cleanup)
        self.write(CONSOLE, b"/dev/ttyS0\n")

    def path(self, name):
        return os.path.join(self.work.name, name)

    def write(self, name, contents, files="files"):
        os.makedirs(os.path.dirname(self.path(f"{files}/{name}")), exist_ok=True)
        with open(self.path(f"{files}/{name}"), "wb") as file:
            file.write(contents)

    def make(self, *options, busybox=BUSYBOX, archive="image.cpio", files="files"):
        """What it says, and the archive's members, told by busybox, by their names; None without an archive."""
        command = [MAKE, *options, SHELL, busybox, self.path(files), self.path(archive)]
        said = subprocess.run(command, stderr=subprocess.PIPE, check=False, text=True)
        self.assertEqual(said.returncode == 0, os.path.exists(self.path(archive)), said.stderr)
        if said.returncode != 0:
            return said.stderr, None
        with open(self.path(archive), "rb") as file:
            list_members = [BUSYBOX, "cpio", "--quiet", "-tv"]
            listed = subprocess.run(list_members, stdin=file, stdout=subprocess.PIPE, check=True, text=True).stdout
        return said.stderr, {line.split()[5]: line for line in listed.splitlines()}

    def copy_of(self, program, old, new):
        """A copy of a program with some bytes changed."""
        with open(program, "rb") as file:
            contents = file.read()
        self.assertIn(old, contents)
        name = os.path.basename(program)
        self.write(name, contents.replace(old, new, 1), "changed")
        return self.path(f"changed/{name}")

    def test_same_files_give_same_bytes(self):
        for files in ("files", "again"):
            for name in sorted(("lib/b", "lib/a name", CONSOLE), reverse=files == "again"):
                self.write(name, name.encode(), files)
            command = [MAKE, SHELL, BUSYBOX, self.path(files), self.path(f"{files}.cpio.gz")]
            subprocess.run(command, stderr=subprocess.DEVNULL, check=True)
        self.assertTrue(filecmp.cmp(self.path("files.cpio.gz"), self.path("again.cpio.gz"), shallow=False))

    def test_root_has_what_the_shell_needs(self):
        _, members = self.make()
        owners = {line.split()[1] for line in members.values()}
        self.assertEqual(owners, {"0/0"})
        for name in ("init", "sbin/esh", "bin/sh", "bin/xzdec", "dev/console", f"{CONSOLE}", "mnt",
                     "usr/share/terminfo/v/vt100"):
            self.assertIn(name, members)
        self.assertTrue([name for name in members if name.endswith("/libc.so.6")])
        self.assertNotIn("bin/reboot", members)

    def test_names_what_is_missing_and_what_for(self):
        self.write("etc/sign_pub_key/short.key", bytes(513))
        said, members = self.make()
        self.assertIn("no /etc/pkg/esh/mount.sh: no medium will be mounted", said)
        self.assertIn("/etc/sign_pub_key/short.key is no key", said)
        self.assertIsNotNone(members)
        os.remove(self.path("files/etc/sign_pub_key/short.key"))
        self.assertIn("no package will verify", self.make()[0])

    def test_writes_no_image_that_cannot_start(self):
        foreign = self.copy_of(BUSYBOX, b"\x7fELF\x02\x01", b"\x7fELF\x01\x01")
        self.assertIn("/bin/busybox is for another machine", self.make(busybox=foreign, archive="1")[0])
        self.assertIn("no libc.so.6: /sbin/esh will not start", self.make("--sysroot", "/nowhere", archive="2")[0])
        libc = subprocess.run(["sh", "-c", f"ldd {SHELL} | sed -n 's/.*libc.so.6 => \\(.*\\) (.*/\\1/p'"],
                              stdout=subprocess.PIPE, check=True, text=True).stdout.strip()
        self.copy_of(libc, b"\0GLIBC_2.34\0", b"\0GLIBC_1.34\0")
        said, _ = self.make("--sysroot", self.path("changed"), "--sysroot", "/", archive="3")
        self.assertIn("libc.so.6 has no GLIBC_2.34: /sbin/esh", said)
        os.remove(self.path(f"files/{CONSOLE}"))
        self.assertIn(f"no /{CONSOLE}", self.make(archive="4")[0])
        self.assertIsNotNone(self.make("--part", archive="5")[1])

    def test_links_of_the_maker_stay_in_the_image(self):
        os.makedirs(self.path("files/usr/lib"))
        os.symlink("usr/lib", self.path("files/lib"))
        os.makedirs(self.path("outside"))
        os.symlink(self.path("outside"), self.path("files/bin"))
        self.write("init", b"my own")
        _, members = self.make()
        self.assertIn(f"{self.path('outside')[1:]}/sh", members)
        self.assertEqual(os.listdir(self.path("outside")), [])
        self.assertFalse([name for name in members if name.startswith("lib/")])
        self.assertEqual(members["init"].split()[2], str(len(b"my own")))


unittest.main(argv=sys.argv[:1])
