#!/bin/bash
# Copies an arm64 kernel module under another module name:
#   rename-module.sh OLD.ko OLD_NAME NEW.ko NEW_NAME
# The name is a text in the module's own record, which the linker put into a section by itself. The new name must not
# be longer. The signature, which would not fit any more, stands behind the ELF file and is left out by objcopy.
set -euo pipefail
export LC_ALL=C

[ $# -eq 4 ] && [ ${#4} -le ${#2} ] || { echo "usage: ${0##*/} OLD.ko OLD_NAME NEW.ko NEW_NAME" >&2; exit 2; }

section=.gnu.linkonce.this_module
record=$(mktemp)
trap 'rm -f "$record"' EXIT

aarch64-linux-gnu-objcopy --strip-debug --dump-section $section="$record" "$1" "$3"
padding=$(printf '%*s' $((${#2} - ${#4})) '')
sed -i "s/$2/$4${padding// /\\x00}/" "$record"
grep -q "$4" "$record" || { echo "${0##*/}: $1 is no module $2" >&2; exit 1; }
aarch64-linux-gnu-objcopy --update-section $section="$record" "$3"
