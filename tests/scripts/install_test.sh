#!/bin/sh
# install_test.sh BUILD_FOLDER FILE...: an installation into an empty folder brings these files below
# /usr, each with something in it, and the desktop entry's program and icon are among them.
set -eu
build=$1
shift
staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
DESTDIR=$staging cmake --install "$build" --prefix /usr >/dev/null
failed=0
for file in "$@"; do
  [ -s "$staging/usr/$file" ] && continue
  echo "not installed: /usr/$file"
  failed=1
done
outside=$(find "$staging" -type f ! -path "$staging/usr/*")
[ -z "$outside" ] || { echo "installed outside of /usr: $outside"; failed=1; }
exit $failed
