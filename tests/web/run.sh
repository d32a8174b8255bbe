#!/bin/sh
# Makes the pages of all types, and of a program with procedures, and tests them. Holds the viewer's reader against the
# inspector, on messages of every type.
#   run.sh SOURCE_DIR PROGRAMS_DIR [OPTION of wireshark_messages]...
set -eu
source=$1 programs=$2
shift 2
python=/usr/bin/python3  # the one that has Debian's packages
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
site=$work/site
"$programs/wireshark_messages" --annotated "$@" >"$work/lines"
node "$source/tests/web/agreement.js" "$source/web/reader.js" <"$work/lines"
node "$source/tests/web/inputs_test.js" "$source/web/inputs.js"
"$python" "$source/web/make_site.py" "$programs/quorvaxdr" --out "$site" \
    --interface "$source/examples/rpc/spooler.x" -I "$source/examples/rpc"
"$python" "$source/tests/web/links_test.py" "$site"
"$python" -B "$source/tests/web/pages_test.py" "$site"
"$python" -B "$source/tests/web/viewer_test.py" "$site" "$programs/quorvaxdr"
