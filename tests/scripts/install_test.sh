#!/bin/sh
# install_test.sh BUILD_FOLDER FILE...: an installation into an empty folder brings these files below
# the prefix, each with something in it. The documents name this prefix, their links lead to what was
# installed with them, and none of their words are lost.
set -eu
build=$1
shift
staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
failed=0

complain() {
  echo "$*"
  failed=1
}

# links PAGE: where the links of a page lead to, but not to the web or to headings of the page.
links() {
  grep -o '](\([^)#]*\)' "$1" | sed 's/^](//' | grep -v '^[a-z]*:' | grep . || :
}

for prefix in /usr /opt/a-folder; do
  DESTDIR=$staging cmake --install "$build" --prefix "$prefix" >/dev/null
  for file in "$@"; do
    [ -s "$staging$prefix/$file" ] || complain "not installed: $prefix/$file"
  done
  documents=$prefix/share/doc/gravlin
  for page in share/doc/gravlin/guide/08-batch.md share/man/man1/gravlin.1; do
    grep -qF -- "$documents/examples" "$staging$prefix/$page" ||
      complain "$page does not say that the examples are in $documents/examples"
  done
  # shellcheck disable=SC2044  # the names hold no blanks
  for page in $(find "$staging$prefix" -name '*.md' -o -name '*.1'); do
    ! grep -F '<prefix>' "$page" || complain "$page does not name the prefix"
    for target in $(links "$page"); do
      [ -e "$(dirname "$page")/$target" ] || complain "$page links to $target, which is not there"
    done
  done
  grep -qF '](guide/index.md)' "$staging$documents/README.md" || complain "README.md lost a link"
  grep -qF 'ARCHITECTURE.md shows' "$staging$documents/README.md" || complain "README.md lost words"
done
outside=$(find "$staging" -type f ! -path "$staging/usr/*" ! -path "$staging/opt/a-folder/*")
[ -z "$outside" ] || complain "installed outside of the prefix: $outside"
exit $failed
