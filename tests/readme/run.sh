#!/bin/sh
# Checks that the pages are true: each ```cpp block of the README is part of main() in a program below examples/, each
# command of its ```console blocks and those of docs/inspector.md prints the lines below it, and the files that any page
# names exist. "update" writes what the commands print now into the pages.
#   run.sh SOURCE_DIR BIN_DIR [update]
set -eu
source=$(cd "$1" && pwd)
bin=$(cd "$2" && pwd)
cd "$source"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Each C++ block in a file of its own, indented as in main(), is a run of lines of one example.
awk -v folder="$work" '
    /^```cpp$/ { file = folder "/block" ++blocks; next }
    /^```$/ { file = "" }
    file { print ($0 == "" ? "" : "    " $0) > file }
' README.md
[ -s "$work/block1" ] || { echo "README.md: no C++"; exit 1; }
for block in "$work"/block*; do
    awk -v wanted="$block" '
        BEGIN { while ((getline line < wanted) > 0) block = block line "\n" }
        FNR == 1 { text = "\n" }
        { text = text $0 "\n" }
        index(text, "\n" block) { found = 1; exit }
        END { exit !found }
    ' examples/*.cc || { echo "README.md: no program below examples/ has these lines:"; cat "$block"; exit 1; }
done

# Every relative link, and every `path` that begins with a folder of this tree.
folders=$(ls -d */ | grep -v '^build' | tr -d '\n' | sed 's|/|/\||g; s/|$//')
for page in *.md docs/*.md; do
    grep -oE '[^[]\]\([^):#]+' "$page" | sed "s|^.](|$(dirname "$page")/|" >"$work/paths"
    grep -oE '`[^` ]+`' "$page" | tr -d '`' | grep -E "^($folders)" >>"$work/paths" || true
    while IFS= read -r path; do
        for file in $path; do [ -e "$file" ] || echo "$page: there is no $path"; done
    done <"$work/paths"
done >"$work/missing"
[ ! -s "$work/missing" ] || { cat "$work/missing"; exit 1; }

"$source/tests/readme/transcripts.sh" . "$bin" "${3:-check}" README.md docs/inspector.md docs/rpc.md
