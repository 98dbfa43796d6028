#!/bin/sh
# floors_test.sh TOP: the check of the floors notices every kind of violation, names file and line,
# and lets pass what is allowed.
set -eu
check=$1/scripts/check-floors
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

# verdict FILE INCLUDE: what the check prints about a tree of this one file.
verdict() {
  rm -rf "$folder/src"
  mkdir -p "$folder/src/$(dirname "$1")"
  printf '#pragma once\n\n%s\n' "$2" >"$folder/src/$1"
  if "$check" "$folder/src" >"$folder/said"; then echo "passes"; else cat "$folder/said"; fi
}

# expect FILE INCLUDE WORDS
expect() {
  said=$(verdict "$1" "$2")
  [ "$said" = "$3" ] && return
  printf '%s with %s\n  expected: %s\n  but was:  %s\n' "$1" "$2" "$3" "$said"
  failures=$((failures + 1))
}

expect mesh/A.h '#include "numeric/Vec3.h"' passes
expect mesh/A.h '#include "mesh/B.h"' passes
expect smoothing/A.cpp '#include "curvature/B.h"' passes
expect doc/A.cpp '#include "remesh/B.h"' passes
expect view/A.cpp '#include <GL/glu.h>' passes
expect doc/dialogs/A.cpp '#include <QDialog>' passes
expect doc/dialogs/A.cpp '#include "view/Camera.h"' passes
expect view/windows/A.cpp '#include "A.moc"' passes
expect batch/A.cpp '#include "view/Camera.h"' passes
expect app/main.cpp '#include "view/windows/A.h"' passes
expect app/main.cpp '#include <QtWidgets/QApplication>' passes
expect mesh/A.h '#include <vector>' passes
expect mesh/A.h '// #include "view/Camera.h"' passes

expect numeric/A.h '#include "mesh/B.h"' \
  'numeric/A.h:3: numeric/ (floor 1) includes mesh/B.h (floor 2)'
expect mesh/A.cpp '#include "smoothing/B.h"' \
  'mesh/A.cpp:3: mesh/ (floor 2) includes smoothing/B.h (floor 3)'
expect remesh/A.cpp '  #  include "doc/B.h"' \
  'remesh/A.cpp:3: remesh/ (floor 3.2) includes doc/B.h (floor 4)'
expect doc/A.cpp '#include "view/B.h"' 'doc/A.cpp:3: doc/ (floor 4) includes view/B.h (floor 5)'
expect doc/A.cpp '#include "doc/dialogs/B.h"' \
  'doc/A.cpp:3: doc/ (floor 4) includes doc/dialogs/B.h (floor 6)'
expect view/A.cpp '#include "view/windows/B.h"' \
  'view/A.cpp:3: view/ (floor 5) includes view/windows/B.h (floor 6)'
expect batch/A.cpp '#include "app/B.h"' 'batch/A.cpp:3: batch/ (floor 6) includes app/B.h (floor 7)'
expect view/A.h '#include <QWidget>' \
  'view/A.h:3: view/ does without windows, but includes <QWidget>'
expect view/A.cpp '#include "doc/Shown.h"' passes
expect view/A.h '#include "doc/CGravlinDoc.h"' \
  'view/A.h:3: view/ draws what doc/Shown.h holds, but includes doc/CGravlinDoc.h'
expect view/windows/A.cpp '#include "doc/CommandTable.h"' \
  'view/windows/A.cpp:3: view/windows/ draws what doc/Shown.h holds, but includes doc/CommandTable.h'
expect app/A.cpp '#include "doc/CGravlinDoc.h"' passes
expect doc/A.h '#include <QtCore/QString>' \
  'doc/A.h:3: doc/ does without windows, but includes <QtCore/QString>'
expect batch/A.cpp '#include <QImage>' \
  'batch/A.cpp:3: batch/ does without windows, but includes <QImage>'
expect batch/A.cpp '#include <X11/Xlib.h>' \
  'batch/A.cpp:3: batch/ does without windows, but includes <X11/Xlib.h>'
expect doc/A.cpp '#include <GL/gl.h>' \
  'doc/A.cpp:3: doc/ does without graphics, but includes <GL/gl.h>'
expect mesh/A.cpp '#include <EGL/egl.h>' \
  'mesh/A.cpp:3: mesh/ does without graphics, but includes <EGL/egl.h>'
expect mesh/A.cpp '#include "B.h"' \
  'mesh/A.cpp:3: "B.h" is not the path of a file from the top of the source'
expect features/A.cpp '#include "curvature/B.h"' passes
expect features/A.cpp '#include "remesh/B.h"' \
  'features/A.cpp:3: features/ (floor 3.1) includes remesh/B.h (floor 3.2)'
expect curvature/A.cpp '#include "features/B.h"' \
  'curvature/A.cpp:3: curvature/ (floor 3) includes features/B.h (floor 3.1)'
expect attic/A.cpp '#include <vector>' 'attic/A.cpp:1: the folder attic has no floor'

# A circle of three through a header and two sources; a header and its own source are none.
rm -rf "$folder/src"
mkdir -p "$folder/src/mesh"
echo '#include "mesh/B.h"' >"$folder/src/mesh/A.h"
echo '#include "mesh/A.h"' >"$folder/src/mesh/A.cpp"
: >"$folder/src/mesh/B.h"
echo '#include "mesh/C.h"' >"$folder/src/mesh/B.cpp"
: >"$folder/src/mesh/C.h"
if ! "$check" "$folder/src"; then
  echo "files without a circle do not pass"
  failures=$((failures + 1))
fi
echo '#include "mesh/A.h"' >"$folder/src/mesh/C.cpp"
said=$("$check" "$folder/src") || true
if [ "$said" != 'files include one another in a circle: mesh/A -> mesh/B -> mesh/C -> mesh/A' ]; then
  printf 'of a circle the check says: %s\n' "$said"
  failures=$((failures + 1))
fi

[ "$failures" -eq 0 ]
