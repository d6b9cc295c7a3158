# shellcheck shell=dash
# Prepares the far side of m-eth0 before a device boots: a cable whose one end, lab0, stays here and whose other end,
# port0, waits until the device's insmod fetches it as m-eth0. A device that went down took its port with it.
# Here are 10.0.0.1 and fd00::1, and a router, 10.0.0.254 and fe80::1, behind which 10.1.0.1 and fd00:1::1 are found.
ip link set lo up || exit 1
[ -d /proc/sys/net/ipv4/conf/lab0 ] && ip link del lab0
ip link add port0 address 02:5a:c1:07:f2:0e type veth || exit 1
ip link set veth0 name lab0 || exit 1
ip addr add 10.0.0.1/24 dev lab0 || exit 1
ip addr add 10.0.0.254/24 dev lab0 || exit 1
ip addr replace 10.1.0.1/32 dev lo || exit 1
settings=/proc/sys/net/ipv6/conf/lab0
if [ -d $settings ]; then
  echo 0 > $settings/accept_dad        # an address is usable at once; nobody else can have it
  echo 1 > $settings/keep_addr_on_down # a cable that is pulled out and put in again finds the host as it was
  ip addr add fd00::1/64 dev lab0 || exit 1
  ip addr replace fd00:1::1/128 dev lo || exit 1
fi
busybox sh "${0%/*}/cable.sh" in
