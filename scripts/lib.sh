# shellcheck shell=sh
# What ./run and ./test share. Sourced, with $root set to the top folder.
: "${root:?}"

say() {
  printf '%s\n' "$*" >&2
}

die() {
  say "$@"
  exit 1
}

# packagesFor GROUP...: the packages of these groups of scripts/packages, one a line.
packagesFor() {
  awk -v groups=" $* " '!/^#/ && NF && index(groups, " " $1 " ") { print $2 }' \
    "$root/scripts/packages"
}

# missingPackages PACKAGE...: those that are not installed.
missingPackages() {
  installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
    awk '$1 == "installed" { print $2 }')
  for package in "$@"; do
    printf '%s\n' "$installed" | grep -qxF -- "$package" || printf '%s ' "$package"
  done
}

# installPackages GROUP...: installs what is missing of these groups; apt is asked for nothing when
# nothing is. On a system without Debian's tools it names the packages and leaves it at that.
installPackages() {
  # shellcheck disable=SC2046  # the names hold no blanks
  set -- $(packagesFor "$@")
  if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    for tool in cmake ninja c++; do
      command -v "$tool" >/dev/null && continue
      die "This system has no apt-get. Please install, by their Debian names: $*"
    done
    return 0
  fi
  missing=$(missingPackages "$@")
  missing=${missing% }
  [ -n "$missing" ] || return 0
  asRoot=
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null ||
      die "Please have these packages installed, there is no sudo here: $missing"
    asRoot=sudo
  fi
  say "Installing with ${asRoot:+sudo }apt-get: $missing"
  # An unreachable source that none of the packages needs is no reason to stop here.
  $asRoot apt-get -q update </dev/null >&2 || say "apt-get update failed, trying to install anyway."
  # shellcheck disable=SC2086  # a list of words
  $asRoot env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends \
    -o DPkg::Lock::Timeout=300 install $missing </dev/null >&2 ||
    die "apt-get could not install: $missing"
}

# configure PRESET: makes build/PRESET unless it is there already; from then on the build notices
# by itself what has changed, save the presets.
configure() {
  stamp=$root/build/$1/configured
  # shellcheck disable=SC3013  # dash knows -nt as every other shell does
  [ "$stamp" -nt "$root/CMakePresets.json" ] && return 0
  (cd "$root" && cmake --preset "$1") >&2
  touch "$stamp"
}

# build PRESET [TARGET]...: builds, silently when there is nothing to do.
build() {
  preset=$1
  shift
  configure "$preset"
  ninja -C "$root/build/$preset" -n "$@" | grep -q 'no work to do' && return 0
  ninja -C "$root/build/$preset" "$@" >&2
}
