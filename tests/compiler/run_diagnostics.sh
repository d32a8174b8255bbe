#!/bin/bash
# Gives the compiler each snippet in diagnostics/ and compares what it says with the lines under the snippet, then
# inputs that are too long to be kept. Every message in compiler/front has a case.
#
#   run_diagnostics.sh QUORVAXDRC          status 1 when anything differs
#   run_diagnostics.sh QUORVAXDRC update   writes what the compiler says now under the snippets
#
# The snippets in lint.cases are for `quorvaxdrc lint`, those in c.cases for `quorvaxdrc generate --c`, all others for
# `quorvaxdrc check`. A file of cases consists of
#
#   ---- NAME              begins a case, with the file NAME.x
#   ---- NAME escapes      the same, with the escapes of printf's %b: \0NNN for a byte, \c where the file ends
#   -- PATH                begins another file of the case; 'parts' is searched for imports
#   >> 3:5: error: ...     what the compiler says, without the lines of the file that it repeats and without NAME.x:
#   >> ...                 with a line that has no place, all that the compiler says counts
#   >> nothing             the input is good
set -u
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")" || exit 2
here=$PWD
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export LC_ALL=C
failures=0

fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}

# Unpacks the cases of a file below $folder, each into a folder of its own; prints the names.
unpack() {  # FILE
    awk -v folder="$folder" '
        /^---- / { name = folder "/" $2; print $2; if (system("mkdir " name " " name "/parts")) exit 2
                   file = name "/" $2 ".x"; ended = 0; printf "" > file
                   if ($3 == "escapes") print > (name "/escapes")
                   next }
        /^-- / { close(file); file = name "/" $2; next }
        /^>>/ { print substr($0, 4) > (name "/expected"); ended = 1; next }
        name && NF == 0 && (ended || !name) { next }
        name { print > file }' "$1"
}

places='^([^ :]+:)?[0-9]+:[0-9]+: (error|warning|note): '
for file in diagnostics/*.cases; do
    case $file in
    */lint.cases) verb=lint ;;
    */c.cases) verb='generate --c --out made' ;;
    *) verb=check ;;
    esac
    names=$(unpack "$file") || fail "$file: two cases have one name"
    for name in $names; do
        cd "$folder/$name" || exit 2
        if [ -e escapes ]; then
            printf '%b' "$(cat "$name.x")" >plain && mv plain "$name.x"
        fi
        "$compiler" $verb -I parts "$name.x" >all 2>&1
        status=$?
        cp all text
        "$compiler" $verb --diagnostics=json -I parts "$name.x" 2>json
        [ $? -eq $status ] || fail "$file: $name: another status with JSON"
        sed -i "s/^$name\.x://" all
        touch expected
        [ -s all ] || echo nothing >all
        if grep -qvE "$places|^(nothing)?$" expected; then
            cp all said
        else
            grep -E "$places|^nothing$" all >said
        fi
        [ "$(cat said)" = nothing ] && good=0 || good=1
        grep -q . expected || [ $# -eq 2 ] || fail "$file: $name: no line says what is expected"
        [ $status -eq $good ] || fail "$file: $name: status $status"
        cmp -s expected said || [ $# -eq 2 ] || fail "$file: $name: '<' was expected, '>' was said
$(diff expected said)"
        cd "$here" || exit 2
    done
    [ $# -eq 2 ] || continue
    awk -v folder="$folder" '
        function said(line) { while (name && (getline line < (folder "/" name "/said")) > 0) print ">> " line }
        /^---- / { if (name) said(); name = $2; ended = 0 }
        /^>>/ { ended = 1; next }
        NF == 0 && (ended || !name) { next }
        /^---- / && printed { print "" }
        { print; printed = 1 }
        END { said() }' "$file" >"$folder/new" && cp "$folder/new" "$file"
done
[ $# -eq 2 ] && exit

# In JSON the diagnostics are the same, for a reader that is not ours.
python3 - "$folder" <<'EOT' || fail 'diagnostics differ in JSON'
import json, pathlib, re, sys

def lines(entry, severity):
    yield f"{entry['file']}:{entry['line']}:{entry['column']}: {severity}: {entry['message']}"
    if entry["endColumn"] <= entry["column"]: yield f"the end column is {entry['endColumn']}"
    for note in entry.get("notes", []): yield from lines(note, "note")

different = 0
for text in pathlib.Path(sys.argv[1]).glob("*/text"):
    entries = map(json.loads, text.with_name("json").read_text(encoding="utf-8").splitlines())
    found = [line for entry in entries for line in lines(entry, entry["severity"])]
    wanted = [line for line in text.read_text(encoding="utf-8", errors="replace").split("\n")
              if re.match(r"[^ :]+:\d+:\d+: (error|warning|note): ", line)]
    if found != wanted:
        different += 1
        print(text.parent.name, *found, "instead of", *wanted, sep="\n")
sys.exit(different > 0)
EOT
mkdir "$folder/long"

# An input that is too long to be kept, printed by an awk program: the compiler finds so many errors in it within 20
# seconds and 1 MiB of stack, and says WORDS.
expect_of() {  # ERRORS WORDS PROGRAM
    awk "BEGIN { $3 }" >"$folder/long.x"
    said=$(ulimit -s 1024 && timeout 20 "$compiler" check -I "$folder/long" "$folder/long.x" 2>&1)
    status=$?
    printf '%s\n' "$said" >>"$folder/long/all"
    errors=$(printf '%s\n' "$said" | grep -c ': error: ')
    case $status:$errors:$said in
    "$(($1 > 0)):$1:"*"$2"*) return ;;
    esac
    fail "status $status and $errors errors instead of $1 with '$2' for $3: $(printf '%s' "$said" | head -1)"
}

# Types in types: 256 can nest by value, any number through lists and optional values.
start='print "typedef LongNatural T0;"; n = 100000;'
types='for (i = 1; i <= n; ++i) printf'
expect_of 1 "struct 'T256' nests 257 types" "$start $types \"struct T%d { T%d a[1]; };\\n\", i, i - 1"
expect_of 1 "type 'T256' nests 257 types" "$start $types \"typedef T%d T%d;\\n\", i - 1, i"
expect_of 1 "type 'T256' nests 257 types" "$start $types \"typedef T%d *T%d;\\n\", i - 1, i"
expect_of 1 "'T1' contains itself" "n = 100000; $types \"struct T%d { T%d a; };\\n\", i, i % n + 1"
expect_of 0 '' "$start $types \"struct T%d { T%d *a; };\\n\", i, i - 1"
expect_of 0 '' "$start $types \"typedef T%d T%d<>;\\n\", i - 1, i"
expect_of 0 '' "$start n = 254; $types \"typedef T%d T%d;\\n\", i - 1, i;
    print \"union U switch (T254 a) { case 1: void; };\""
expect_of 1 'nests 257 types' "$start n = 300; $types \"typedef T%d T%d;\\n\", i - 1, i;
    print \"union U switch (T300 a) { case 1: void; };\""
expect_of 1 "union 'T15' has 98301 members" "$start n = 255;
    $types \"union T%d switch (bool a) { case 0: T%d b; case 1: T%d c; };\\n\", i, i - 1, i - 1"

# Many enumerators and cases, and the end of the list of errors.
enumerators='for (i = 0; i < 100000; ++i) printf'
cases='print "union U switch (E a) {"; for (i = 0; i < 100000; ++i) printf'
expect_of 0 '' "print \"enum E { a = 100000\"; $enumerators \", E%d = %d\", i, i; print \"};\";
    $cases \"case %d: void;\\n\", i; print \"};\""
expect_of 100 'only 100 are shown' "print \"enum E { a = 0 }; enum F { b = 0\";
    $enumerators \", a = %d\", i; print \"};\";
    $cases \"case a: void;\\n\"; print \"};\""
expect_of 8 'apply to more than 65536 values' "print \"enum E { a = 0\";
    for (i = 1; i < 1001; ++i) printf \", E%d = %d\", i, i; print \"};\";
    for (i = 0; i < 73; ++i) printf \"union U%d switch (E e) { case a: void; default: int i; };\\n\", i"
expect_of 100 'only 100 are shown' 'for (i = 0; i < 101; ++i) print "@"'
expect_of 100 'only 100 are shown' 'for (i = 0; i < 101; ++i) printf "struct T%d { Panel panel; };\n", i'

# Every string literal of three words or more in compiler/front is part of a message, except lists of reserved names.
cat "$folder"/*/all command_line.txt >"$folder/all_said"
find ../../compiler/front -name '*.cc' ! -name system_names.cc -exec grep -hvE '^ *(//|#)' {} + |
    grep -oE '"([^"\\]|\\.)+"' | sed 's/^"//; s/"$//; s/\\n$//' | grep -E '[A-Za-z]+\W+[A-Za-z]+\W+[A-Za-z]' |
    grep -vE '^(and and_eq|PPC i386) |\\x' | sort -u >"$folder/pieces"
[ "$(wc -l <"$folder/pieces")" -gt 100 ] || fail "the messages in compiler/front are not found"
while IFS= read -r piece; do
    grep -qF -e "$piece" "$folder/all_said" || fail "a message has no case: $piece"
done <"$folder/pieces"
echo "$failures cases differ"
[ $failures -eq 0 ]
