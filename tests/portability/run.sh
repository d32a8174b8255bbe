#!/usr/bin/env bash
# Builds that differ in compiler, optimisation, machine and stream class must code the same messages alike.
set -euo pipefail
source=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
cd "$source"

digest() {  # FOLDER RUNNER CONFIGURE-ARGUMENT...: builds the digest there and prints its lines into FOLDER/digest.txt
    local build=$1 runner=$2
    shift 2
    { cmake "$@" -B "$build" && cmake --build "$build" --target digest -j "$(nproc)"; } >"$build.log" 2>&1 ||
        { tail -n 40 "$build.log" >&2; return 1; }
    rm -f "$build.log"
    $runner "$build/bin/digest" >"$build/digest.txt"
}

digest build "" --preset default
digest build-clang "" --preset clang
digest build-asan "" --preset asan
digest build-plain "" --preset default -DCMAKE_BUILD_TYPE=Debug
digest build-calls "" --preset default -DCMAKE_BUILD_TYPE=Debug \
    -DQUORVA_PLATFORM_DIR="$source/tests/portability/contract"
digest build-i686 "" --preset i686 -DQUORVA_COMPILER="$source/build/bin/quorvaxdrc"
digest build-s390x "qemu-s390x -L /usr/s390x-linux-gnu" --preset s390x -DQUORVA_COMPILER="$source/build/bin/quorvaxdrc"

status=0
for build in clang asan plain calls i686 s390x; do
    if differences=$(diff build/digest.txt "build-$build/digest.txt"); then
        echo "$build agrees about $(wc -l <"build-$build/digest.txt") types"
    else
        echo "$build differs:"
        printf '%s\n' "$differences" | grep '^>' | head -n 20
        status=1
    fi
done
exit "$status"
