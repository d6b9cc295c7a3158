#!/bin/bash
# Downloads the packages that the arm64 device is made of and unpacks them into a directory of its own: they are for
# another machine than this one, so they are not installed. Prints the directory; does nothing when it is complete.
# To fetch newer packages, remove it.
set -euo pipefail

cache=${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/esh
target=$cache/arm64-root

kernel_flavour=cloud-arm64
packages=(
  busybox-static:arm64 # the device's tools
  libc6:arm64 libtinfo6:arm64 libssl3:arm64
  libncurses-dev:arm64 libssl-dev:arm64
  # what unpacks 7z
  libarchive-dev:arm64 liblzma5:arm64 liblzma-dev:arm64 libbz2-1.0:arm64 libbz2-dev:arm64 zlib1g-dev:arm64
  # ssh and what it is linked with
  openssh-client:arm64 libbsd0:arm64 libcbor0.8:arm64 libcom-err2:arm64 libedit2:arm64 libfido2-1:arm64
  libgssapi-krb5-2:arm64 libk5crypto3:arm64 libkeyutils1:arm64 libkrb5-3:arm64 libkrb5support0:arm64 libmd0:arm64
  libpcre2-8-0:arm64 libselinux1:arm64 libudev1:arm64 zlib1g:arm64
)

if [ "$(cat "$target/complete" 2> /dev/null)" = "${packages[*]}" ]; then
  echo "$target"
  exit 0
fi

mkdir -p "$cache"
work=$(mktemp -d "$cache/fetch-XXXXXX")
trap 'rm -rf "$work"' EXIT

# Package lists of our own, so that this machine's apt does not have to know arm64 and nobody needs to be root.
mkdir -p "$work/apt/lists/partial" "$work/apt/archives/partial" "$work/packages" "$work/root"
cat > "$work/apt.conf" << TEXT
APT::Architectures { "$(dpkg --print-architecture)"; "arm64"; };
APT::Sandbox::User "";
Dir::State::Lists "$work/apt/lists";
Dir::Cache "$work/apt";
TEXT
export APT_CONFIG=$work/apt.conf LC_ALL=C
apt-get --quiet update >&2

# The meta package names the newest kernel, "linux-image-RELEASE".
kernel_release=$(apt-cache depends "linux-image-$kernel_flavour:arm64" |
  sed -n 's/.*Depends: linux-image-\([0-9.-]*-'$kernel_flavour'\):arm64$/\1/p')
if [ -z "$kernel_release" ]; then
  echo "${0##*/}: apt offers no kernel for the arm64 device" >&2
  exit 1
fi
kernel_packages=(
  "linux-image-$kernel_release:arm64"
  # To build a module: the tools are this machine's own, the rest is the device's.
  "linux-headers-$kernel_release:arm64" "linux-headers-${kernel_release%"$kernel_flavour"}common"
  "linux-kbuild-${kernel_release%%.*}.$(echo "$kernel_release" | cut -d. -f2)"
)

(cd "$work/packages" && apt-get --quiet download "${packages[@]}" "${kernel_packages[@]}" >&2)
for package in "$work"/packages/*.deb; do
  dpkg-deb --extract "$package" "$work/root"
done

root=$work/root
# Names that do not change with the kernel.
ln -s "vmlinuz-$kernel_release" "$root/boot/vmlinuz"
ln -s "$kernel_release" "$root/lib/modules/kernel"
ln -s "linux-headers-$kernel_release" "$root/usr/src/linux-headers"
# The headers name their other half by its installed place, and so do some links of libraries.
sed -i "s|/usr/src/|\$(dir \$(lastword \$(MAKEFILE_LIST)))../|" "$root/usr/src/linux-headers-$kernel_release/Makefile"
find "$root" -type l -lname '/*' | while read -r link; do
  ln --symbolic --force --no-dereference --relative "$root$(readlink "$link")" "$link"
done

printf '%s\n' "${packages[*]}" > "$root/complete"
rm -rf "$target"
mv "$root" "$target"
echo "$target"
