#!/bin/sh
# Runs the compiler, given as the only argument, with each command line in command_line.txt: a line there is
# "STATUS | WORDS | TEXT", and what the compiler says contains TEXT. The folder is a fresh one with the module a and,
# below "my $#", b, which imports a.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cases=$(cd "$(dirname "$0")" && pwd)/command_line.txt
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 2
mkdir 'my $#' empty
printf '// A.\n\n// One.\nstruct A { LongNatural a; };\n' >a.x
printf '// B.\n\nimport a;\n\n// Two.\nstruct B { A a; };\n' >'my $#/b.x'
printf 'struct C { X c; };\n' >faulty.x
printf 'blocked' >file
awk 'BEGIN {  # the last type holds the first in 4096 places
    print "// Twigs.\n\n// T.\nstruct Twig0 { Natural a; };"
    for (i = 1; i <= 4; ++i) {
        printf "// T.\nstruct Twig%d {", i
        for (k = 0; k < 8; ++k) printf " Twig%d t%d;", i - 1, k
        print " };"
    }
}' >twigs.x
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

while IFS='|' read -r expected words text; do
    case $expected in '#'* | '') continue ;; esac
    said=$(eval "'$compiler' $words" 2>&1)
    status=$?
    text=${text# }
    case $status:$said in
    "${expected% }":*"$text"*) ;;
    *) fail "quorvaxdrc$words: status $status instead of ${expected% }, expected \"$text\" in: $said" ;;
    esac
done <"$cases"

# A file whose content stays is not touched; one that changes is, and nothing is left beside it.
find made -type f -exec touch -d @1 {} +
printf '// B.\n\nimport a;\n\n// Two.\nstruct B { A b; };\n' >'my $#/b.x'
"$compiler" generate --out made -I 'my $#' -I . a.x 'my $#/b.x' || fail "a second run"
[ "$(find made -type f -newermt @2 | sort | tr '\n' ' ')" = "$(printf 'made/%s ' descriptions/b.cc \
    include/quorvapixdr/types/b.h private/quorvapixdr/private/b.h)" ] ||
    fail "rewritten: $(find made -type f -newermt @2)"
[ "$(cat made/d)" = "$(printf 'made/\\#t:%s\n  a.x%s\n  my\\ $$\\#/b.x' ' \' ' \')" ] ||
    fail "the make rule: $(cat made/d)"
# Replaced, a pipe or a device such as /dev/null would be gone for all programs.
mkfifo pipe
timeout 20 cat pipe >written &
"$compiler" generate --out made --target t --depfile pipe a.x || fail "a make rule into a pipe"
wait
[ -p pipe ] && grep -q 'a\.x' written || fail "a pipe was replaced"
"$compiler" plain a.x >/dev/full 2>said && fail "a full disk goes unnoticed"
grep -q 'cannot write to standard output' said || fail "said: $(cat said)"
echo "$failures of the command line differ"
[ $failures -eq 0 ]
