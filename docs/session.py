#!/usr/bin/python3
"""Draws docs/session.svg, the picture that README.md opens with: types a session on the device of ./run and has what the
console shows drawn. It needs python3-pexpect, of Debian, and svg-term in PATH, of npm's svg-term-cli.
"""

import json
import pathlib
import subprocess
import tempfile

import pexpect

ROWS, COLUMNS = 24, 76
TYPED = [
    "d?", "ir lo\t", "\r",
    "sys\r", "int m-\r", "ip address 10.0.0.2 24\r", "undo ?", "\x1a",
    "tftp 10.0.0.1 get system.bin flash:/new.bin\r",
    "install laod new.bin\r", "\x1b[A", *["\x1b[D"] * 9, "\x7f", "\x7f", "oa", "\r",
]  # fmt: skip
KEY, LOOK, END = 0.11, 1.3, 6.0  # seconds of the picture's time: for a key, to read what came, to read the last screen

docs = pathlib.Path(__file__).resolve().parent
device = pexpect.spawn(str(docs.parent / "run"), encoding="utf-8", timeout=60, dimensions=(ROWS, COLUMNS))
device.expect("<boot>$")
now, frames = LOOK, [[0.0, "o", "<boot>"]]  # asciicast, version 2


def printed():
    """What the console prints until it is silent for a while."""
    text = ""
    try:
        while True:
            text += device.read_nonblocking(4096, timeout=0.7)
    except pexpect.TIMEOUT:
        return text


for keys in TYPED:
    for key in [keys] if keys.startswith("\x1b") else keys:
        device.send(key)
        frames.append([now, "o", printed()])
        now += KEY
    if keys[-1] in "?\t\r\x1a":
        now += LOOK
frames.append([now + END, "o", ""])
device.send("\x1c")
device.expect(pexpect.EOF)

with tempfile.NamedTemporaryFile("w", suffix=".cast") as cast:
    cast.write(json.dumps({"version": 2, "width": COLUMNS, "height": ROWS}) + "\n")
    cast.writelines(json.dumps(frame) + "\n" for frame in frames)
    cast.flush()
    subprocess.run(["svg-term", "--window", "--in", cast.name, "--out", docs / "session.svg"], check=True)
