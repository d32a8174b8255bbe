#!/bin/sh
# Runs the compiler, given as the only argument, over each faulty file, and compares what it says with the .err beside
# it; then over a file in the manner of other compilers, about which it has nothing to say.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/bad" || exit 2
failures=0

expect() {  # STATUS WORDS FILE
    said=$("$compiler" check -I parts "$3" 2>&1)
    status=$?
    [ $status -eq "$1" ] && [ "$said" = "$(cat "$2")" ] && return
    echo "$3: status $status instead of $1; '<' was expected, '>' was said"
    printf '%s\n' "$said" | diff "$2" -
    failures=$((failures + 1))
}

for file in *.x; do expect 1 "${file%.x}.err" "$file"; done
expect 0 /dev/null ../foreign.x
echo "$failures files differ"
[ $failures -eq 0 ]
