#!/bin/bash
# Runs clang-tidy over the sources, as the release build compiles them. The one argument is the number of processes.
set -uo pipefail
cd "$(dirname "$0")/.."

cmake/install-packages.sh bench < /dev/null || exit 1 # the benchmarks are built by nothing else here
cmake --preset lint > /dev/null || exit 1
build=build/lint
sources=$(find shell term fs net pkg remote util device tools tests bench fuzz -name '*.cpp' | sort)
# One at a time: what its analyzer says of variable arguments is wrong when it has read another file before.
# shellcheck disable=SC2086 # one word per source
printf '%s\n' $sources | xargs -P "${1:-1}" -n 1 clang-tidy -p $build --quiet 2> $build/lint.log
status=$?
grep -v -E '^[0-9]+ warnings? (generated|treated)|^Suppressed|^Use -' $build/lint.log | head -20
exit $status
