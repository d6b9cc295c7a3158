#!/usr/bin/env python3
"""image_test.py MAKE SHELL: boot images that MAKE makes of the shell, this machine's busybox and a maker's files."""
import filecmp
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

MAKE, SHELL = sys.argv[1:]
BUSYBOX = shutil.which("busybox")
CONSOLE = "etc/pkg/esh/ttyname.conf"


class Image(unittest.TestCase):
    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.work = Path(work.name)
        self.write(CONSOLE, b"/dev/ttyS0\n")

    def write(self, name, contents, files="files"):
        file = self.work / files / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(contents)

    def make(self, *options, busybox=BUSYBOX, archive="image.cpio"):
        """What it says, and the archive's members, told by busybox, by their names; None without an archive."""
        archive = self.work / archive
        command = [MAKE, *options, SHELL, busybox, self.work / "files", archive]
        said = subprocess.run(command, stderr=subprocess.PIPE, check=False, text=True)
        self.assertEqual(said.returncode == 0, archive.exists(), said.stderr)
        if said.returncode != 0:
            return said.stderr, None
        listed = subprocess.check_output([BUSYBOX, "cpio", "--quiet", "-tv"], input=archive.read_bytes()).decode()
        return said.stderr, {line.split()[5]: line for line in listed.splitlines()}

    def copy_of(self, program, old, new):
        """A copy of a program with some bytes changed."""
        contents = Path(program).read_bytes()
        self.assertIn(old, contents)
        self.write(Path(program).name, contents.replace(old, new, 1), "changed")
        return self.work / "changed" / Path(program).name

    def test_same_files_give_same_bytes(self):
        for files in ("files", "again"):
            for name in sorted(("lib/b", "lib/a name", CONSOLE), reverse=files == "again"):
                self.write(name, b"/dev/" + name[:5].encode(), files)
            command = [MAKE, SHELL, BUSYBOX, self.work / files, self.work / f"{files}.cpio.gz"]
            subprocess.run(command, stderr=subprocess.DEVNULL, check=True)
        self.assertTrue(filecmp.cmp(self.work / "files.cpio.gz", self.work / "again.cpio.gz", shallow=False))

    def test_names_what_is_missing_and_what_for(self):
        self.write("etc/sign_pub_key/short.key", bytes(513))
        said, members = self.make()
        self.assertIn("no /etc/pkg/esh/mount.sh: no medium will be mounted", said)
        self.assertIn("/etc/sign_pub_key/short.key is no key", said)
        self.assertIsNotNone(members)
        (self.work / "files/etc/sign_pub_key/short.key").unlink()
        self.assertIn("no package will verify", self.make()[0])

    def test_writes_no_image_that_cannot_start(self):
        foreign = self.copy_of(BUSYBOX, b"\x7fELF\x02\x01", b"\x7fELF\x01\x01")
        self.assertIn("/bin/busybox is for another machine", self.make(busybox=foreign, archive="1")[0])
        self.assertIn("no libc.so.6: /sbin/esh will not start", self.make("--sysroot", "/nowhere", archive="2")[0])
        libc = re.search(r"libc.so.6 => (.*) \(", subprocess.check_output(["ldd", SHELL], text=True))[1]
        self.copy_of(libc, b"\0GLIBC_2.34\0", b"\0GLIBC_1.34\0")
        said, _ = self.make("--sysroot", self.work / "changed", "--sysroot", "/", archive="3")
        self.assertIn("libc.so.6 has no GLIBC_2.34: /sbin/esh", said)
        self.write(CONSOLE, b"ttyS0\n")
        self.assertIn(f"/{CONSOLE} names no console", self.make(archive="4")[0])
        (self.work / "files" / CONSOLE).unlink()
        self.assertIn(f"no /{CONSOLE}", self.make(archive="4")[0])
        self.assertIsNotNone(self.make("--part", archive="5")[1])
        self.write("init", b"my own")  # and not executable
        self.write(CONSOLE, b"/dev/ttyS0\n")
        self.assertIn("/init will not start", self.make(archive="4")[0])

    def test_links_of_the_maker_stay_in_the_image(self):
        outside = self.work / "outside"
        outside.mkdir()
        self.write("etc/passwd", b"my own")
        (self.work / "files/usr/lib").mkdir(parents=True)
        (self.work / "files/lib").symlink_to("usr/lib")
        (self.work / "files/bin").symlink_to(outside)
        _, members = self.make()
        self.assertEqual({line.split()[1] for line in members.values()}, {"0/0"})
        self.assertIn("mnt", members)
        self.assertNotIn("bin/reboot", members)
        self.assertIn(f"{outside}/sh"[1:], members)
        self.assertEqual(list(outside.iterdir()), [])
        self.assertFalse([name for name in members if name.startswith("lib/")])
        self.assertEqual(members["etc/passwd"].split()[2], str(len(b"my own")))


unittest.main(argv=sys.argv[:1])
