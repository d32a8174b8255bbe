#!/bin/sh
# Runs the commands in the ```console blocks of Markdown pages, and compares what they print with the pages. "update"
# writes it into the pages instead.
#   transcripts.sh SOURCE_DIR BIN_DIR check|update PAGE...
#
# A line "$ COMMAND" is a command of the shell; lines "> ..." after it continue it. What it prints follows, output and
# errors in their order, and "[STATUS]" if its exit status is not 0. The commands of a page run one after the other in a
# new folder, with links to the folders of SOURCE_DIR that have examples. Their standard input is empty.
set -eu
source=$(cd "$1" && pwd)
PATH=$(cd "$2" && pwd):$PATH
mode=$3
shift 3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
for page in "$@"; do
    folder=$work/$(basename "$page")
    mkdir "$folder"
    ln -s "$source/samples" "$source/examples" "$source/types" "$source/tests" "$folder"
    awk -v folder="$folder" -v command="$work/command" -v printed="$work/printed" '
        function run(status, line) {
            if (!pending) return
            close(command)
            status = system("cd " folder " && sh " command " >" printed " 2>&1 </dev/null")
            while ((getline line < printed) > 0) print line
            close(printed)
            if (status) print "[" status "]"
            pending = 0
        }
        /^```console$/ { on = 1; print; next }
        !on { print; next }
        pending && /^> / { print; print substr($0, 3) > command; next }
        { run() }
        /^```$/ { on = 0; print; next }
        /^\$ / { print; print substr($0, 3) > command; pending = 1; ++count }
        END { if (!count) { print FILENAME ": no commands" > "/dev/stderr"; exit 1 } }
    ' "$page" >"$work/page"
    if [ "$mode" = update ]; then
        cp "$work/page" "$page"
    elif ! diff "$page" "$work/page"; then
        echo "$page: its commands print something else now"
        failures=$((failures + 1))
    fi
done
[ $failures -eq 0 ]
