#!/bin/sh
# packages_test.sh TOP: what ./run and ./test do about missing packages, seen on a machine whose
# tools only write down how they were called.
set -eu
top=$1
machine=$(mktemp -d)
trap 'rm -rf "$machine"' EXIT
mkdir "$machine/bin" "$machine/scripts"
cp "$top/scripts/lib.sh" "$machine/scripts"
cat >"$machine/scripts/packages" <<'END'
# a remark about build
build  g++        compiler
build  libgl-dev  OpenGL
check  xvfb       a screen
END
failures=0

# tool NAME BODY: a program of this machine.
tool() {
  printf '#!/bin/sh\n%s\n' "$2" >"$machine/bin/$1"
  chmod +x "$machine/bin/$1"
}

# The shell's own surroundings, without any of Debian's tools.
for name in sh awk grep cat env; do ln -s "$(command -v "$name")" "$machine/bin/$name"; done

# debianWith PACKAGE...: a Debian machine with these packages and user number $user.
debianWith() {
  tool dpkg-query "for p in $*; do echo \"installed \$p\"; done; echo 'not-installed xvfb'; exit 1"
  tool apt-get "echo apt-get \"\$@\" >>$machine/calls"
  tool id "echo $user"
}

# install GROUP...: what the machine was asked to do and what was said.
install() {
  : >"$machine/calls"
  PATH=$machine/bin root=$machine sh -c '. "$root/scripts/lib.sh"; installPackages "$@"' sh "$@" \
    >"$machine/said" 2>&1 || echo "exit $?" >>"$machine/said"
  cat "$machine/calls" "$machine/said"
}

# expect CLAIM WANTED GOT
expect() {
  [ "$2" = "$3" ] && return
  printf '%s\n--- expected:\n%s\n--- but was:\n%s\n' "$1" "$2" "$3"
  failures=$((failures + 1))
}

options='-q -y --no-install-recommends -o DPkg::Lock::Timeout=300'

user=0
debianWith g++ libgl-dev
expect "nothing missing asks apt nothing" "" "$(install build)"
expect "root installs without sudo" "apt-get -q update
apt-get $options install xvfb
Installing with apt-get: xvfb" "$(install build check)"

debianWith g++-12 libgl-dev-extra
expect "a longer name is another package" "apt-get -q update
apt-get $options install g++ libgl-dev
Installing with apt-get: g++ libgl-dev" "$(install build)"

user=1000
debianWith g++
expect "without root and sudo the packages are named" \
  "Please have these packages installed, there is no sudo here: libgl-dev
exit 1" "$(install build)"
tool sudo "printf 'sudo ' >>$machine/calls; exec \"\$@\""
expect "a user goes through sudo" "sudo apt-get -q update
sudo apt-get $options install libgl-dev
Installing with sudo apt-get: libgl-dev" "$(install build)"

tool apt-get 'exit 100'
expect "a failure names the packages" "sudo sudo Installing with sudo apt-get: libgl-dev
apt-get update failed, trying to install anyway.
apt-get could not install: libgl-dev
exit 1" "$(install build)"

rm "$machine/bin/apt-get" "$machine/bin/dpkg-query"
expect "another system is told what is wanted" \
  "This system has no apt-get. Please install, by their Debian names: g++ libgl-dev xvfb
exit 1" "$(install build check)"
for name in cmake ninja c++; do tool "$name" ''; done
expect "another system that has the tools goes on" "" "$(install build check)"

[ "$failures" -eq 0 ]
