#!/bin/sh
# Mounts every storage medium of the device under /mnt, by its device name, which is the disk's serial number.
for disk in /sys/block/vd*; do
  [ -e "$disk/serial" ] || continue
  name=$(cat "$disk/serial")
  mkdir -p "/mnt/$name"
  grep -q " /mnt/$name " /proc/mounts && continue
  # A card may come with the file system of another system, which may have links: they lead nowhere here.
  if mount -t vfat -o flush "/dev/${disk##*/}" "/mnt/$name" 2> /dev/null ||
    mount -o nodev,nosuid,noexec,nosymfollow "/dev/${disk##*/}" "/mnt/$name"; then
    echo "Mounting $name ... done."
  else
    echo "Mounting $name ... failed."
    # It stays a medium, for format. What is written to it must not go into memory.
    mount -t tmpfs -o ro unreadable "/mnt/$name"
  fi
done
