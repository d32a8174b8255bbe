#!/bin/sh
# Unpacks each case into an old and a new interface, lets the compiler, given as the only argument, compare the two, and
# compares its report and status with those that the case expects. The old interface must be the same when flattened.
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/compare" || exit 2
cases=$PWD
room=$(mktemp -d) || exit 2
trap 'rm -rf "$room"' EXIT
cd "$room" || exit 2
failures=0
nothing='wire: 0, source: 0, trace: 0, new: 0, provisional: 0'

fails() {  # SENTENCE
    echo "$(basename "$case"): $1"
    failures=$((failures + 1))
}

for case in "$cases"/*.case; do
    rm -rf ./*
    sed -n 's|^=== \(.*\)/[^/]*$|\1|p' "$case" | while read -r folder; do mkdir -p "$folder"; done
    awk '/^=== / { file = $2; next } file { print > file }' "$case"
    [ -d old ] && old=old || old=old.x
    [ -d new ] && new=new || new=new.x
    "$compiler" compare $old $new > said 2>&1
    echo "status $?" >> said
    diff report said > difference || fails "'<' was expected, '>' was said
$(cat difference)"

    root=. && [ -d old ] && root=old
    find $old -name '*.x' -exec "$compiler" flatten -I $root {} + > flat.x
    [ "$("$compiler" compare flat.x $old)" = "$nothing" ] || fails 'the flattened old interface is not the same'
    "$compiler" flatten flat.x | cmp -s - flat.x || fails 'flattening again changes the flattened old interface'
done
echo "$failures cases differ"
[ $failures -eq 0 ]
