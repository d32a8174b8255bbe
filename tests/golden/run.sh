#!/bin/sh
# Compares what the compiler makes of the teaching module with the texts in expected/, and shows the differences.
#
#   run.sh QUORVAXDRC          status 1 when anything differs
#   run.sh QUORVAXDRC update   takes over what the compiler makes now
set -eu

if [ $# -lt 1 ] || [ $# -gt 2 ] || [ "${2:-update}" != update ]; then
    echo "usage: $0 QUORVAXDRC [update]" >&2
    exit 2
fi
compiler=$1
here=$(cd "$(dirname "$0")" && pwd)
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT

"$compiler" generate --out "$made/out" -I "$here" "$here/locker.x"
mkdir "$made/expected"
mv "$made/out/include/quorvapixdr/locker.h" "$made/expected/locker.h"
mv "$made/out/src/locker.cc" "$made/expected/locker.cc"
mv "$made/out/schema/locker.cc" "$made/expected/locker.schema.cc"
"$compiler" plain -I "$here" "$here/locker.x" > "$made/expected/locker.plain.x"

if [ "${2:-}" = update ]; then
    mkdir -p "$here/expected"
    cp "$made"/expected/* "$here/expected/"
    exit 0
fi
if ! diff -ru "$here/expected" "$made/expected"; then
    echo "the generated text differs; if that is meant: $0 $compiler update" >&2
    exit 1
fi
