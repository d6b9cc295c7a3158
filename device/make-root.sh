#!/bin/sh
# Makes the root file system of a device in an empty directory.
#   make-root.sh KIND ROOT TERMINAL SYSTEM SAMPLES [FILE PLACE]...
# KIND        native or arm64: whose own files are taken besides those of every device
# ROOT        the directory
# TERMINAL    whose description is brought besides the usual ones; one that this machine does not know stays unknown
# SYSTEM      where packages for an emulated machine were unpacked; "": the programs are this machine's
# SAMPLES     sample packages and their keys
# FILE PLACE  a file of this machine and its place on the device, both absolute. A program brings its shared libraries.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
kind=$1
root=$2
terminal=$3
system=$4
samples=$5
shift 5

fail() {
  echo "$*"
  exit 1
}

# The loader is asked; its lines are "name => path (address)", and for some the path alone.
add_libraries_of() {
  listing=$(ldd "$@" 2> /dev/null) || : # one that is no program, or needs none
  case $listing in *"not found"*) fail "shared libraries are missing: $listing" ;; esac
  # shellcheck disable=SC2046 # one word per library
  set -- $(echo "$listing" | sed -n 's/^[^/]*\(\/[^ ]*\) (.*/\1/p' | sort -u)
  [ $# -eq 0 ] || cp -L --parents "$@" "$root"
}

# All of them go into the one directory that every loader looks in.
add_foreign_libraries_of() {
  new=
  for name in $(readelf --dynamic "$@" 2> /dev/null | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort -u); do
    [ ! -e "lib/$name" ] || continue
    cp "$system/usr/lib/aarch64-linux-gnu/$name" lib || fail "$name is needed, which is not in $system"
    new="$new lib/$name"
  done
  # shellcheck disable=SC2086 # one word per library
  [ -z "$new" ] || add_foreign_libraries_of $new
}

[ -z "$system" ] || [ -e "$system/complete" ] ||
  fail "$system is missing; cmake/install-packages.sh arm64 fetches it"
cd "$root"
cp -R "$here/rootfs/." "$samples/root/." "$here/$kind/rootfs/." .
mkdir -p bin dev/pts dev/shm dev/media etc/pkg etc/sign_pub_key lib/modules mnt proc root/.ssh run sbin sys tmp var/tmp
chmod 1777 tmp

# This machine's own busybox makes the links: Debian builds it alike for every machine. What stands there already is the
# device's own. The boot image lacks one link, which the shell makes when it needs it.
hosts_own=$(command -v busybox) || fail "busybox is missing (Debian package busybox-static)"
cp "$hosts_own" bin/busybox
busybox chroot . /bin/busybox --install -s /bin 2> /dev/null
rm -f bin/reboot

for name in busybox ssh; do
  file=$([ -z "$system" ] || PATH=$system/bin; command -v "$name") && set -- "$@" "$file" "/bin/$name"
done
pairs=$(($# / 2))
for _ in $(seq "$pairs"); do
  [ -r "$1" ] || fail "$1 is missing or not readable"
  mkdir -p ".${2%/*}"
  cp "$1" ".$2"
  set -- "$@" "$1" # so that the files alone are left
  shift 2
done
if [ -z "$system" ]; then add_libraries_of "$@"; else add_foreign_libraries_of "$@"; fi

descriptions=$PWD/usr/share/terminfo
mkdir -p "$descriptions"
for directory in "${TERMINFO-}" ~/.terminfo /etc/terminfo /lib/terminfo /usr/share/terminfo; do
  [ -d "$directory" ] || continue
  cd "$directory"
  set --
  for name in xterm xterm-256color vt100 linux ansi screen screen-256color tmux tmux-256color dumb "$terminal"; do
    entry=${name%"${name#?}"}/$name
    case " $* " in *" $entry "*) continue ;; esac
    [ ! -f "$entry" ] || [ -e "$descriptions/$entry" ] || set -- "$@" "$entry"
  done
  [ $# -eq 0 ] || cp --parents "$@" "$descriptions"
done

# What /init loads, in this order, as far as it is not built into the kernel.
[ "$kind" = arm64 ] || exit 0
cd "$root"
mkdir lib/modules/drivers
number=10
for driver in drivers/virtio/virtio_ring drivers/virtio/virtio drivers/virtio/virtio_mmio drivers/block/virtio_blk \
  drivers/char/virtio_console fs/fat/fat fs/fat/vfat fs/nls/nls_cp437 fs/nls/nls_ascii net/core/failover \
  drivers/net/net_failover; do
  number=$((number + 1))
  module=$system/lib/modules/kernel/kernel/$driver.ko
  [ ! -e "$module" ] || cp "$module" "lib/modules/drivers/$number-${driver##*/}.ko"
done
