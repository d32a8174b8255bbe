#!/bin/sh
# Makes the pages of all types, and of a program with procedures, and tests them.
#   run.sh SOURCE_DIR PROGRAMS_DIR
set -eu
source=$1 programs=$2
python=/usr/bin/python3  # the one that has Debian's packages
site=$(mktemp -d)
trap 'rm -rf "$site"' EXIT
"$python" "$source/web/make_site.py" "$programs/quorvaxdr" --out "$site" \
    --interface "$source/examples/rpc/spooler.x" -I "$source/examples/rpc"
"$python" "$source/tests/web/links_test.py" "$site"
"$python" -B "$source/tests/web/pages_test.py" "$site"
