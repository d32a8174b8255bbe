#!/bin/sh
# Compares what the compiler makes of the teaching module, and of the corners beside it, with the texts in expected/, and
# shows the differences.
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

mkdir "$made/expected"
"$compiler" generate --out "$made/out" -I "$here" "$here/locker.x" "$here/corners.x" "$here/colours.x" \
    "$here/far_off/corner_9.x" "$here/steps.x" \
    "$here/stair.x"
mv "$made/out/schema/modules.cc" "$made/expected/modules.cc"
for module in locker corners steps stair; do
    mv "$made/out/include/quorvapixdr/$module.h" "$made/expected/$module.h"
    mv "$made/out/include/quorvapixdr/$module.bodies.h" "$made/expected/$module.bodies.h"
    mv "$made/out/src/$module.cc" "$made/expected/$module.cc"
    mv "$made/out/schema/$module.cc" "$made/expected/$module.schema.cc"
    "$compiler" plain -I "$here" "$here/$module.x" > "$made/expected/$module.plain.x"
done

if [ "${2:-}" = update ]; then
    mkdir -p "$here/expected"
    cp "$made"/expected/* "$here/expected/"
    exit 0
fi
if ! diff -ru "$here/expected" "$made/expected"; then
    echo "the generated text differs; if that is meant: $0 $compiler update" >&2
    exit 1
fi
