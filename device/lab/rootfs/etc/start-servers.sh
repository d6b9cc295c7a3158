# shellcheck shell=dash
# Starts the servers in their own root file system and tells about the lab.
export PATH=/bin:/usr/sbin HOME=/
hostname lab
umount -l /old
umask 022

# start NAME PORT PROGRAM [ARGUMENT]...: a server that ends with the lab. What it says goes to /var/log.
start() {
  name=$1
  port=$2
  shift 2
  "$@" > "/var/log/$name.log" 2>&1 < /dev/null &
  eval "pid_$name=$!"
}

# is_up NAME PORT: waits until the server listens, or has ended.
is_up() {
  eval "pid=\$pid_$1"
  for _ in $(seq 40); do
    netstat -ltun | grep -q ":$2 " && return 0
    kill -0 "$pid" 2> /dev/null || return 1
    usleep 50000
  done
  return 1
}

start ftp 21 vsftpd /etc/vsftpd.conf
# Files need not be readable for everybody: their owner is the account's.
start tftp 69 in.tftpd --foreground --secure --create --permissive --umask 022 --user operator /srv
start telnet 23 telnetd -F -l /bin/login
start ssh2 22 dropbear -R -F -E -p 22
running=
for server in ftp:21 tftp:69 telnet:23 ssh2:22; do
  if is_up "${server%:*}" "${server#*:}"; then
    running="$running ${server%:*}"
  else
    echo "lab: no server for ${server%:*}: $(tail -n 1 "/var/log/${server%:*}.log")"
  fi
done

cat << TEXT
The lab at the other end of m-eth0:
  hosts    10.0.0.1 and fd00::1 (for m-eth0: ip address 10.0.0.2 24, ipv6 address fd00::2 64)
  router   10.0.0.254 and fe80::1, behind it 10.1.0.1 and fd00:1::1
  servers $running on each of these, user "operator", password "harbour"
  files    $FILES
TEXT
