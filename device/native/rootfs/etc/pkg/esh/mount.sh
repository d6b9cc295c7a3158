#!/bin/sh
# Mounts every storage medium of the device under /mnt, by its device name.
for medium in /dev/media/*; do
  [ -d "$medium" ] || continue
  name=${medium##*/}
  mkdir -p "/mnt/$name"
  grep -q " /mnt/$name " /proc/mounts && continue
  if mount -o bind "$medium" "/mnt/$name"; then
    echo "Mounting $name ... done."
  else
    echo "Mounting $name ... failed."
  fi
done
