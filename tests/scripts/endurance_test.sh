#!/bin/sh
# endurance_test.sh SOURCE BUILD: the endurance run works for some seconds, and reports each kind of
# failure, planted on purpose, with the seed.
set -eu
source=$1
endurance=$1/scripts/endurance
build=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$1"
  cat "$scratch/output"
  exit 1
}

# runs PARTS EXTENT...: without a failure, and says what it counted.
runs() {
  "$endurance" --build "$build" --seed 7 --only "$@" >"$scratch/output" 2>&1 ||
    fail "The endurance run fails."
}

# reports PART PLANTED WORDS: the failure is found, and told with the words and the seed.
reports() {
  part=$1 planted=$2 words=$3
  shift 3
  if "$endurance" --build "$build" --seed 7 --only "$part" --plant "$planted" "$@" \
    >"$scratch/output" 2>&1; then
    fail "$part does not notice: $planted"
  fi
  grep -q "$words" "$scratch/output" || fail "$part does not say: $words"
  grep -q 'seed 7' "$scratch/output" || fail "$part does not name its seed"
}

# The journals of failures that were not planted.
kept() {
  ls -l "$source/build/endurance" 2>/dev/null || true
}
before=$(kept)

runs chains,kills --chains 20 --kills 5
grep -q '^20 chains of' "$scratch/output" || fail "Chains are not counted."
grep -q '^5 kills' "$scratch/output" || fail "Kills are not counted."
grep -q '^5 full disks' "$scratch/output" || fail "Full disks are not counted."
grep -q '^An allocation was refused to' "$scratch/output" || fail "Refusals are not told."
reports chains crash 'failed with status' --chains 3
reports chains damage 'has .*corner\|int\[3F\]' --chains 3
reports chains hang 'hangs for' --chains 3
reports kills lost 'neither the old file nor the new one' --kills 2
[ "$(kept)" = "$before" ] || fail "A planted failure is kept among the real ones."

[ -x "$build/tests/endurance/endurance_window" ] || exit 0
runs window,opens --window 40 --opens 12
grep -q '^40 window actions with .* different ones' "$scratch/output" || fail "Window actions are not counted."
grep -q '^12 opens in one window' "$scratch/output" || fail "Opens are not counted."
reports window crash 'The last actions' --window 20
reports window dialog 'the dialog CMissingDlg never came' --window 5
reports opens growth 'memory grows' --opens 20
