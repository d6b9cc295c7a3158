"""Somebody who types at the console of a booted device."""

import os
import pathlib
import sys
import time

import pexpect

TOP = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = TOP / "build/release/device/packages/samples/flash"
PROMPT = r"\n[^\n]*(<boot>|\[boot[^]]*\])$"
ANSWERS = {r"\[Y/N]:$": "y\r", "user:$": "operator\r", "password:$": "harbour\r", "---- More ----     $": " "}
ANSWERS |= {"halt the device.\r\n$": "\r", "<Tessaro>$": "boot\r"}  # of those who take over when the shell has ended


class OperatorConsole(pexpect.spawn):
    def __init__(self, *arguments, **environment):
        """Boots the device with these options, and waits for its first prompt. Where nobody may make namespaces, the
        program ends as one that is skipped."""
        if "ESH_NO_NAMESPACES" in os.environ:
            sys.exit(77)
        environment = {**os.environ, **environment}
        program = str(TOP / "build/release/esh-device")
        super().__init__(program, list(arguments), env=environment, dimensions=(24, 200), encoding="latin-1")
        if self.wait_for_prompt() is None:
            raise RuntimeError("there is no prompt: " + self.before)

    def wait_for_prompt(self, watch=lambda: None):
        """Says yes and logs in; calls `watch` all the time. @return what was said; None when no prompt comes."""
        said, limit = "", time.monotonic() + 60
        while time.monotonic() < limit:
            found = self.expect([PROMPT, *ANSWERS, pexpect.TIMEOUT, pexpect.EOF], timeout=0.001)
            watch()
            if self.after is pexpect.EOF:
                return None
            if self.after is not pexpect.TIMEOUT:
                said += self.before + self.after
                if found == 0:
                    return said
                self.send([*ANSWERS.values()][found - 1])
        return None

    def type(self, line, watch=lambda: None):
        self.send(line + "\r")
        return self.wait_for_prompt(watch)


def files_below(directory):
    """Name and bytes of every file, and None for a directory."""
    paths = directory.rglob("*")
    return {str(path.relative_to(directory)): path.read_bytes() if path.is_file() else None for path in paths}
