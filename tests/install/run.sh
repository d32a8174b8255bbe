#!/bin/sh
# Installs the build tree into a temporary folder, builds the example module against that folder alone, and compares the
# output of the example: run.sh BUILD_DIR SOURCE_DIR COMPILER [SANITIZERS]
set -eu
build=$1 source=$2 compiler=$3 sanitize=${4:+-fsanitize=$4}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

quietly() { "$@" >"$work/log" 2>&1 || { cat "$work/log"; echo "failed: $*"; exit 1; }; }
quietly cmake --install "$build" --prefix "$work/prefix"
quietly cmake -S "$source/examples/own_module" -B "$work/own" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Werror $sanitize"
quietly cmake --build "$work/own"

cat >"$work/expected" <<'TXT'
68 bytes: door 4 "left, top" is SDSclosed, job 1207
cannot encode StationReport at /doors, byte 32 of 1024: count 7 is beyond the maximum 6
TXT
"$work/own/own_module" >"$work/printed"
diff "$work/expected" "$work/printed"
