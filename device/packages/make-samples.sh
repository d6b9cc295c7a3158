#!/bin/sh
# Makes the keys and packages that the devices start with.
#   make-samples.sh MKPKG OUTPUT
# MKPKG   the package tool
# OUTPUT  receives root/ (what goes into a device's root file system), flash/ (what lies on its medium) and lab/ (what
#         the lab's servers give out)
# The keys are made anew: a private key that comes with the sources would be trusted by somebody one day.
set -eu
mkpkg=$1
output=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$output.making

rm -rf "$work"
trap 'rm -rf "$work"' EXIT
keys=$work/root/etc/sign_pub_key
flash=$work/flash
mkdir -p "$keys" "$flash/bad"
cp -R "$here" "$work/source" # variants of a description stand beside what it names
cp -R "$here/../media/flash/." "$flash"

"$mkpkg" key new "$work/private.pem" "$work/public.pem"
"$mkpkg" key device "$work/public.pem" "$keys/ostrel.key"
"$mkpkg" key device --size=516 "$work/public.pem" "$keys/ostrel-services.key"
"$mkpkg" key device "$work/public.pem" "$keys/digital_sign_old_public.key"

# sign PACKAGE OPTION...
sign() {
  package=$1
  shift
  "$mkpkg" sign --private-key="$work/private.pem" "$@" "$package"
}

# system PACKAGE SED-SCRIPT: makes a variant of the system.
system() {
  sed "$2" "$here/system.pkg" > "$work/source/variant.pkg"
  "$mkpkg" build "$work/source/variant.pkg" "$1"
}

"$mkpkg" build "$here/boot.pkg" "$flash/boot.bin" 2> "$work/warnings" # it holds no system
sign "$flash/boot.bin" --key-name=ostrel

system "$flash/system.bin" ''
sign "$flash/system.bin" --key-name=ostrel
system "$flash/system-xz.bin" 's/gz$/xz/'
sign "$flash/system-xz.bin" --key-name=ostrel-services --digest-info --markers=kelvane
system "$flash/system-7z.bin" 's/compression: none/compression: 7z/; s/compression: gz/&, 7z/'
sign "$flash/system-7z.bin" --in-head

# What a device must refuse: a byte changed, the end missing, another product's, another boot image's.
cp "$flash/system.bin" "$flash/bad/forged.bin"
printf 'X' | dd of="$flash/bad/forged.bin" bs=1 seek=7000 conv=notrunc 2> "$work/dd"
head -c 7000 "$flash/system.bin" > "$flash/bad/truncated.bin"
system "$flash/bad/foreign.bin" 's/0x5100/0x5200/'
sign "$flash/bad/foreign.bin" --key-name=ostrel
system "$flash/bad/incompatible.bin" '/7\.1\.075/d'
sign "$flash/bad/incompatible.bin" --key-name=ostrel

mkdir "$work/lab"
cp "$flash"/system*.bin "$flash"/bad/*.bin "$work/lab"
rm -rf "$output" "$work/private.pem"
mkdir "$output"
mv "$work/root" "$flash" "$work/lab" "$output"
