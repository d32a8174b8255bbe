#!/bin/sh
# Unpacks each case into an old and a new interface, lets the compiler, given as the only argument, compare the two, and
# compares its report and status with those that the case expects.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/compare" || exit 2
cases=$PWD
room=$(mktemp -d) || exit 2
trap 'rm -rf "$room"' EXIT
cd "$room" || exit 2
failures=0

for case in "$cases"/*.case; do
    rm -rf ./*
    sed -n 's|^=== \(.*\)/[^/]*$|\1|p' "$case" | while read -r folder; do mkdir -p "$folder"; done
    awk '/^=== / { file = $2; next } file { print > file }' "$case"
    [ -d old ] && old=old || old=old.x
    [ -d new ] && new=new || new=new.x
    "$compiler" compare $old $new > said 2>&1
    echo "status $?" >> said
    cmp -s said report && continue
    echo "$(basename "$case"): '<' was expected, '>' was said"
    diff report said
    failures=$((failures + 1))
done
echo "$failures cases differ"
[ $failures -eq 0 ]
