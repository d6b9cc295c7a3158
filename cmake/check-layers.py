#!/usr/bin/env python3
"""Tells which files include a header of a folder that their own layer does not use; layers are those of CMakeLists.txt."""
import pathlib, re, sys

top = pathlib.Path(__file__).parent.parent
layers = re.findall(r"^esh_layer\((\w+) FOLDER ([\w/]+)(?: USES ([^)]*))?\)", (top / "CMakeLists.txt").read_text(), re.M)
below = {}  # the folders that each layer may include from; the lowest layer stands first
for name, folder, uses in layers:
    below[name] = {folder}.union(*(below.get(used, set()) for used in uses.split()))

wrong = 0
for name, folder, _ in layers:
    for source in sorted((top / folder).glob("*.[ch]*")):
        for header in re.findall(r'#include "(.*?)/[^/"]*"', source.read_text()):
            if header not in below[name]:
                wrong += 1
                print(f"{source.relative_to(top)} includes from {header}, which {name} does not use", file=sys.stderr)
sys.exit(wrong > 0 or not layers)
