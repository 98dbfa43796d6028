#!/bin/sh
# drawing_test.sh TOP: ARCHITECTURE.md draws the floors as the includes have them.
set -eu
drawn=$(awk '/^<!-- check-floors --draw -->$/ { inside = 1; next } /^<!-- end -->$/ { inside = 0 }
  inside && !/^```/' "$1/ARCHITECTURE.md")
present=$("$1/scripts/check-floors" --draw "$1/src")
[ "$drawn" = "$present" ] && exit 0
echo "ARCHITECTURE.md does not draw the floors as they are, which is:"
printf '%s\n' "$present"
exit 1
