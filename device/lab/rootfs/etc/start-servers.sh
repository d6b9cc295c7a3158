# shellcheck shell=dash
# Starts the servers in their own root file system and tells about the lab.
export PATH=/bin:/usr/sbin HOME=/
hostname lab
umount -l /old
umask 022

# What a server says goes to /var/log.
vsftpd /etc/vsftpd.conf > /var/log/ftp 2>&1 < /dev/null &
# The account owns the files; they need not be readable for everybody.
in.tftpd --foreground --secure --create --permissive --umask 022 --user operator /srv > /var/log/tftp 2>&1 < /dev/null &
telnetd -F -l /bin/login > /var/log/telnet 2>&1 < /dev/null &
dropbear -R -F -E -p 22 > /var/log/ssh2 2>&1 < /dev/null & # makes its keys when it needs them

# is_up PORT: waits until a server listens there.
is_up() {
  for _ in $(seq 40); do
    netstat -ltun | grep -q ":$1 " && return
    usleep 50000
  done
  return 1
}

servers=
for server in ftp:21 tftp:69 telnet:23 ssh2:22; do
  name=${server%:*}
  if is_up "${server#*:}"; then
    servers="$servers $name"
  else
    echo "lab: no server for $name: $(tail -n 1 "/var/log/$name")"
  fi
done

cat << TEXT
The lab at the other end of m-eth0:
  hosts    10.0.0.1 and fd00::1
           (for m-eth0: ip address 10.0.0.2 24, ipv6 address fd00::2 64)
  router   10.0.0.254 and fe80::1, behind it 10.1.0.1 and fd00:1::1
  servers $servers on each, user "operator", password "harbour"
  files    $FILES
TEXT
