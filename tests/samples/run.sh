#!/bin/sh
# Runs the inspector, the first argument, over each sample under the folder that is the second: what <name>.<Type>.json
# says has to fit in a message of 1024 bytes and come back unharmed, and the message to have a trace. What lies in a
# folder `refused` must not become a message.
[ $# -eq 2 ] || { echo "usage: run.sh QUORVAXDR SAMPLES_DIR" >&2; exit 2; }
case $1 in /*) inspector=$1 ;; *) inspector=$PWD/$1 ;; esac
cd "$2" || exit 2
scratch=$(mktemp -d) || exit 2
trap 'rm -rf "$scratch"' EXIT
find . -name '*.json' | sort > "$scratch/samples"
count=0
failures=0

fails() {  # WHAT: the sample fails, with the inspector's words
    echo "$sample: $1"
    cat "$scratch/said"
    failures=$((failures + 1))
}

while read -r sample; do
    count=$((count + 1))
    type=${sample%.json}
    type=${type##*.}
    "$inspector" encode --limit 1024 --to raw "$type" "$sample" > "$scratch/message" 2> "$scratch/said"
    status=$?
    case $sample in
    */refused/*) [ $status -eq 3 ] || fails "status $status instead of 3"; continue ;;
    esac
    [ $status -eq 0 ] || { fails "encode: status $status"; continue; }
    "$inspector" decode --from raw --to json "$type" "$scratch/message" > "$scratch/json" 2> "$scratch/said" ||
        { fails "decode: status $?"; continue; }
    "$inspector" encode --limit 1024 --to raw "$type" "$scratch/json" > "$scratch/again" 2> "$scratch/said" ||
        { fails "encode of what was decoded: status $?"; continue; }
    cmp "$scratch/message" "$scratch/again" > "$scratch/said" || { fails "another message"; continue; }
    "$inspector" decode --from raw "$type" "$scratch/message" > "$scratch/trace" 2> "$scratch/said" ||
        { fails "trace: status $?"; continue; }
    : > "$scratch/said"
    [ -s "$scratch/trace" ] || fails "an empty trace"
done < "$scratch/samples"
echo "$failures of $count samples fail"
[ $count -gt 0 ] && [ $failures -eq 0 ]
