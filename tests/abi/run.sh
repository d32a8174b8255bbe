#!/bin/bash
# Compares the binary interface of the hand-written code with the committed one: the functions that the libraries
# export, and the types that these take and return, with the places of their members. Routines and layouts of the
# interface's types follow from the interface files, which tests/baseline and the headers' own assertions hold.
#
#   run.sh GENERATED_HEADERS          status 1 if anything differs
#   run.sh GENERATED_HEADERS update   takes over what the code says now
#
# The libraries are compiled once more, with all debug information and without generated code.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
generated=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export work

compile() { # LIBRARY EXPORTS SOURCE...
    printf '%s\0' "${@:3}" | xargs -0 -P "$(nproc)" -I '{}' sh -c '"$@" -o "$(mktemp "$work/XXXXXX.o")" "$0"' '{}' \
        g++ -std=c++20 -c -g -O0 -fPIC -I. -Iinclude -Iruntime -Iplatform "-I$generated"
    g++ -shared -o "$work/$1" "$work"/*.o "-Wl,-soname,$1" ${2:+"-Wl,--version-script=$2"}
    rm "$work"/*.o
}
compile libquorvaplatform.so.0 '' platform/*.cpp
compile libQUORVAPIXDR.so.0 cmake/exports.map runtime/*.cc explain/*.cc
compile libquorvainspect.so.0 cmake/inspect_exports.map inspect/json_*.cc inspect/documentation.cc

status=0
for library in libquorvaplatform libQUORVAPIXDR libquorvainspect; do
    baseline=tests/abi/$library.abi
    if [ "${2:-}" = update ]; then
        # Names of parameters, lines and folders are not part of the interface.
        abidw --exported-interfaces-only --no-show-locs --no-comp-dir-path --no-corpus-path --no-elf-needed \
            --no-parameter-names --out-file "$work/$library.abi" "$work/$library.so.0"
        xz -9 --stdout "$work/$library.abi" >"$baseline.xz"
    else
        xz --decompress --stdout "$baseline.xz" >"$work/$library.abi"
        abidiff --exported-interfaces-only "$work/$library.abi" "$work/$library.so.0" || status=1
    fi
done
[ $status = 0 ] || echo "The binary interface differs. If that is meant, docs/install.md, section Versions, says what" \
    "follows from it; then: tests/abi/run.sh $generated update"
exit $status
