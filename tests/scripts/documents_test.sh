#!/bin/sh
# documents_test.sh TOP: the documents speak of what is there. Every folder of the source has its
# heading in ARCHITECTURE.md and the other way round, every link leads to a file, and every page of
# the guide can be reached from its first page.
set -eu
cd "$1"
failures=$(mktemp)
trap 'rm -f "$failures"' EXIT

complain() {
  echo "$*" >>"$failures"
}

for folder in $(find src -name CMakeLists.txt -exec dirname {} \; | grep -v '^src$'); do
  grep -qxF "## $folder" ARCHITECTURE.md || complain "ARCHITECTURE.md says nothing about $folder"
done
sed -n 's/^## \([a-z/]*\)$/\1/p' ARCHITECTURE.md | while read -r folder; do
  [ -d "$folder" ] || complain "ARCHITECTURE.md speaks of $folder, which is not there"
done

for page in *.md docs/guide/*.md docs/howto/*.md examples/*.md; do
  # Links to the web and to headings of the same page are not looked at.
  grep -o '](\([^)#]*\)' "$page" | sed 's/^](//' | grep -v '^[a-z]*:' | grep . |
    while read -r target; do
      [ -e "$(dirname "$page")/$target" ] || complain "$page links to $target, which is not there"
    done || true
done

for page in docs/guide/*.md; do
  name=$(basename "$page")
  [ "$name" = index.md ] || grep -qF "]($name)" docs/guide/index.md ||
    complain "docs/guide/index.md does not link to $name"
done

cat "$failures"
[ ! -s "$failures" ]
