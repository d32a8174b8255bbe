#!/bin/sh
# Checks that the pages are true: each ```cpp block of the README is part of main() in a program below examples/, each
# command of its ```console blocks prints the lines below it, and the files that any page names exist. "update" writes
# what the commands print now into the README.
#   run.sh SOURCE_DIR BIN_DIR [update]
set -eu
source=$1
PATH=$2:$PATH
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
    grep -oE '\]\([^):#]+' "$page" | sed "s|^](|$(dirname "$page")/|" >"$work/paths"
    grep -oE '`[^` ]+`' "$page" | tr -d '`' | grep -E "^($folders)" >>"$work/paths" || true
    while IFS= read -r path; do
        for file in $path; do [ -e "$file" ] || echo "$page: there is no $path"; done
    done <"$work/paths"
done >"$work/missing"
[ ! -s "$work/missing" ] || { cat "$work/missing"; exit 1; }

# Each command with what it prints now.
awk '/^```console$/ {on = 1} /^```$/ {on = 0} on && /^\$ / {print substr($0, 3)}' README.md >"$work/commands"
[ -s "$work/commands" ] || { echo "README.md: no commands"; exit 1; }
while IFS= read -r command; do
    printf '$ %s\n' "$command"
    sh -c "$command" </dev/null 2>&1 || true
done <"$work/commands" >"$work/printed"
awk -v printed="$work/printed" '
    /^```console$/ { print; on = 1; next }
    on && /^```$/ { on = 0 }
    on && /^\$ / { while ((pending != "" || (getline pending < printed) > 0)) {
                       if (started && pending ~ /^\$ /) break
                       print pending; pending = ""; started = 1 }
                   started = 0; next }
    !on { print }
' README.md >"$work/README.md"
if [ "${3:-}" = update ]; then
    cp "$work/README.md" README.md
else
    diff README.md "$work/README.md" || { echo "README.md: commands print something else now"; exit 1; }
fi
