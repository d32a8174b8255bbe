#!/bin/sh
# Unpacks each case in compare/ into an old and a new interface, lets the compiler compare the two, and compares its
# report and status with those in the case. The old interface is the same when flattened, and the fingerprint of each
# type changes that the report calls broken.
#
#   run_compare.sh QUORVAXDRC          status 1 when anything differs
#   run_compare.sh QUORVAXDRC update   takes over what the compiler reports now
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

fingerprints() {  # ROOT FILE|FOLDER
    find "$2" -name '*.x' -exec "$compiler" fingerprint -I "$1" {} +
}

for case in "$cases"/*.case; do
    rm -rf ./*
    sed -n 's|^=== \(.*\)/[^/]*$|\1|p' "$case" | while read -r folder; do mkdir -p "$folder"; done
    awk '/^=== / { file = $2; next } file { print > file }' "$case"
    [ -d old ] && old=old root=old || old=old.x root=.
    [ -d new ] && new=new new_root=new || new=new.x new_root=.
    "$compiler" compare $old $new > said 2>&1
    echo "status $?" >> said
    if [ "$2" = update ]; then
        { sed '/^=== report/q' "$case"; cat said; } > updated && cat updated > "$case"
    fi
    diff report said > difference 2>&1 || [ "$2" = update ] || fails "'<' was expected, '>' was said
$(cat difference)"

    find $old -name '*.x' -exec "$compiler" flatten -I $root {} + > flat.x
    [ "$("$compiler" compare flat.x $old)" = "$nothing" ] || fails 'the flattened old interface is not the same'
    "$compiler" flatten flat.x | cmp -s - flat.x || fails 'flattening again changes the flattened old interface'

    fingerprints $root $old > old.lines
    fingerprints . flat.x | cmp -s - old.lines || fails 'flattening changes the fingerprints'
    grep -q '^status 2' said && continue
    fingerprints $new_root $new > new.lines && [ -s old.lines ] && [ -s new.lines ] || fails 'there are no fingerprints'
    # Fingerprints say nothing of constants and of the modules that types are in.
    awk '/^Breaks/ { broken = 1 } /^(New|Provisional)/ { broken = 0 }
        broken && !/ (const|module) / && !/moved from module/' said | cut -d"'" -f2 | grep . | while read -r type; do
        grep "^$type " old.lines | grep -qxFf - new.lines && echo "$type"
    done > unnoticed
    [ -s unnoticed ] && fails "fingerprints stay the same: $(cat unnoticed)"
    if grep -q "^${nothing%, prov*}" said; then cmp -s old.lines new.lines || fails 'fingerprints change'; fi
done
echo "$failures cases differ"
[ $failures -eq 0 ]
