#!/bin/sh
# Makes a new file system on a storage medium. The only argument is its device name, such as flash:
for disk in /sys/block/vd*; do
  [ -e "$disk/serial" ] && [ "$(cat "$disk/serial")" = "$1" ] && break
  disk=
done
if [ -z "$1" ] || [ -z "$disk" ]; then
  echo "$1 is not a storage medium."
  exit 1
fi
disk=/dev/${disk##*/}
echo "Formatting $1 ..."
if grep -q " /mnt/$1 " /proc/mounts; then
  umount "/mnt/$1" || exit 1
fi
if ! mkdosfs "$disk" || ! mount -t vfat -o flush "$disk" "/mnt/$1"; then
  mount -t tmpfs -o ro unreadable "/mnt/$1" # as mount.sh does
  exit 1
fi
echo "Formatting $1 ... done."
