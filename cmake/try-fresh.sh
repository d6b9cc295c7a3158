#!/bin/bash
# Tries this project on a machine that was never used: makes a bare Debian of the release named, clones HEAD into it and
# does there what a newcomer does.
set -euo pipefail

usage() {
  cat << 'TEXT'
usage: cmake/try-fresh.sh [--help] bookworm|trixie|sid [COMMAND [ARGUMENT...]]

Run by root. Without a command it types on the device of ./run and runs "./test --quick". The bare root is made below
~/.cache/esh and is gone afterwards; what was downloaded for it stays there, in fresh-RELEASE.
TEXT
}

case ${1-} in
  bookworm | trixie | sid) suite=$1 ;;
  -h | --help) usage && exit ;;
  *) usage >&2 && exit 2 ;;
esac
shift
[ $# -gt 0 ] || set -- sh -c 'printf "dir\n" | ./run && ./test --quick'

top=$(cd "$(dirname "$0")/.." && pwd)
# shellcheck source=SCRIPTDIR/package-root.sh
. "$top/cmake/package-root.sh"
"$top/cmake/install-packages.sh" fresh < /dev/null
# shellcheck disable=SC2016 # apt fills that in
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' | head -n 1)
archives=$cache/fresh-$suite
mkdir -p "$archives"
root=$(mktemp -d "$cache/try-XXXXXX")
trap clean_up EXIT

# All that runs in the root ends with its first process, a moment after this.
clean_up() {
  kill -KILL "${trial-}" 2> /dev/null || true
  rm -rf --one-file-system "$root" || { sleep 2 && rm -rf --one-file-system "$root"; }
}

# In a chroot the kernel refuses the user namespaces that devices are made of, so the root is really changed.
try() {
  debootstrap --variant=minbase --cache-dir="$archives" "$suite" "$root" "$mirror" | sed '/^I: /d'
  git clone --quiet "$top" "$root/root/esh"
  apt-config dump | grep '^Acquire::\(http\|https\|Check-\)' > "$root/etc/apt/apt.conf.d/90machine" || true
  mount --bind "$root" "$root"
  mount --rbind /dev "$root/dev"
  mount --rbind /sys "$root/sys"
  mount -t proc proc "$root/proc"
  mount --bind "$archives" "$root/var/cache/apt/archives"
  cd "$root"
  pivot_root . mnt
  cd /root/esh
  umount --lazy /mnt
  env -i HOME=/root TERM="${TERM-dumb}" PATH=/usr/sbin:/usr/bin:/sbin:/bin "$@"
}
export suite root mirror archives top
export -f try
# In the background, or a signal would find nobody to clean up; what runs there must still hear Ctrl+C.
env --default-signal=INT,QUIT unshare --mount --pid --fork --kill-child bash -euo pipefail -c 'try "$@"' try "$@" <&0 &
trial=$!
wait $trial
