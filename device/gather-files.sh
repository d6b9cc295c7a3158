#!/bin/sh
# Gathers what a maker of boot images would have for the device's: its own files, for image/make.
#   gather-files.sh KIND FILES TERMINAL SYSTEM SAMPLES [FILE PLACE]...
# KIND        native or arm64: whose own files are taken besides those of every device
# FILES       the directory that is made
# TERMINAL    whose description is brought besides the usual ones; one that this machine does not know stays unknown
# SYSTEM      where packages for an emulated machine were unpacked; "": the programs are this machine's
# SAMPLES     sample packages and their keys
# FILE PLACE  a file of this machine and its place on the device, both absolute
set -eu
here=$(cd "$(dirname "$0")" && pwd)
kind=$1
files=$2
terminal=$3
system=$4
samples=$5
shift 5

fail() {
  echo "$*"
  exit 1
}

[ -z "$system" ] || [ -e "$system/complete" ] ||
  fail "$system is missing; cmake/install-packages.sh arm64 fetches it"
mkdir -p "$files"
cp -R "$here/rootfs/." "$samples/root/." "$here/$kind/rootfs/." "$files"
cd "$files"
mkdir -p bin dev/pts dev/shm dev/media lib/modules root/.ssh

for name in busybox ssh; do
  file=$([ -z "$system" ] || PATH=$system/bin; command -v "$name") && set -- "$@" "$file" "/bin/$name"
done
while [ $# -gt 0 ]; do
  [ -r "$1" ] || fail "$1 is missing or not readable"
  mkdir -p ".${2%/*}"
  cp "$1" ".$2"
  shift 2
done
[ -e bin/busybox ] || fail "busybox is missing (Debian package busybox-static)"

entry=${terminal%"${terminal#?}"}/$terminal
for directory in "${TERMINFO-}" ~/.terminfo /etc/terminfo /lib/terminfo /usr/share/terminfo; do
  if [ -n "$terminal" ] && [ -f "$directory/$entry" ]; then
    mkdir -p "usr/share/terminfo/${entry%%/*}"
    cp "$directory/$entry" "usr/share/terminfo/$entry"
    break
  fi
done

# What /init loads, in this order, as far as it is not built into the kernel.
[ "$kind" = arm64 ] || exit 0
mkdir lib/modules/drivers
number=10
for driver in drivers/virtio/virtio_ring drivers/virtio/virtio drivers/virtio/virtio_mmio drivers/block/virtio_blk \
  drivers/char/virtio_console fs/fat/fat fs/fat/vfat fs/nls/nls_cp437 fs/nls/nls_ascii net/core/failover \
  drivers/net/net_failover; do
  number=$((number + 1))
  module=$system/lib/modules/kernel/kernel/$driver.ko
  [ ! -e "$module" ] || cp "$module" "lib/modules/drivers/$number-${driver##*/}.ko"
done
