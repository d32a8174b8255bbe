#!/bin/sh
# Runs the inspector over each sample <name>.<Type>.json: run.sh QUORVAXDR SAMPLES_DIR. A sample must fit in a message
# of 1024 bytes, come back unchanged, and have a trace. The inspector must refuse samples in folders named `refused`.
[ $# -eq 2 ] || { echo "usage: run.sh QUORVAXDR SAMPLES_DIR" >&2; exit 2; }
case $1 in /*) inspector=$1 ;; *) inspector=$PWD/$1 ;; esac
cd "$2" || exit 2
scratch=$(mktemp -d) || exit 2
trap 'rm -rf "$scratch"' EXIT
find . -name '*.json' | sort > "$scratch/samples"
count=0
failures=0

fails() {  # WHAT: reports the sample, with the output of the inspector
    echo "$sample: $1"
    cat "$scratch/output"
    failures=$((failures + 1))
}

while read -r sample; do
    count=$((count + 1))
    type=${sample%.json}
    type=${type##*.}
    "$inspector" encode --limit 1024 --to raw "$type" "$sample" > "$scratch/message" 2> "$scratch/output"
    status=$?
    case $sample in
    */refused/*) [ $status -eq 3 ] || fails "status $status instead of 3"; continue ;;
    esac
    [ $status -eq 0 ] || { fails "encode: status $status"; continue; }
    "$inspector" decode --from raw --to json "$type" "$scratch/message" > "$scratch/json" 2> "$scratch/output" ||
        { fails "decode: status $?"; continue; }
    "$inspector" encode --limit 1024 --to raw "$type" "$scratch/json" > "$scratch/again" 2> "$scratch/output" ||
        { fails "encode of what was decoded: status $?"; continue; }
    cmp "$scratch/message" "$scratch/again" > "$scratch/output" || { fails "another message"; continue; }
    "$inspector" decode --from raw "$type" "$scratch/message" > "$scratch/trace" 2> "$scratch/output" ||
        { fails "trace: status $?"; continue; }
    : > "$scratch/output"
    [ -s "$scratch/trace" ] || fails "an empty trace"
done < "$scratch/samples"
echo "$failures of $count samples fail"
[ $count -gt 0 ] && [ $failures -eq 0 ]
