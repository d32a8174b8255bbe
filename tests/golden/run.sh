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
    "$here/far_off/corner_9.x" "$here/steps.x"
# Everything that is made for the teaching module, and the header of the corners, whichever folder it is in:
# src/locker.cc as src.locker.cc.txt, a text and no source of any build.
(cd "$made/out" && find . -type f \( -path '*/locker.*' -o -path './include/*/corners.h' \)) | while IFS= read -r file; do
    mv "$made/out/$file" "$made/expected/$(echo "${file#./}" | tr / .).txt"
done
for module in locker corners; do
    "$compiler" plain -I "$here" "$here/$module.x" > "$made/expected/$module.plain.x"
done

if [ "${2:-}" = update ]; then
    rm -rf "$here/expected"
    cp -r "$made/expected" "$here/expected"
    exit 0
fi
if ! diff -ru "$here/expected" "$made/expected"; then
    echo "the generated text differs; if that is meant: $0 $compiler update" >&2
    exit 1
fi
