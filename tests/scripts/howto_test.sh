#!/bin/sh
# howto_test.sh TOP: every page of docs/howto has a patch that applies, and the display mode takes no
# more than its page says: a formula and a row in one file, a row in another, and documents.
set -eu
cd "$1"
failures=0
complain() {
  echo "$*"
  failures=$((failures + 1))
}

for page in docs/howto/*.md; do
  patch=${page%.md}.patch
  grep -qF "]($(basename "$patch"))" "$page" || complain "$page does not speak of $patch"
  grep -q "^tests: [a-z_]*_tests " "$patch" || complain "$patch names no tests"
done
for patch in docs/howto/*.patch; do
  [ -f "${patch%.patch}.md" ] || complain "$patch has no page"
done
scripts/howto --check || complain "a patch does not apply any more: mend it with its page"

touched=$(sed -n 's/^+++ b\///p' docs/howto/display-mode.patch | grep -v '^docs/' | tr '\n' ' ')
[ "$touched" = "src/doc/CommandTable.cpp src/doc/ModeTable.cpp " ] ||
  complain "a display mode takes changes of $touched"
rows=$(grep -c '^+    {' docs/howto/display-mode.patch)
[ "$rows" = 2 ] || complain "a display mode takes $rows rows"

[ "$failures" -eq 0 ]
