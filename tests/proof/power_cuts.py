#!/usr/bin/python3
"""Cuts the power at every flush, and at many moments between, of each command that changes a medium, and looks at what is
left on the media then: docs/proof.md.

The commands are typed on the emulated device, whose disks log what is written to them (dm-log-writes' format). A cut
keeps all that was written before the last flush and any part of what came after it.
"""

import argparse
import bisect
import collections
import itertools
import pathlib
import random
import shutil
import struct
import subprocess
import sys
import tempfile
import time

from operator_console import SAMPLES, OperatorConsole, files_below

SECTOR = 512
EXT4_BLOCK = 1024
FLUSH, DISCARD = 1, 4
MEDIA = "flash:", "cfa0:"
LONG = "a-long-name-" * 4 + "bin"
Entry = collections.namedtuple("Entry", "end sector flags data")  # what a log says was done, and where that ends


def entries_of(log):
    """The entries that a log holds completely."""
    bytes_, place, entries = log.read_bytes(), SECTOR, []
    while place + SECTOR <= len(bytes_):
        sector, count, flags, _ = struct.unpack_from("<QQQQ", bytes_, place)
        data = place + SECTOR
        end = data + (0 if flags & DISCARD else count * SECTOR)
        if end > len(bytes_) or (count == 0 and not flags):
            break
        entries.append(Entry(end, sector, flags, bytes_[data:end]))
        place = end
    return entries


class Disk:
    """A disk's image, its log, and what of the log happened by when."""

    def __init__(self, directory, name, contents, filesystem):
        self.image, self.log, self.filesystem = directory / name, directory / (name + ".log"), filesystem
        self.torn_at = SECTOR if filesystem == "fat" else EXT4_BLOCK
        self.entries = []
        self.log.touch()
        self.image.write_bytes(bytes(8 << 20))
        if filesystem == "fat":
            run("mformat", "-i", self.image, "-c", "1", "::")
            run("mcopy", "-s", "-i", self.image, *sorted(contents.iterdir()), "::")
        else:
            run("mke2fs", "-q", "-t", "ext4", "-b", str(EXT4_BLOCK), "-d", contents, self.image)
            with self.image.open("r+b") as image:
                image.write(b"in use")  # the boot block: all zeros mean a new disk
        self.base = self.image.read_bytes()

    def state(self, count, chance):
        """The bytes after so many entries: of the sectors written since the last flush, `chance` keeps some, if it is
        given; of some entries it tears the sectors apart, on ext4 its blocks: of a superblock that is torn there no
        tool makes anything."""
        image = bytearray(self.base)
        last_flush = max((i for i in range(count) if self.entries[i].flags & FLUSH), default=0)
        share = chance.choice((0, chance.random(), 1)) if chance else 1
        for number, entry in enumerate(self.entries[:count]):
            step = self.torn_at if chance and chance.random() < 0.2 else len(entry.data)
            for at in range(0, len(entry.data), step or 1):
                if number < last_flush or not chance or chance.random() < share:
                    start = entry.sector * SECTOR + at
                    data = entry.data[at : at + step]
                    image[start : start + len(data)] = data
        return bytes(image)

    def files_in(self, state, directory):
        """Name and bytes of every file, and None for a directory, in an image; lets ext4 replay its journal first."""
        image, found = directory / "state", directory / "files"
        image.write_bytes(state)
        shutil.rmtree(found, ignore_errors=True)
        found.mkdir()
        if self.filesystem == "fat":
            # One by one: what cannot be read ends the tool.
            words = ["mdir", "-/", "-b", "-i", image, "::"]
            listed = subprocess.run(words, capture_output=True, encoding="latin-1", timeout=60)
            for name in sorted(listed.stdout.splitlines()):
                place = found / name.removeprefix("::/")
                if name.endswith("/"):
                    place.mkdir(parents=True, exist_ok=True)
                else:
                    run("mcopy", "-n", "-i", image, name, place, most=1)
        else:
            run("e2fsck", "-fy", image, most=7)  # 8 and more say that it could not work
            run("debugfs", "-R", f"rdump / {found}", image)
            shutil.rmtree(found / "lost+found", ignore_errors=True)
        return files_below(found)


def run(*words, most=0):
    """Runs a tool that may end with a status up to `most`; with any other there is nothing to judge."""
    ended = subprocess.run(words, capture_output=True, stdin=subprocess.DEVNULL, timeout=60)
    if not 0 <= ended.returncode <= most:
        sys.exit(f"power cuts: {words}: {ended.returncode}: {ended.stderr.decode('latin-1')}")


class Cuts:
    """A device, its disks, and the counts of what was found."""

    def __init__(self, directory, options):
        self.directory, self.options = directory, options
        self.chance = random.Random(options.seed)
        names = "commands", "states", "reported", "parts", "older files gone", "renamed files gone", "faults"
        self.counts = dict.fromkeys(names, 0)
        self.states = {}  # of each medium the bytes looked at last
        sizes = {"keep/book.bin": 100_000, "keep/a long name.text": 5, "old": 60_000, "source": 150_000}
        contents = directory / "contents"
        (contents / "keep").mkdir(parents=True)
        sizes |= {"tftp.old": 60_000, "ftp.old": 60_000}
        sizes |= {f"one of many files {number}": number for number in range(30)}  # their entries fill many sectors
        for name, size in sizes.items():
            (contents / name).write_bytes(self.chance.randbytes(size))
        for name in "system.bin", "boot.bin":
            shutil.copy(SAMPLES / name, contents / name)
        lab = directory / "lab"
        lab.mkdir()
        (lab / "remote").write_bytes(self.chance.randbytes(120_000))
        self.disks = [Disk(directory, name, contents, options.filesystem) for name in MEDIA]
        self.console = OperatorConsole("--arm64", "--tftp", str(lab), ESH_LOGGED_DISKS=str(directory))

    def cut(self, line, changes):
        """Types a command and looks at what cuts leave.

        changes: name -> bytes that it has then, or whose it has; None for a directory, "" for nothing.
        """
        self.counts["commands"] += 1
        samples = [self.sizes()]
        before = self.look(samples[0])
        said = self.console.type(line, lambda: self.sample(samples))
        done = samples[-1]
        for _ in range(30):  # what comes late
            time.sleep(0.01)
            self.sample(samples)
        wanted = before | {name: before[data] if data and data in before else data for name, data in changes.items()}
        wanted = {name: data for name, data in wanted.items() if data != ""}
        moved = list(changes) if line.startswith("move") else []
        if self.look(samples[-1]) != wanted:
            self.fault(line, f"is not what was expected: {said}")
        after_report = [done, samples[-1]] * max(self.options.points // 10, 3)
        for sizes in [*self.flushes(samples), *self.moments(samples), *after_report]:
            self.counts["states"] += 1
            found = self.look(sizes, self.chance)
            if all(size >= size_then for size, size_then in zip(sizes, done)):
                self.counts["reported"] += 1
                wrong = [name for name in sorted(wanted | found) if wanted.get(name, "") != found.get(name, "")]
                if wrong:
                    self.fault(line, "was reported, and is not there: " + ", ".join(wrong))
            else:
                self.judge(line, before, wanted, found, moved)
            if moved and before[moved[0]] not in (found.get(name) for name in moved):
                if self.options.filesystem == "fat" and len({name.split("/")[0] for name in moved}) == 1:
                    self.counts["renamed files gone"] += 1  # FAT writes both names in any order
                else:
                    self.fault(line, f"{moved[0]} is nowhere")

    def move(self, source, destination):
        self.cut(f"move {source} {destination}", {source: "", destination: source})

    def sizes(self):
        """Those of the logs at one moment: read again as long as one has grown meanwhile."""
        sizes = None
        while sizes != (again := [disk.log.stat().st_size for disk in self.disks]):
            sizes = again
        return sizes

    def sample(self, samples):
        """Notes the logs' sizes when one has grown: what one disk had when another one had something."""
        sizes = self.sizes()
        if sizes != samples[-1]:
            samples.append(sizes)

    def flushes(self, samples):
        """For every flush the sizes of the logs just behind it; of the other disk what it surely had by then."""
        for number, disk in enumerate(self.disks):
            for entry in disk.entries:
                if entry.flags & FLUSH and samples[0][number] < entry.end <= samples[-1][number]:
                    sizes = list(max(sample for sample in samples if sample[number] < entry.end))
                    sizes[number] = entry.end
                    yield sizes

    def moments(self, samples):
        """Sizes somewhere between those of two samples, or of one when both disks have got something since."""
        for _ in range(self.options.points):
            number = self.chance.randrange(len(samples))
            bounds = list(zip(samples[max(number - 1, 0)], samples[number]))
            if sum(least < most for least, most in bounds) > 1:
                yield samples[number]
            else:
                yield [self.chance.randint(least, most) for least, most in bounds]

    def look(self, sizes, chance=None):
        files = {}
        for name, disk, size in zip(MEDIA, self.disks, sizes):
            if not disk.entries or disk.entries[-1].end < size:
                disk.entries = entries_of(disk.log)
            count = bisect.bisect_right(disk.entries, size, key=lambda entry: entry.end)
            self.states[name] = disk.state(count, chance)
            found = disk.files_in(self.states[name], self.directory)
            files |= {f"{name}/{path}": data for path, data in found.items()}
        return files

    def judge(self, line, before, wanted, found, moved):
        for name in sorted(before | wanted | found, key=str):
            old, new, state = (files.get(name, "") for files in (before, wanted, found))
            if old == new != state and name not in moved:
                self.fault(line, f"{name} is not the command's and changed")
            elif state not in (old, new):
                self.counts["older files gone" if state == "" else "parts"] += 1

    def fault(self, line, problem):
        self.counts["faults"] += 1
        print(f"{line}: {problem}", file=sys.stderr)
        if self.counts["faults"] == 1:
            kept = tempfile.mkdtemp(prefix="power-cut-")
            for name, state in self.states.items():
                pathlib.Path(kept, name).write_bytes(state)
            print(f"the media then are kept in {kept}", file=sys.stderr)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--filesystem", choices=("fat", "ext4"), default="fat")
    parser.add_argument("--points", type=int, default=200, help="cuts between the flushes of each command (200)")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="power-cuts-", dir="/dev/shm") as place:
        cuts = Cuts(pathlib.Path(place), options)
        new = (cuts.directory / "lab/remote").read_bytes()
        for line in "system-view", "interface m-eth0", "ip address 10.0.0.2 24", "quit", "quit":
            cuts.console.type(line)
        for medium in MEDIA:
            made = f"{medium}/made"
            for name in f"{medium}/new", f"{medium}/{LONG}":
                cuts.cut(f"copy source {name}", {name: "flash:/source"})
            cuts.cut(f"copy keep/book.bin {medium}/old", {f"{medium}/old": "flash:/keep/book.bin"})
            cuts.cut(f"mkdir {made}", {made: None})
            cuts.cut(f"copy old {made}", {f"{made}/old": "flash:/old"})
            cuts.cut(f"delete {made}/old", {f"{made}/old": ""})
            cuts.move(f"{medium}/new", f"{made}/{LONG}")
            cuts.move(f"{made}/{LONG}", f"{medium}/old")
            cuts.cut(f"rmdir {made}", {made: ""})
        for source, destination in itertools.pairwise(
            (f"flash:/{LONG}", f"cfa0:/{LONG}.2", "flash:/third", "cfa0:/old", "flash:/old")
        ):
            cuts.move(source, destination)
        for tool in "tftp", "ftp":
            name = f"flash:/{LONG}.{tool}"
            cuts.cut(f"{tool} 10.0.0.1 get remote {name}", {name: new})
            cuts.cut(f"{tool} 10.0.0.1 get remote cfa0:/{tool}.old", {f"cfa0:/{tool}.old": new})
            cuts.cut(f"delete {name}", {name: ""})
        cuts.cut("install load system.bin", {})
        if options.filesystem == "fat":  # which format makes
            kept = cuts.look(cuts.sizes())
            cuts.cut("format cfa0:", {name: "" for name in kept if name.startswith("cfa0:")})
        counts = ", ".join(f"{count} {name}" for name, count in cuts.counts.items())
        print(f"power cuts, {options.filesystem}, seed {options.seed}: {counts}")
        cuts.console.close()
    sys.exit(cuts.counts["faults"] != 0)


if __name__ == "__main__":
    main()
