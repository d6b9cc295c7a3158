#!/bin/bash
# Installs the Debian packages that the project needs and that are missing, and fetches the servers of the device's lab,
# which are not installed.
#   cmake/install-packages.sh build   to build the project and boot the native device
#   cmake/install-packages.sh test    also to run every check of ./test
#   cmake/install-packages.sh bench   also to measure with bench/run, besides what build installs
#   cmake/install-packages.sh arm64   to build for the arm64 device and to run it, besides what build installs
#   cmake/install-packages.sh fresh   to make a bare Debian for cmake/try-fresh.sh, nothing else
set -euo pipefail
here=$(dirname "$0")
# shellcheck source=SCRIPTDIR/package-root.sh
. "$here/package-root.sh"

build_packages=(
  build-essential cmake ninja-build pkg-config
  libncurses-dev ncurses-base libssl-dev zlib1g-dev liblzma-dev libbz2-dev libzstd-dev libarchive-dev
  libgtest-dev libvterm-dev
  busybox-static openssh-client python3
)
test_packages=(clang-format clang-tidy clang libclang-rt-dev openssl mandoc strace python3-pexpect python3-psutil)
bench_packages=(libcli-dev openssl strace valgrind)
arm64_packages=(
  g++-aarch64-linux-gnu qemu-system-arm ethtool socat u-boot-tools mtools fdisk
  e2fsprogs # what looks at media after power cuts
)
fresh_packages=(debootstrap git)

case ${1-} in
  build) wanted=("${build_packages[@]}") ;;
  test) wanted=("${build_packages[@]}" "${test_packages[@]}") ;;
  bench) wanted=("${build_packages[@]}" "${bench_packages[@]}") ;;
  arm64)
    wanted=("${build_packages[@]}" "${arm64_packages[@]}")
    recommends=--no-install-recommends # the emulator's are desktops
    ;;
  fresh) wanted=("${fresh_packages[@]}") ;;
  *)
    echo "usage: ${0##*/} build|test|bench|arm64|fresh" >&2
    exit 2
    ;;
esac

is_installed() {
  [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2> /dev/null)" = installed ]
}

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done

install_missing() {
  local said
  said=$({ "$@" apt-get update &&
    "$@" env DEBIAN_FRONTEND=noninteractive apt-get install --yes ${recommends-} "${missing[@]}"; } 2>&1 < /dev/null) ||
    cannot_get "${missing[*]}" "$said"
}

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  if [ "$(id -u)" -eq 0 ]; then
    install_missing
  elif command -v sudo > /dev/null; then
    install_missing sudo
  else
    echo "Packages are missing. As root, run: apt-get install ${missing[*]}" >&2
    exit 1
  fi
fi

[ "$1" != fresh ] || exit 0 # the bare Debian fetches its own

# A device without servers to talk to is still a device.
"$here/fetch-lab.sh" > /dev/null || true
# What the device itself is made of is for its machine, not for this one.
[ "$1" != arm64 ] || exec "$here/fetch-arm64.sh" > /dev/null
