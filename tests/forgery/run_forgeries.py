#!/usr/bin/env python3
"""run_forgeries.py MKPKG JUDGE [STEP]: has the device's verifier, for which the program JUDGE answers, and an
independent judge look at forged packages; their verdicts must not differ. STEP changes every so manyth byte only.

Ends with 0 when they agree on every package and the device's verifier, and the package tool's reader, survive all of
them, leave no descriptor open and take little memory. The last lines count the forgeries.
"""

import collections
import os
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

import forgeries
import independent_judge
from maker import PRODUCT_TAG, Maker

REASONS = set("""byte-order head-crc key-file key-name key-value kind no-main-head no-trailer product-tag
shorter-than-payload signature-length signature-text too-many-files trailer-form trailer-holds-nul trailer-length
wrong-signature good""".split())


class DeviceJudge:
    """The program that answers for the device; one package after the other."""

    def __init__(self, program, maker):
        self.path = os.path.join(maker.directory, "package")
        command = [program, self.path, str(PRODUCT_TAG), maker.key_directory]
        pipe, env = subprocess.PIPE, {**os.environ, "ASAN_OPTIONS": "quarantine_size_mb=8"}  # or it keeps what was freed
        self.process = subprocess.Popen(command, stdin=pipe, stdout=pipe, text=True, env=env)

    def judge(self, package):
        """Its verdict, and what it hands out of each file of a good package; None of any other."""
        Path(self.path).write_bytes(package)
        print(file=self.process.stdin, flush=True)
        answer = self.process.stdout.readline().split()
        if not answer:
            sys.exit(f"the verifier died on the package in {self.path}")
        return answer[0], answer[1:] if answer[0] == "good" else None


def compare(maker, device, step):
    """Has both look at all forgeries. @return how many verdicts differ."""
    differences, reasons = 0, set()
    for group in forgeries.GROUPS:
        verdicts = collections.Counter()
        for what, package in group(maker, step):
            expected = independent_judge.judge(package, maker.keys, PRODUCT_TAG)
            verdict, files = device.judge(package)
            verdicts[verdict] += 1
            differences += files != expected
            if files != expected and differences <= 20:
                judged = "no" if expected is None else "good"
                print(f"DIFFERENT: {group.__name__}: {what}: the device says {verdict}, the judge {judged}")
        counts = ", ".join(f"{name} {count}" for name, count in sorted(verdicts.items()))
        print(f"{group.__name__}: {verdicts.total()} forgeries: {counts}")
        reasons |= verdicts.keys()
    if reasons != REASONS:
        sys.exit(f"no forgery, or one too many, was judged: {reasons ^ REASONS}")
    print(f"{differences} verdicts differ")
    return differences


def main(mkpkg, judge, step="1"):
    with tempfile.TemporaryDirectory(prefix="esh-forgeries.") as directory:
        maker = Maker(mkpkg, directory)
        own = {name: form(maker.body) for name, form in maker.forms.items()}
        if own.items() - maker.valid.items():
            sys.exit("the package tool signs otherwise than the maker of forgeries")
        device = DeviceJudge(judge, maker)
        for name, package in maker.valid.items():
            files = device.judge(package)[1]
            if not files or "-" in files or files != independent_judge.judge(package, maker.keys, PRODUCT_TAG):
                sys.exit(f"the valid package {name} was refused: nothing is proved")
        descriptors = f"/proc/{device.process.pid}/fd"
        before = len(os.listdir(descriptors))
        differences = compare(maker, device, int(step))
        leaked = len(os.listdir(descriptors)) - before
        device.process.communicate()
        status = device.process.returncode
    megabytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss // 1024
    print(f"The verifier left {leaked} descriptors open, ended with {status} and took {megabytes} MB at most.")
    return 0 if differences == leaked == status == 0 and megabytes < 256 else 1  # a sanitizer's included


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
