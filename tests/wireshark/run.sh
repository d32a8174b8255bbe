#!/bin/sh
# Holds the dissector for Wireshark against the inspector, on messages of every type, and tests what it shows of calls
# and of the examples' traffic. Holds the inspector's reader of captures against tshark's own dissectors.
#   run.sh SOURCE_DIR PROGRAMS_DIR [OPTION of wireshark_messages]...
set -eu
source=$1 programs=$2
shift 2
lines=$(mktemp)
trap 'rm -f "$lines"' EXIT
python3 -B "$source/tests/inspect/capture/tshark_test.py" "$programs/quorvaxdr" tshark
python3 -B "$source/tests/wireshark/calls_test.py" "$programs/quorvaxdrc" "$source"
"$source/tests/wireshark/traffic.sh" "$source" "$programs"
"$programs/wireshark_messages" "$@" >"$lines"
python3 -B "$source/tests/wireshark/compare.py" "$programs/quorvaxdrc" "$source" <"$lines"
