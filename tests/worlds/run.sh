#!/usr/bin/env bash
# Compares what builds that differ in compiler, optimisation and stream class make of the same messages.
set -euo pipefail
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$source"

digest() {  # FOLDER CONFIGURE-ARGUMENT...: builds the digest there and prints its lines
    local build=$1
    shift
    { cmake "$@" -B "$build" && cmake --build "$build" --target digest -j "$(nproc)"; } >"$build.log" 2>&1 ||
        { tail -n 40 "$build.log" >&2; return 1; }
    rm -f "$build.log"
    "$build/bin/digest" >"$build/digest.txt"
}

digest build --preset default
digest build-clang --preset clang
digest build-asan --preset asan
digest build-plain --preset default -DCMAKE_BUILD_TYPE=Debug
digest build-calls --preset default -DCMAKE_BUILD_TYPE=Debug -DQUORVA_PLATFORM_DIR="$source/tests/worlds/contract"

status=0
for world in build-clang build-asan build-plain build-calls; do
    if differences=$(diff build/digest.txt "$world/digest.txt"); then
        echo "$world agrees about $(wc -l <"$world/digest.txt") types"
    else
        echo "$world differs:"
        printf '%s\n' "$differences" | grep '^>' | head -n 20
        status=1
    fi
done
exit "$status"
