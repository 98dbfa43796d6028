#!/bin/sh
# tidy_test.sh TOP: which files scripts/tidy gives to clang-tidy, seen through a clang-tidy that only
# writes down how it was called.
set -eu
top=$1
project=$(mktemp -d)
trap 'rm -rf "$project"' EXIT
mkdir -p "$project/bin" "$project/scripts" "$project/build" "$project/src/mesh" "$project/tests"
cp "$top/scripts/tidy" "$top/scripts/lib.sh" "$project/scripts"
cat >"$project/bin/clang-tidy" <<'END'
#!/bin/sh
for word in "$@"; do
  case $word in
    *.cpp) echo "${word##*/}" >>"$CALLS/files" ;;
    *) echo "$word" >>"$CALLS/options" ;;
  esac
done
! grep -q finding "$CALLS/files"
END
chmod +x "$project/bin/clang-tidy"
export CALLS="$project" HOME="$project" GIT_CONFIG_NOSYSTEM=1
PATH=$project/bin:$PATH
failures=0

for name in src/mesh/Stem src/mesh/Uses src/mesh/Other tests/StemTest build/moc; do
  echo '// nothing yet' >"$project/$name.cpp"
  printf '  "file": "%s",\n' "$project/$name.cpp"
done >"$project/build/compile_commands.json"
echo '#pragma once' | tee "$project/src/mesh/Stem.h" >"$project/src/mesh/HeaderOnly.h"
echo '#include "mesh/HeaderOnly.h"' >"$project/src/mesh/Uses.cpp"

git() {
  command git -C "$project" -c user.name=t -c user.email=t@t "$@" >/dev/null
}

commit() {
  git add src tests
  git commit -q -m "$1"
}

# looksAt [OPTION]...: the files that were given to clang-tidy, and how it ended if not well.
looksAt() {
  rm -f "$project/files" "$project/options"
  touch "$project/files"
  "$project/scripts/tidy" "$project/build" "$@" >"$project/said" 2>&1 || echo failed
  sort "$project/files"
}

# expect CLAIM WANTED GOT
expect() {
  got=$(echo "$3" | tr '\n' ' ')
  [ "$2" = "${got% }" ] && return
  printf '%s\n  expected: %s\n  but was:  %s\n' "$1" "$2" "${got% }"
  failures=$((failures + 1))
}

expect "without a history nothing is known to have changed" "" "$(looksAt --changed)"
git init -q
commit first
expect "everything is the sources of the project" "Other.cpp Stem.cpp StemTest.cpp Uses.cpp" "$(looksAt)"
expect "warnings that clang does not know are none" 1 \
  "$(grep -cx -e '--extra-arg=-Wno-unknown-warning-option' "$project/options")"
looksAt --fix >"$project/ignored"
expect "other options are passed on" 1 "$(grep -cx -e '--fix' "$project/options")"

git tag v1
expect "nothing has changed since the tag" "" "$(looksAt --changed)"
echo '// more' >>"$project/src/mesh/Other.cpp"
commit source
expect "a source that has changed" "Other.cpp" "$(looksAt --changed)"
echo '// more' >>"$project/src/mesh/Stem.h"
commit header
expect "a header stands for the source of its name" "Other.cpp Stem.cpp" "$(looksAt --changed)"
git tag v2
echo '// more' >>"$project/src/mesh/HeaderOnly.h"
commit 'header without a source'
expect "or for a source that includes it" "Uses.cpp" "$(looksAt --changed)"
git rm -q src/mesh/Uses.cpp
git commit -q -m gone
expect "a source that is gone is not looked at" "" "$(looksAt --changed)"

git tag -d v1
git tag -d v2
for number in $(seq 49); do git commit -q --allow-empty -m "$number"; done
expect "without a tag older changes than the last commits do not count" "" "$(looksAt --changed)"
echo '// more' >>"$project/tests/StemTest.cpp"
commit test
expect "those in the last commits do" "StemTest.cpp" "$(looksAt --changed)"

echo '  "file": "'"$project"'/src/mesh/finding.cpp",' >>"$project/build/compile_commands.json"
expect "a finding is a failure" "failed Other.cpp Stem.cpp StemTest.cpp Uses.cpp finding.cpp" \
  "$(LC_ALL=C looksAt)"

[ "$failures" -eq 0 ]
