#!/usr/bin/python3
"""Has each system call, each allocation and each tool of each command fail, and looks at what is left: docs/proof.md.

The commands are typed on the native device. Each is traced once; then it is typed again for every call that it made and
every error of that call, which strace has it fail with. Calls on the console itself are left out: they are how the shell
is seen.
"""

import argparse
import collections
import contextlib
import filecmp
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import termios
import time
import typing

import psutil
from operator_console import SAMPLES, TOP, OperatorConsole, files_below

ERRORS = {  # of a call; the others may have EIO and EINTR. SHORT: it says that it wrote one byte
    "write": "ENOSPC EIO EINTR SHORT", "openat": "EACCES EMFILE EIO", "unlink": "EROFS EIO", "rmdir": "EBUSY EIO",
    "mkdir": "ENOSPC EROFS", "clone": "EAGAIN ENOMEM", "wait4": "EINTR", "brk": "ENOMEM", "mmap": "ENOMEM",
    "socket": "EMFILE", "access": "EACCES EIO",
}
# What cannot fail; fchdir, without which there is no way back; and close, which closes in any case, but not under strace.
NEVER_FAIL = {"rt_sigaction", "rt_sigprocmask", "rt_sigreturn", "getpid", "getpgrp", "getpgid", "munmap", "sync", "futex"}
NEVER_FAIL |= {"fchdir", "close"}
TOOLS = {"missing": None, "fails": "#!/bin/sh\nexit 1\n", "killed": "#!/bin/sh\nkill -9 $$\n"}
TOLD_BY_TOOLS = "tftp", "ftp", "format"  # the shell itself says nothing of how they went
SYSTEM = TOP / "device/packages/system"
LOADED = ["sbin/tessaro", "etc/tessaro-version"]  # of the system's files
NO_ROOM = "Failed to finish the operation because of insufficient storage space or quota limitation."


class Command(typing.NamedTuple):
    line: str
    changes: tuple = ()  # the names below /mnt that it may change, "/" at the end: all below
    says: str = ""  # of some failure
    before: str = ""  # what is typed first, so that there is something to do
    key: str = ""  # pressed behind the line


COMMANDS = [
    Command("copy a x", ("flash:/x",), NO_ROOM),
    Command("copy a o", ("flash:/o",), NO_ROOM),
    Command("copy a cfa0:/dir", ("cfa0:/dir/a",), NO_ROOM),
    Command("move a x", ("flash:/a", "flash:/x"), NO_ROOM),
    Command("move a cfa0:/o", ("flash:/a", "cfa0:/o"), NO_ROOM),
    Command("delete a", ("flash:/a",), "Execution failure."),
    Command("mkdir made", ("flash:/made",), "Execution failure."),
    Command("rmdir empty", ("flash:/empty",), "Failed to remove directory."),
    Command("tftp 10.0.0.1 get readme.txt flash:/x", ("flash:/x",)),
    Command("tftp 10.0.0.1 get readme.txt flash:/o", ("flash:/o",)),
    Command("format cfa0:", ("cfa0:/",)),
    *map(Command, (
        "dir", "dir /all cfa0:", "more o", "pwd", "display version", "display copyright", "display interface m-eth0",
        "display ip routing-table", "display ipv6 routing-table", "display install package system.bin",
        "reset ssh public-key", "ping -c 1 10.0.0.1", "ftp 10.0.0.1 put a sent", "install load system.bin",
        "install load absent.bin", "install load forged.bin", "display install package forged.bin",
    )),
    # Of two names TAB takes none for the other: were it the only one, "dir" would then list it.
    Command("dir fl", key="\t"),
]
COMMANDS_OF_THE_PORT = [Command(line, before=before) for line, before in (
    ("ip address 10.0.0.3 24", "ip address 10.0.0.2 24"), ("ip gateway 10.0.0.254", "undo ip gateway"),
    ("ipv6 address fd00::3 64", "undo ipv6 address"), ("ipv6 gateway fe80::1", "undo ipv6 gateway"),
    ("undo ip gateway", "ip gateway 10.0.0.254"), ("undo ip address", "ip address 10.0.0.2 24"),
    ("undo ipv6 gateway", "ipv6 gateway fe80::1"), ("undo ipv6 address", "ipv6 address fd00::3 64"),
    ("shutdown", "undo shutdown"), ("undo shutdown", "shutdown"),
)]
# Typed into every shell; the display first, as libcrypto does not bear that memory is missing when it sets itself up.
SETTINGS = "display install package system.bin|system-view|interface m-eth0|ip address 10.0.0.2 24|quit|quit".split("|")


class Device(OperatorConsole):
    """A booted device and its shell, seen from its console and from this machine."""

    def __init__(self):
        super().__init__()
        self.find_shell()

    def find_shell(self):
        # The first one waits for the shell, and becomes what takes the console, and then a shell's first one again.
        below = psutil.Process(self.pid).children(recursive=True)
        found = [p for p in psutil.process_iter(["name", "ppid"]) if p.info["name"] == "esh" and p in below]
        parents = {process.pid: process.info["ppid"] for process in found}
        self.shell, waits = next((pid, parent) for pid, parent in parents.items() if parent in parents)
        self.root = pathlib.Path(f"/proc/{waits}/root")
        self.plan, self.is_torn = self.root / "tmp/fault", False
        for line in SETTINGS:
            self.type(line)

    def lose_memory(self):
        """Starts the shell again, so that a block of memory can fail."""
        shutil.copy(TOP / "build/release/tests/proof/libesh_faults.so", self.root / "lib/faults.so")
        (self.root / "etc/ld.so.preload").write_text("/lib/faults.so\n")
        self.start_again()

    def start_again(self):
        os.kill(self.shell, signal.SIGKILL)
        self.wait_for_prompt()
        self.find_shell()

    def state(self):
        """What every command leaves as it was."""
        process = pathlib.Path(f"/proc/{self.shell}")
        descriptors = sorted((link.name, os.readlink(link)) for link in (process / "fd").iterdir())
        children = (process / f"task/{self.shell}/children").read_text()
        with (process / "fd/0").open("rb", buffering=0) as console:
            modes = termios.tcgetattr(console)
        return descriptors, children, modes, os.readlink(process / "cwd")

    def prepare(self):
        """Puts the same files onto the media; no system is loaded, and the management port is there."""
        if self.is_torn:
            self.start_again()
        for name in LOADED:
            (self.root / name).unlink(missing_ok=True)
        for medium in "flash:", "cfa0:":
            place = self.root / "mnt" / medium
            for entry in place.iterdir():
                shutil.rmtree(entry) if entry.is_dir() else entry.unlink()
            for name in "dir", "empty":
                (place / name).mkdir()
            for name, text in {"a": medium * 15000, "o": "older\n", "flash.txt": "", "dir/x": "kept\n"}.items():
                (place / name).write_text(text)
            for name in "system.bin", "boot.bin", "bad/forged.bin":
                shutil.copy(SAMPLES / name, place)
            for entry in place.rglob("*"):
                os.utime(entry, (0, 0))

    def files(self):
        return files_below(self.root / "mnt")

    @contextlib.contextmanager
    def replaced(self, tool, script):
        """Has the device another tool, or none, while a block runs."""
        place = self.root / tool[1:]
        kept = place.rename(place.with_name(place.name + ".kept"))
        if script:
            place.write_text(script)
            place.chmod(0o755)
        yield
        kept.rename(place)


class Strace:
    """The tracer of a shell, while a block runs."""

    def __init__(self, shell, *options):
        self.log = tempfile.NamedTemporaryFile("r")
        words = ["strace", "-qq", "-yy", "-o", self.log.name, "-p", str(shell), *options]
        self.tracer = subprocess.Popen(words, stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
        status, limit = pathlib.Path(f"/proc/{shell}/status"), time.monotonic() + 5
        # What is to be read whole begins with a call that waits for a key.
        while "TracerPid:\t0\n" in status.read_text() or ("-f" in options and not self.log.read(1)):
            if time.monotonic() > limit:
                raise TimeoutError("strace does not come to the shell")
            time.sleep(0.002)

    def end(self):
        self.tracer.send_signal(signal.SIGINT)
        self.tracer.wait(10)
        self.log.seek(0)
        return self.log.read()


def calls_in(trace, shell):
    """Names and numbers of the shell's calls, counted by name, that are not about the console."""
    counts = collections.Counter()
    for name, rest in re.findall(rf"^{shell} +(\w+)\((.*)", trace, re.MULTILINE):
        counts[name] += 1
        if "/dev/pts/0" not in rest and name not in NEVER_FAIL:
            yield name, counts[name]


class Proof:
    """The device and the counts."""

    def __init__(self, options):
        self.options, self.device = options, Device()
        self.rows = self.missed = self.faults = 0

    def begin(self, command):
        """Types a command as it is. @return its calls, and those of its tools as well."""
        self.command, self.row, self.ways = command, command.line, collections.Counter()
        self.device.prepare()
        self.before = self.device.files()
        shell = self.device.shell
        self.said, trace = self.run("-f")
        if "Unrecognized" in self.said:
            sys.exit(f"{self.row}: is typed in another view")
        self.done = self.device.files()
        return list(calls_in(trace, shell)), trace

    def try_once(self, what, *options, block=0):
        """Types it once more, with a fault. @return whether that came to pass."""
        self.device.prepare()
        state = self.device.state()
        self.row = f"{self.command.line}: {what}"
        now, trace = self.run(*options, block=block)
        was_reached = trace == "due\n" if block else "(INJECTED)" in trace or "-etrace=none" in options
        self.rows += 1
        self.missed += not was_reached
        self.judge(now, state)
        self.ways[now] += 1
        return was_reached

    def try_calls(self, command):
        calls, trace = self.begin(command)
        if self.options.short:
            calls = dict(calls).items()
        for name, number in calls:
            for error in ERRORS.get(name, "EIO EINTR").split()[: 1 if self.options.short else None]:
                what = "retval=1" if error == "SHORT" else f"error={error}"
                self.try_once(f"{name} {number} {error}", f"-einject={name}:{what}:when={number}")
        for tool in sorted(set(re.findall(r'execve\("(/(?:bin|etc)/[^"]*)".* = 0', trace))):
            for way, script in TOOLS.items():
                self.device.prepare()  # with all its tools
                with self.device.replaced(tool, script):
                    self.try_once(f"{tool} {way}", "-etrace=none")
        if not any(command.says in way for way in self.ways):
            self.fault(f"never said: {command.says}")
        self.show()

    def try_blocks(self, command):
        """One block after the other, until the command asks for no more; in the short form each doubles the number."""
        self.begin(command)
        number = 1
        while self.try_once(f"block {number}", block=number):
            number += number if self.options.short else 1
        self.missed -= 1  # the one behind the last
        if number == 1:
            self.fault("no block failed")
        self.show()

    def show(self):
        if self.options.show:
            print(self.command.line, f"{self.said!r}", *(f"{n:4} {way!r}" for way, n in self.ways.most_common()), sep="\n")

    def run(self, *options, block=0):
        """@return what was said, and the trace, or what became of the plan that a block of memory fails."""
        if self.command.before:
            self.device.type(self.command.before)
        self.device.send(self.command.line)
        self.device.expect(re.escape(self.command.line))
        if block:
            status = pathlib.Path(f"/proc/{self.device.shell}/status").read_text()
            self.device.plan.write_text(f"{block} " + re.search(r"NSpid:.*\t(\d+)", status)[1])  # as the device counts
        strace = None if block else Strace(self.device.shell, *options)
        if self.command.key:
            self.device.send(self.command.key)
            self.device.expect("<boot>")
        self.device.send("\r")
        said = self.device.wait_for_prompt()
        if said is None:
            sys.exit(f"{self.row}: there is no prompt")  # nothing is as bad, or can be tried after it
        became = strace.end() if strace else self.device.plan.read_text()
        self.device.plan.unlink(missing_ok=True)
        if "emergency shell" in said:  # it has ended, and another one is there
            self.device.find_shell()
        self.device.is_torn = "Exit failed" in said
        return said, became

    def judge(self, said, state):
        state_now = self.device.state()
        if self.row.startswith("format"):  # chooses the working directory, the last of these, anew
            state, state_now = state[:-1], state_now[:-1]
        if state_now != state:
            self.fault(f"was {state} and is {state_now}")
        after = self.device.files()
        ends_copy = self.row.startswith("copy") and ": read " in self.row  # as the end of the file does
        for name in self.before | self.done | after:
            if not any(name == change or (change[-1] == "/" and name.startswith(change)) for change in self.command.changes):
                if after.get(name, "") != self.before.get(name, ""):
                    self.fault(f"{name} has changed")
            elif after.get(name, "") not in (self.before.get(name, ""), self.done.get(name, ""), "") and not ends_copy:
                self.fault(f"{name} is a part")
        if "delete" not in self.row and self.before["flash:/a"] not in after.values():
            self.fault("the source is lost")
        if ": block " in self.row and self.command.key and "Directory of" in said:  # a folder may be unreadable
            self.fault("one of two names is taken for the only one")
        if "forged" in self.row and "Loading" in said:
            self.fault("a forged package is loaded")
        if "<Tessaro>" in said and filecmp.cmpfiles(SYSTEM, self.device.root, LOADED, shallow=False)[0] != LOADED:
            self.fault("half a system is loaded")
        if re.match("copy .* (write|fsync) ", self.row) and NO_ROOM not in said:
            self.fault("was not told: " + said)
        if after != self.done and said == self.said and not ends_copy and not self.row.startswith(TOLD_BY_TOOLS):
            self.fault("was reported as done: " + said)
        if self.device.type("pwd") is None:
            self.fault("the next command does not work")

    def fault(self, problem):
        self.faults += 1
        print(f"{self.row}: {problem}", file=sys.stderr)


def try_commands(device, try_one):
    """Those of the user view, then those of the port in theirs."""
    for command in COMMANDS:
        try_one(command)
    device.prepare()  # may start another shell
    for line in "system-view", "interface m-eth0":
        device.type(line)
    for command in COMMANDS_OF_THE_PORT:
        try_one(command)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--short", action="store_true", help="only the last call of each kind, and its first error")
    parser.add_argument("--show", action="store_true", help="also what each command said, in all the ways it ended")
    options = parser.parse_args()
    proof = Proof(options)
    try_commands(proof.device, proof.try_calls)
    proof.device.lose_memory()
    try_commands(proof.device, proof.try_blocks)
    count = len(COMMANDS) + len(COMMANDS_OF_THE_PORT)
    print(f"failing calls: {count} commands, {proof.rows} failures, {proof.missed} not reached, {proof.faults} faults")
    proof.device.close()
    sys.exit(proof.faults != 0)


if __name__ == "__main__":
    main()
