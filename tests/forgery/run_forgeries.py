#!/usr/bin/env python3
"""Has the device's verifier and an independent judge look at forged packages; their verdicts must not differ.

Ends with 0 when they agree on every package, the device's verifier survives all of them, leaves no descriptor open and
does not grow. The last lines count the forgeries.
"""

import argparse
import collections
import os
import subprocess
import sys
import tempfile

import forgeries
import independent_judge
from maker import PRODUCT_TAG, Maker, word

MAX_REPORTED = 20
MAX_GROWTH = 96 << 20  # bytes; most of it AddressSanitizer's own


class DeviceJudge:
    """The program that answers for the device; one package after the other."""

    def __init__(self, program, maker):
        self.path = os.path.join(maker.directory, "package")
        self.process = subprocess.Popen(
            [program, str(PRODUCT_TAG), maker.key_directory],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            text=True,
            # AddressSanitizer keeps what was freed for a while; without a bound that would look like a leak.
            env={**os.environ, "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=16"},
        )

    def judge(self, package):
        """The words of its answer."""
        with open(self.path, "wb") as file:
            file.write(package)
        self.process.stdin.write(self.path + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().split()
        if not answer:
            sys.exit(f"the verifier died on the package in {self.path}")
        return answer

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def memory(self):
        with open(f"/proc/{self.process.pid}/statm") as file:
            return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")

    def end(self):
        self.process.stdin.close()
        return self.process.wait()


def openssl_agrees(maker):
    """The openssl command opens the tool's signature to the digest that it computes itself."""
    body, signature = (os.path.join(maker.directory, name) for name in ("body", "signature"))
    with open(body, "wb") as file:
        file.write(maker.body)
    with open(signature, "wb") as file:
        file.write(independent_judge.claim(maker.tool_signed, lambda at: word(maker.tool_signed, at))[2])
    recover = ["openssl", "pkeyutl", "-verifyrecover", "-inkey", maker.pair.pem, "-in", signature]
    block = subprocess.run([*recover, "-pkeyopt", "rsa_padding_mode:pkcs1"], check=True, capture_output=True).stdout
    digest = subprocess.run(["openssl", "dgst", "-sha256", "-binary", body], check=True, capture_output=True).stdout
    return block == digest and maker.tool_signed == maker.valid["trailer"]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--mkpkg", required=True, help="the package tool")
    parser.add_argument("--judge", required=True, help="the program that answers for the device")
    parser.add_argument("--step", type=int, default=1, help="change every STEPth byte only; by default 1: all")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="esh-forgeries.") as directory:
        maker = Maker(options.mkpkg, directory)
        if not openssl_agrees(maker):
            sys.exit("the openssl command does not agree with the package tool's signature")
        return compare(maker, DeviceJudge(options.judge, maker), options.step)


def compare(maker, device, step):
    differences = 0
    accepted = collections.Counter()
    verdicts = collections.Counter()
    total = 0

    def look_at(group, what, package):
        nonlocal differences
        expected = independent_judge.judge(package, maker.keys, PRODUCT_TAG)
        answer = device.judge(package)
        verdicts[answer[0]] += 1
        accepted[group] += answer[0] == "good"
        if (answer[1:] if answer[0] == "good" else None) != expected:
            differences += 1
            if differences <= MAX_REPORTED:
                verdict = "no" if expected is None else "good"
                print(f"DIFFERENT: {group}: {what}: the device says {answer[0]}, the judge {verdict}")

    for name, package in maker.valid.items():
        look_at("valid", name, package)
    if accepted["valid"] != len(maker.valid) or any("-" in device.judge(package) for package in maker.valid.values()):
        sys.exit("a valid package was refused: nothing is proved")
    open_before, memory_before = device.descriptors(), device.memory()
    for group in forgeries.GROUPS:
        count = 0
        for what, package in group(maker, step):
            look_at(group.__name__, what, package)
            count += 1
        print(f"{group.__name__}: {count} forgeries, {accepted[group.__name__]} of them still good packages")
        total += count
    grown = device.memory() - memory_before
    leaked = device.descriptors() - open_before
    status = device.end()
    print("verdicts:", ", ".join(f"{name} {count}" for name, count in sorted(verdicts.items())))
    print(f"{total} forgeries, {differences} verdicts differ")
    print(f"The verifier left {leaked} descriptors open, grew by {grown // 1024} KB and ended with {status}.")
    return 0 if differences == 0 and leaked == 0 and status == 0 and grown < MAX_GROWTH else 1


if __name__ == "__main__":
    sys.exit(main())
