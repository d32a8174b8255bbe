#!/bin/sh
# Compares the compiler's output with expected/ and shows the differences: all that is generated for locker.x, which
# has every form of the language once, and for corners.x the types in the header and in the plain file.
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
"$compiler" generate --out "$made/out" -I "$here" "$here/locker.x" "$here/corners.x"
# src/locker.cc is kept as src.locker.cc.txt: a text, not a source of a build.
(cd "$made/out" && find . -type f -name 'locker.*') | while IFS= read -r file; do
    mv "$made/out/$file" "$made/expected/$(echo "${file#./}" | tr / .).txt"
done
sed '/^#pragma GCC/,$d' "$made/out/include/quorvapixdr/types/corners.h" > "$made/expected/corners.types.h.txt"
"$compiler" plain -I "$here" "$here/locker.x" > "$made/expected/locker.plain.x"
"$compiler" plain -I "$here" "$here/corners.x" | sed '1,/^ \* Module corners/d' > "$made/expected/corners.plain.x"

if [ "${2:-}" = update ]; then
    rm -rf "$here/expected"
    cp -r "$made/expected" "$here/expected"
    exit 0
fi
if ! diff -ru "$here/expected" "$made/expected"; then
    echo "the generated text differs; if that is meant: $0 $compiler update" >&2
    exit 1
fi
