#!/bin/bash
# Downloads the servers of the device's lab and unpacks them, with all that they need, into a directory of their own.
# Installed on this machine, each would be started as a daemon of it. Prints the directory; does nothing when it is
# complete. To fetch newer packages, remove it.
set -euo pipefail
# shellcheck source=SCRIPTDIR/package-root.sh
. "$(dirname "$0")/package-root.sh"

target=$cache/lab-root
contents="the servers of the lab"
packages=(
  vsftpd tftpd-hpa dropbear-bin
  busybox-static # telnetd, login and what those who log in find
  libpam-modules # who may log in on FTP
)

if ! package_root_is_complete "$target" "${packages[@]}"; then
  begin_package_root "$(dpkg --print-architecture)"
  # shellcheck disable=SC2046 # one word per package
  unpack_packages $(with_libraries "${packages[@]}")
  # The lab has settings of its own, and each start copies what is left here into memory.
  rm -rf "${root:?}/etc" "${root:?}/usr/share" "$root"/usr/lib/*/gconv
  finish_package_root "$target" "${packages[@]}"
fi
echo "$target"
