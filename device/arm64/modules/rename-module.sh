#!/bin/bash
# Copies an arm64 kernel module under another module name:
#   rename-module.sh OLD.ko OLD_NAME NEW.ko NEW_NAME
# The name is a text in the module's own record (struct module), which the linker put into a section by itself. The new
# name must not be longer. The signature, which would not fit any more, stands behind the ELF file; objcopy leaves it out.
set -euo pipefail

[ $# -eq 4 ] && [ ${#4} -le ${#2} ] || { echo "usage: ${0##*/} OLD.ko OLD_NAME NEW.ko NEW_NAME" >&2; exit 2; }

name_offset=24 # behind the module's state and its link fields
section=.gnu.linkonce.this_module

aarch64-linux-gnu-objcopy --strip-debug "$1" "$3"
section_offset=$(aarch64-linux-gnu-readelf --section-headers --wide "$3" |
  sed -n "s/.* $section *PROGBITS *[0-9a-f]* *\([0-9a-f]*\) .*/\1/p")
place=$((0x$section_offset + name_offset))
if [ "$(dd if="$3" bs=1 skip=$place count=$((${#2} + 1)) status=none | tr '\0' '.')" != "$2." ]; then
  rm "$3"
  echo "${0##*/}: $1 is no module $2" >&2
  exit 1
fi
# In place: objcopy would lose the section's relocations with its old contents.
padding=$(printf '%*s' $((${#2} - ${#4})) '')
printf '%b' "$4${padding// /\\0}" | dd of="$3" bs=1 seek=$place conv=notrunc status=none
