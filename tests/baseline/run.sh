#!/bin/sh
# Compares the settled types in types/ with their fingerprints in settled.txt. A line there is a name and the hashes of
# wire, source and trace.
#
#   run.sh QUORVAXDRC          status 1 when a settled type is gone or has changed
#   run.sh QUORVAXDRC update   takes over the interface files as they are now
set -u

if [ $# -lt 1 ] || [ $# -gt 2 ] || [ "${2:-update}" != update ]; then
    echo "usage: $0 QUORVAXDRC [update]" >&2
    exit 2
fi
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/../.." || exit 2
settled=tests/baseline/settled.txt
now=$(mktemp) || exit 2
trap 'rm -f "$now"' EXIT
find types -name '*.x' -exec "$compiler" fingerprint -I types {} + > "$now" || exit 2

if [ "${2:-}" = update ]; then
    cat "$now" > "$settled"
    exit
fi
[ -s "$settled" ] || { echo "$settled is empty"; exit 2; }
report=$(awk '
    NR == FNR { wire[$1] = $2; source[$1] = $3; trace[$1] = $4; next }
    !($1 in wire) { new = new " " $1; next }
    wire[$1] != $2 { wires = wires " " $1 }
    source[$1] != $3 { sources = sources " " $1 }
    trace[$1] != $4 { traces = traces " " $1 }
    { delete wire[$1] }
    END {
        for (name in wire) gone = gone " " name
        if (gone) print "Gone, or no longer settled:" gone
        if (sources) print "The definition has changed:" sources
        if (wires) print "Bytes on the wire have changed:" wires
        if (traces) print "The trace has changed:" traces
        if (new) print "New, or settled now:" new
        exit (gone sources wires traces != "")
    }' "$settled" "$now")
status=$?
[ -z "$report" ] || echo "$report" | fold -s -w 120
if [ $status -eq 1 ]; then
    echo "To see what that means for peers and callers of a release or commit: tools/compare COMMIT $1"
    echo "Put back what breaks, or give what is new a name of its own. If the change only adds, or if it is meant and"
    echo "every peer and caller follows, take it over in the same commit: $0 $1 update"
elif ! cmp -s "$settled" "$now"; then
    echo "Nothing is broken. To hold later changes to this state: $0 $1 update"
fi
exit $status
