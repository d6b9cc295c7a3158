# shellcheck shell=dash
# Starts the servers of the lab, once, and tells about the lab on standard output. Run with busybox sh on the far side
# of m-eth0, in the namespaces that the servers live and end in. A server that does not start is told of and no
# failure: the device has other uses.
#   servers.sh PROGRAMS PLACE DIRECTORY SAMPLES
# PROGRAMS   where cmake/fetch-lab.sh put the servers
# PLACE      an empty directory for their root file system, which is theirs alone
# DIRECTORY  what FTP and TFTP give out and receive; "": the lab's own files, which live in memory
# SAMPLES    packages for the device, which are among these
exec 2> /dev/null # what is wrong is told in lines of its own
programs=$1
place=$2
directory=$3
samples=$4
here=${0%/*}

give_up() {
  echo "lab: no servers: $1"
  exit 0
}

# The rest of this script in mounts that nobody else sees.
if [ "$5" != in-own-mounts ]; then
  [ -e "$programs/complete" ] || give_up "$programs is missing; cmake/install-packages.sh build fetches it"
  [ -z "$directory" ] || [ -d "$directory" ] || give_up "there is no directory $directory"
  exec busybox unshare -m busybox sh "$0" "$programs" "$place" "$directory" "$samples" in-own-mounts
fi

mount -t tmpfs -o mode=755 lab "$place" || give_up "no memory can be mounted at $place"
cp -R "$programs/." "$here/rootfs/." "$place" || give_up "their root file system cannot be made"
cd "$place" || exit
mkdir -p dev/pts etc/dropbear old proc run/empty srv tmp var/log var/run
chmod 1777 tmp
chmod 600 etc/shadow
ln -s busybox bin/sh
ln -s busybox bin/login
for node in null zero full random urandom tty; do
  : > "dev/$node"
  mount -o bind "/dev/$node" "dev/$node"
done
mount -t devpts -o newinstance,ptmxmode=0666,mode=0600 terminals dev/pts
ln -s pts/ptmx dev/ptmx
mount -t proc processes proc
mount -t tmpfs -o ro,mode=755 empty run/empty # the FTP server locks itself in, where not even root could write

# The account owns what is given out. In a machine where an ordinary user has one identity only, that is the account's.
if [ -n "$directory" ]; then
  mount -o bind "$directory" srv || give_up "$directory cannot be given out"
  owner=$(stat -c %u:%g srv)
  FILES="those in $directory"
else
  cp "$here"/files/* "$samples"/* srv
  truncate -s 8M srv/image.bin
  truncate -s 40M srv/large.bin
  owner=1000:1000
  FILES="system.bin and other packages, readme.txt, startup.cfg,
           image.bin (8 MB), large.bin (40 MB)"
fi
[ "$(awk '{ print $3; exit }' /proc/self/uid_map)" -gt 1 ] || owner=0:0
[ -n "$directory" ] || chown -R "$owner" srv
echo "operator:x:$owner:operator:/srv:/bin/sh" >> etc/passwd

if [ -e /proc/net/if_inet6 ]; then
  echo listen_ipv6=YES >> etc/vsftpd.conf
else
  echo listen=YES >> etc/vsftpd.conf
fi

export FILES
pivot_root . old || give_up "their root file system cannot be entered"
exec chroot . /bin/sh /etc/start-servers.sh
