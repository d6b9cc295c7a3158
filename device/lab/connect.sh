# Prepares the far side of m-eth0 before a device boots: a cable whose one end, lab0, stays here and whose other end,
# port0, waits until the device's insmod fetches it as m-eth0. A device that went down took its port with it.
ip link set lo up || exit 1
[ -d /proc/sys/net/ipv4/conf/lab0 ] && ip link del lab0
ip link add port0 address 02:5a:c1:07:f2:0e type veth || exit 1
ip link set veth0 name lab0 || exit 1
ip addr add 10.0.0.1/24 dev lab0 || exit 1
if [ -d /proc/sys/net/ipv6/conf/lab0 ]; then
  echo 0 > /proc/sys/net/ipv6/conf/lab0/accept_dad # the address is usable at once; nobody else can have it
  ip addr add fd00::1/64 dev lab0 || exit 1
fi
ip link set lab0 up
