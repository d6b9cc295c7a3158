# shellcheck shell=dash
# Carries Ethernet frames between the lab's end of the cable and the port of an emulated machine, which is descriptor 3,
# a socket of whole frames. Run with busybox sh on the far side of m-eth0, after connect.sh.

# What the kernel sends to another interface of its own lacks checksums, and comes in pieces larger than a frame. The
# machine must get what would go over a wire.
ethtool -K lab0 tx off > /dev/null
# The kernel's own network must not answer for the machine: another address, no IPv6.
ip link set port0 address 02:5a:c1:07:f2:0f arp off
[ ! -d /proc/sys/net/ipv6/conf/port0 ] || echo 1 > /proc/sys/net/ipv6/conf/port0/disable_ipv6
ip link set port0 up
exec socat -b 65536 INTERFACE:port0 FD:3
