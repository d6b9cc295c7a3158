# shellcheck shell=bash
# Functions for scripts that unpack Debian packages into a directory of their own below ~/.cache/esh, where nothing of
# this machine changes: no package's scripts run and none of its daemons starts. Sourced by bash; nobody has to be root.

cache=${XDG_CACHE_HOME:-${HOME:-/root}/.cache}/esh

# package_root_is_complete TARGET PACKAGE...: whether the directory holds what these packages were unpacked to.
package_root_is_complete() {
  local target=$1
  shift
  [ "$(cat "$target/complete" 2> /dev/null)" = "$*" ]
}

# cannot_get WHAT OUTPUT: ends the script and says so in one line, with the first reason in the output of apt.
cannot_get() {
  echo "${0##*/}: cannot get $1: $(grep -m 1 -E '^(E:|W: Failed)' <<< "$2" || tail -n 1 <<< "$2")" >&2
  exit 1
}

# begin_package_root ARCHITECTURE...: makes $root, which goes when the script ends, and gets the package lists for it:
# lists of its own, as this machine's apt need not know these architectures.
begin_package_root() {
  mkdir -p "$cache"
  work=$(mktemp -d "$cache/fetch-XXXXXX")
  trap 'rm -rf "$work"' EXIT
  root=$work/root
  mkdir -p "$work/apt/lists/partial" "$work/apt/archives/partial" "$work/packages" "$root"
  # As every Debian has it, whether its packages say /lib or /usr/lib.
  local directory
  for directory in bin sbin lib lib64; do
    mkdir -p "$root/usr/$directory"
    ln -s "usr/$directory" "$root/$directory"
  done
  cat > "$work/apt.conf" << TEXT
APT::Architectures { $(printf '"%s"; ' "$@")};
APT::Sandbox::User "";
Dir::State::Lists "$work/apt/lists";
Dir::Cache "$work/apt";
TEXT
  export APT_CONFIG=$work/apt.conf LC_ALL=C
  local said
  said=$(apt-get --quiet update 2>&1) || true # it may get what is needed and complain of something else
  compgen -G "$work/apt/lists/*_Packages*" > /dev/null || cannot_get "$contents" "$said"
}

# with_libraries PACKAGE...: prints these and the packages of the libraries that they need, which have other names in
# other releases.
# shellcheck disable=SC2086 # one word per package
with_libraries() {
  local all=$* before=
  while [ "$all" != "$before" ]; do
    before=$all
    all=$(apt-cache depends --important $all | sed -n 's/^\([^ <]\)/\1/p; s/^  \(Pre\)\?Depends: \(z\?lib\)/\2/p' | sort -u)
  done
  echo $all
}

# unpack_packages PACKAGE...: into $root.
unpack_packages() {
  local said package
  said=$(cd "$work/packages" && apt-get --quiet download "$@" 2>&1) || cannot_get "$*" "$said"
  for package in "$work"/packages/*.deb; do
    dpkg-deb --fsys-tarfile "$package" | tar --extract --keep-directory-symlink --directory "$root"
  done
}

# finish_package_root TARGET PACKAGE...: puts $root in its place.
finish_package_root() {
  local target=$1
  shift
  printf '%s\n' "$*" > "$root/complete"
  rm -rf "$target"
  mv "$root" "$target"
}
