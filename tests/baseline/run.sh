#!/bin/sh
# Compares the interface files with settled.x, the interface as peers and callers know it, and shows what is broken.
#
#   run.sh QUORVAXDRC          status 1 when the wire, the source of callers or the text of the trace is broken
#   run.sh QUORVAXDRC update   takes over the interface files as they are now
set -u

if [ $# -lt 1 ] || [ $# -gt 2 ] || [ "${2:-update}" != update ]; then
    echo "usage: $0 QUORVAXDRC [update]" >&2
    exit 2
fi
case $1 in /*) compiler=$1 ;; *) compiler=$PWD/$1 ;; esac
cd "$(dirname "$0")/../.." || exit 2
settled=tests/baseline/settled.x

if [ "${2:-}" = update ]; then
    trap 'rm -f "$settled.new"' EXIT
    find types -name '*.x' -exec "$compiler" flatten -I types {} + > "$settled.new" && mv "$settled.new" "$settled"
    exit
fi
report=$("$compiler" compare "$settled" types)
status=$?
if [ $status -eq 1 ]; then
    echo "$report"
    echo "The types have changed for others. Put them back, or give what is new a name of its own. If the change is"
    echo "meant and every peer and caller follows, take it over in the same commit: $0 $1 update"
elif [ $status -eq 0 ] && [ "${report%new: 0, provisional: 0}" = "$report" ]; then
    echo "$report"
    echo "Nothing is broken. To hold later changes to this state: $0 $1 update"
fi
exit $status
