#!/bin/sh
# Each example prints what the comment at its end says, after "// Prints:". The README has the output of the others.
#   run.sh SOURCE_DIR BIN_DIR
set -eu
for example in $(grep -l '^// Prints:$' "$1"/examples/*.cc "$1"/examples/*.c); do
    expected=$(sed '1,/^\/\/ Prints:$/d; s|^// ||' "$example")
    name=$(basename "$example")
    printed=$("$2/${name%.*}")
    [ "$printed" = "$expected" ] || { printf '%s prints:\n%s\n' "$example" "$printed"; exit 1; }
done
