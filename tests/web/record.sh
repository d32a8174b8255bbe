#!/bin/sh
# Stands in for the inspector in its test of captures: keeps each capture in $CAPTURES, with the list that $QUORVAXDR
# prints of it. Every other list has a type for the bodies of unknown programs, which is in the name of the file.
#   record.sh decode --from pcap - --json --interface FILE.x [OPTION]...
set -u
number=$(find "$CAPTURES" -name '*.pcap' | wc -l)
type=
[ $((number % 2)) -eq 0 ] || type=Ticket
capture=$CAPTURES/$number.$type.pcap
cat >"$capture"
"$QUORVAXDR" decode ${type:+"$type"} --from pcap --interface "$7" - <"$capture" >"$capture.lines" 2>"$capture.notes"
exec "$QUORVAXDR" "$@" <"$capture"
