#!/bin/bash
# Builds targets of a preset, all of them when none is named, and configures it before where that is needed.
#   cmake/build.sh PRESET [TARGET...]
# Two builds in one tree wait for each other: at once they break each other's files.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

exec 9< .
flock 9
# All other reasons to configure anew the build knows itself.
[ "build/$preset/build.ninja" -nt CMakePresets.json ] || cmake --preset "$preset" > /dev/null
cmake --build --preset "$preset" ${1:+--target "$@"} 9<&-
