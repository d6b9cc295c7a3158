#!/bin/sh
# Makes a storage medium empty. The only argument is its device name, such as flash:
place=/mnt/$1
if [ -z "$1" ] || ! grep -q " $place " /proc/mounts; then
  echo "$1 is not a storage medium."
  exit 1
fi
echo "Formatting $1 ..."
find "$place" -mindepth 1 -maxdepth 1 -exec rm -rf {} + || exit 1
echo "Formatting $1 ... done."
