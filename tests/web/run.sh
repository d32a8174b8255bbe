#!/bin/sh
# Makes the pages of all types, and of a program with procedures, and tests them. Holds the viewer against the
# inspector, on messages of every type, and on the captures that the inspector's test makes.
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
begin=$(date +%s)
"$python" "$source/web/make_site.py" "$programs/quorvaxdr" --out "$site" \
    --interface "$source/examples/rpc/spooler.x" -I "$source/examples/rpc"
echo "the pages are made in $(($(date +%s) - begin)) s"
"$python" "$source/tests/web/links_test.py" "$site"

mkdir "$work/captures"
"$programs/quorvaxdr" schema --interface "$source/tests/inspect/capture/spooler.x" >"$work/schema"
export CAPTURES="$work/captures" QUORVAXDR="$programs/quorvaxdr" PYTHONPATH="$source/tests/captures"
"$python" -B "$source/tests/inspect/capture/capture_test.py" "$source/tests/web/record.sh" >/dev/null
"$python" -B "$source/tests/web/pcapng_files.py" "$source/tests/web/record.sh" \
    "$source/tests/inspect/capture/spooler.x"
node "$source/tests/web/captures_test.js" "$site" "$work/schema" "$work/captures"

rm -r "$work/captures"

"$python" -B "$source/tests/web/pages_test.py" "$site"
"$python" -B "$source/tests/web/viewer_test.py" "$site" "$programs/quorvaxdr"
