#!/bin/sh
# Emulates a 64-bit Arm machine whose port is plugged in at the lab's cable; becomes the emulator.
#   emulate.sh KERNEL DIRECTORY [IMAGE NAME]...
# KERNEL      a kernel's file
# DIRECTORY   holds first-root.cpio, which the kernel unpacks as its root file system; receives console.log
# IMAGE NAME  a disk's bytes, and its serial number, at most 20 characters. Where $ESH_LOGGED_DISKS names a directory, its
#             files NAME and NAME.log take the image's place: the bytes, and a log of what is written and flushed
# Descriptors, sockets if nothing else is said: 3 the console's line, a terminal; 4 to /sbin/serve-host; 5 from /init;
# 6 the emulator's monitor, in QMP; 7 and 8 the ends of a line that carries whole frames.
kernel=$1
directory=$2
shift 2

busybox sh "${0%/*}/../lab/carry.sh" 3<&8 4>&- 5>&- 6>&- 7>&- 8>&- &

# In the emulator's options a comma is written twice.
escaped() { echo "$1" | sed 's/,/,,/g'; }

number=0
for _ in $(seq $(($# / 2))); do
  logged=$ESH_LOGGED_DISKS/$2
  if [ -n "$ESH_LOGGED_DISKS" ]; then
    set -- "$@" -blockdev "driver=file,node-name=file$number,cache.no-flush=on,filename=$(escaped "$logged")" -blockdev \
      "driver=blklogwrites,node-name=disk$number,file=file$number,log.driver=file,log.filename=$(escaped "$logged").log"
  else
    set -- "$@" -drive "if=none,format=raw,cache=unsafe,id=disk$number,file=$(escaped "$1")"
  fi
  set -- "$@" -device "virtio-blk-device,drive=disk$number,serial=$(escaped "$2")"
  shift 2
  number=$((number + 1))
done
if [ "$(uname -m)" = aarch64 ] && [ -r /dev/kvm ] && [ -w /dev/kvm ]; then
  set -- -M virt,gic-version=host -cpu host -accel kvm "$@"
else
  set -- -M virt -cpu cortex-a57 -accel tcg "$@"
fi

# Messages of the kernel would stand between those of the shell; one that cannot go on restarts. To move the kernel about
# in memory and to test its ciphers takes a sixth of the time of a boot, and is of no use here.
# A machine that restarts itself ends the emulator. Nothing of this machine's network can be reached.
exec unshare --net qemu-system-aarch64 -nodefaults -no-user-config -display none -no-reboot -smp 1 -m 512 \
  -kernel "$kernel" -initrd "$directory/first-root.cpio" \
  -append "console=ttyAMA0 quiet loglevel=1 panic=-1 nokaslr cryptomgr.notests" \
  -chardev "serial,id=serial,path=/proc/self/fd/3,logfile=$(escaped "$directory")/console.log" -serial chardev:serial \
  -device virtio-serial-device \
  -chardev socket,id=commands,fd=4 -device virtserialport,chardev=commands,nr=1 \
  -chardev socket,id=events,fd=5 -device virtserialport,chardev=events,nr=2 \
  -chardev socket,id=monitor,fd=6 -mon chardev=monitor,mode=control \
  -netdev dgram,id=port,local.type=fd,local.str=7 -device virtio-net-device,netdev=port,mac=02:5a:c1:07:f2:0e \
  "$@" 8>&-
