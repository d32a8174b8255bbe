#!/bin/sh
# Holds the README to the truth: its C++ stands in the example that is compiled, and each command of its ```console
# blocks prints what is printed there: run.sh SOURCE_DIR BIN_DIR [update]
set -eu
source=$1
PATH=$2:$PATH
cd "$source"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The C++ block, line by line and indented as in main(), is a run of lines of the example.
awk '/^```cpp$/ {on = 1; next} /^```$/ {on = 0} on {print ($0 == "" ? "" : "    " $0)}' README.md >"$work/code"
awk -v wanted="$work/code" '
    BEGIN { while ((getline line < wanted) > 0) want[++n] = line }
    { have[NR] = $0 }
    END { for (i = 1; i + n - 1 <= NR; ++i) { for (k = 1; k <= n && have[i + k - 1] == want[k]; ++k); if (k > n && n) exit 0 } exit 1 }
' examples/encode_decode.cc || { echo "README.md: its C++ does not stand in examples/encode_decode.cc"; exit 1; }

# Each command again, with what it prints now.
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
