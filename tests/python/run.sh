#!/bin/sh
# Generates the package of Python for the library's interface files and those of the tests, and tests it: against the
# codec, by itself, by mypy where that is installed, and the examples of docs/python.md.
#   run.sh SOURCE_DIR COMPILER MESSAGES PYTHON [OPTION of MESSAGES]...
set -eu
source=$1 compiler=$2 messages=$3 python=$4
shift 4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$source"

golden=tests/golden
# shellcheck disable=SC2046  # the names of interface files have no blanks
"$compiler" python --out "$work" --package everything -I types -I $golden -I tests/python $(find types -name '*.x') \
    $golden/station.x $golden/corners.x $golden/steps.x tests/python/names.x
"$compiler" python --out "$work" -I types types/common/event.x types/jobs/requests.x
export PYTHONPATH="$work" PYTHONDONTWRITEBYTECODE=1

"$messages" "$@" >"$work/lines"
"$python" tests/python/compare.py <"$work/lines"
"$python" -W error tests/python/package_test.py
"$python" -m doctest docs/python.md
if command -v mypy >/dev/null; then
    MYPYPATH=$work mypy --strict --cache-dir "$work/cache" tests/python/*.py "$work/everything" "$work/quorvapixdr"
else
    echo "mypy is not installed: types are not checked"
fi
