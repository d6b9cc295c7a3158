# shellcheck shell=dash
# Pulls the cable of m-eth0 out of the lab, or puts it in again. Run with busybox sh on the far side.
#   cable.sh out|in
case $1 in
  out) ip link set lab0 down ;;
  in)
    ip link set lab0 up || exit 1
    # The kernel keeps the other addresses of a port that is down, but none of its link-local ones.
    [ ! -d /proc/sys/net/ipv6/conf/lab0 ] || ip addr replace fe80::1/64 dev lab0 ;;
  *) exit 2 ;;
esac
