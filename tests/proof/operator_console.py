"""Somebody who types at the console of a booted device."""

import os
import pathlib
import re
import sys
import time

import pexpect

TOP = pathlib.Path(__file__).resolve().parents[2]
SAMPLES = TOP / "build/release/device/packages/samples/flash"
PROMPT = re.compile(r"\n.*(<boot>|\[boot[^]]*\])$")
ANSWERS = {"[Y/N]:": "y\r", "user:": "operator\r", "password:": "harbour\r", "---- More ----     ": " "}
ANSWERS |= {"halt the device.\r\n": "\r", "<Tessaro>": "boot\r"}  # of those who take over when the shell has ended


class OperatorConsole:
    def __init__(self, *arguments, **environment):
        """Boots the device with these options, and waits for its first prompt. Where nobody may make namespaces, the
        program ends as one that is skipped."""
        if "ESH_NO_NAMESPACES" in os.environ:
            sys.exit(77)
        self.console = pexpect.spawn(
            str(TOP / "build/release/esh-device"),
            list(arguments),
            env={**os.environ, **environment},
            dimensions=(24, 200),
            encoding="latin-1",
        )
        if self.wait_for_prompt() is None:
            raise RuntimeError("there is no prompt: " + str(self.console.before))

    def press(self, keys):
        self.console.send(keys)

    def wait_for_prompt(self, watch=lambda: None):
        """Says yes and logs in; calls `watch` all the time. @return what was said; None when no prompt comes."""
        said, limit = "", time.monotonic() + 60
        while time.monotonic() < limit:
            try:
                said += self.console.read_nonblocking(4096, timeout=0.001)
            except pexpect.TIMEOUT:
                time.sleep(0.001)
            except pexpect.EOF:
                return None
            watch()
            if PROMPT.search(said):
                return said
            for question, answer in ANSWERS.items():
                if said.endswith(question):
                    self.press(answer)
                    said += " "  # it is answered
        return None

    def type(self, line, watch=lambda: None):
        self.press(line + "\r")
        return self.wait_for_prompt(watch)

    def end(self):
        self.console.close(force=True)
