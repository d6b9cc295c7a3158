#!/bin/bash
# Downloads the packages that the arm64 device is made of and unpacks them into a directory of its own: they are for
# another machine than this one, so they are not installed. Prints the directory; does nothing when it is complete.
# To fetch newer packages, remove it.
set -euo pipefail

# shellcheck source=SCRIPTDIR/package-root.sh
. "$(dirname "$0")/package-root.sh"

target=$cache/arm64-root
contents="the emulated machine"
kernel_flavour=cloud-arm64
programs=(
  busybox-static:arm64 # the device's tools
  openssh-client:arm64
)
packages=(
  "${programs[@]}"
  libncurses-dev:arm64 libssl-dev:arm64
  u-boot-qemu # what starts a boot image on the machine
  # what unpacks 7z; libarchive itself is linked statically
  libarchive-dev:arm64 liblzma5:arm64 liblzma-dev:arm64 libbz2-1.0:arm64 libbz2-dev:arm64 zlib1g-dev:arm64
  libzstd1:arm64 libzstd-dev:arm64
)

if package_root_is_complete "$target" "${packages[@]}"; then
  echo "$target"
  exit 0
fi

begin_package_root "$(dpkg --print-architecture)" arm64
# The meta package names the newest kernel, "linux-image-RELEASE".
kernel_release=$(apt-cache depends "linux-image-$kernel_flavour:arm64" |
  sed -n 's/.*Depends: linux-image-\([0-9].*-'$kernel_flavour'\):arm64$/\1/p')
if [ -z "$kernel_release" ]; then
  echo "${0##*/}: apt offers no kernel for the arm64 device" >&2
  exit 1
fi
# To build a module: the headers are the device's, the tools that they need are this machine's own.
headers=linux-headers-$kernel_release:arm64
headers_need=$(apt-cache depends "$headers" | sed -n 's/^  Depends: <\?\(linux-\(headers\|kbuild\)-[^:>]*\).*/\1/p')

# shellcheck disable=SC2046,SC2086 # one word per package
unpack_packages "${packages[@]}" $(with_libraries "${programs[@]}") "linux-image-$kernel_release:arm64" "$headers" $headers_need

# Names that do not change with the kernel.
ln -s "vmlinuz-$kernel_release" "$root/boot/vmlinuz"
ln -s "$kernel_release" "$root/lib/modules/kernel"
ln -s "linux-headers-$kernel_release" "$root/usr/src/linux-headers"
# The device's tools load no packed modules.
find "$root/usr/lib/modules" -name '*.ko.xz' -exec unxz {} +
# The headers name their other half by its installed place, and so do some links of libraries.
sed -i "s|/usr/src/|\$(dir \$(lastword \$(MAKEFILE_LIST)))../|" "$root/usr/src/linux-headers-$kernel_release/Makefile"
find "$root" -type l -lname '/*' | while read -r link; do
  ln --symbolic --force --no-dereference --relative "$root$(readlink "$link")" "$link"
done

finish_package_root "$target" "${packages[@]}"
echo "$target"
