#!/bin/bash
# Installs the Debian packages that the project needs and that are missing.
#   cmake/install-packages.sh build   to build the project and boot the native device
#   cmake/install-packages.sh test    also to run every check of ./test
set -euo pipefail

build_packages=(
  build-essential cmake ninja-build pkg-config
  libncurses-dev ncurses-base libssl-dev
  libgtest-dev libvterm-dev
  busybox-static openssh-client
)
test_packages=(clang-format clang-tidy libbenchmark-dev libcli-dev valgrind)

case ${1-} in
  build) wanted=("${build_packages[@]}") ;;
  test) wanted=("${build_packages[@]}" "${test_packages[@]}") ;;
  *)
    echo "usage: ${0##*/} build|test" >&2
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
[ ${#missing[@]} -gt 0 ] || exit 0

install_missing() {
  "$@" apt-get update && "$@" env DEBIAN_FRONTEND=noninteractive apt-get install --yes "${missing[@]}"
}

echo "Installing: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
  install_missing
elif command -v sudo > /dev/null; then
  install_missing sudo
else
  echo "Packages are missing. As root, run: apt-get install ${missing[*]}" >&2
  exit 1
fi
