#!/bin/sh
# Runs the compiler's lint, given as the only argument, over each file with a bad habit, and compares what it says with
# the .err beside it; then over a file in which only good habits come near to bad ones.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/lint" || exit 2
failures=0

expect() {  # STATUS WORDS FILE
    said=$("$compiler" lint -I parts "$3" 2>&1)
    status=$?
    [ $status -eq "$1" ] && [ "$said" = "$(cat "$2")" ] && return
    echo "$3: status $status instead of $1; '<' was expected, '>' was said"
    printf '%s\n' "$said" | diff "$2" -
    failures=$((failures + 1))
}

for words in *.err; do expect 1 "$words" "${words%.err}.x"; done
expect 0 /dev/null clean.x
echo "$failures files differ"
[ $failures -eq 0 ]
