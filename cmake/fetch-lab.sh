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
  libc6 libcap2 libcrypt1 libpam0g libssl3 libtomcrypt1 libtommath1 libgmp10 libwrap0 zlib1g
  # The password module of PAM and what libwrap0 is linked with.
  libpam-modules libaudit1 libcap-ng0 libcom-err2 libgssapi-krb5-2 libk5crypto3 libkeyutils1 libkrb5-3
  libkrb5support0 libnsl2 libpcre2-8-0 libselinux1 libtirpc3
)

if ! package_root_is_complete "$target" "${packages[@]}"; then
  begin_package_root "$(dpkg --print-architecture)"
  unpack_packages "${packages[@]}"
  # The lab has settings of its own, and each start copies what is left here into memory.
  rm -rf "${root:?}/etc" "${root:?}/usr/share" "$root"/usr/lib/*/gconv
  finish_package_root "$target" "${packages[@]}"
fi
echo "$target"
