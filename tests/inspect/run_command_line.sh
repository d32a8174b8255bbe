#!/bin/sh
# Runs the cases of command_line.txt: run_command_line.sh INSPECTOR
#
# A case is a line "STATUS | INPUT | ARGUMENTS | OUTPUT | ERRORS". INPUT is the contents of standard input, OUTPUT a
# part of standard output, ERRORS a part of standard error, which must be empty if ERRORS is. All three may have the
# escapes of printf's %b.
inspector=$1
cases=$(cd "$(dirname "$0")" && pwd)/command_line.txt
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 2
failures=0

fail() {
    echo "$1"
    failures=$((failures + 1))
}

unescaped() {  # TEXT with a blank at either end
    text=${1# }
    printf '%b' "${text% }"
}

while IFS='|' read -r expected input arguments output errors; do
    case $expected in '#'* | '') continue ;; esac
    unescaped "$input" >in
    eval "'$inspector' $arguments" <in >out 2>err
    status=$?
    out=$(tr -d '\0' <out)
    err=$(cat err)
    case $status:$out in
    "${expected% }":*"$(unescaped "$output")"*) ;;
    *) fail "quorvaxdr$arguments: status $status, output: $out" ;;
    esac
    case $err in
    *"$(unescaped "$errors")"*) [ -n "${errors# }" ] || [ -z "$err" ] || fail "quorvaxdr$arguments: errors: $err" ;;
    *) fail "quorvaxdr$arguments: expected \"$errors\", errors: $err" ;;
    esac
done <"$cases"

{
    sleep 0.2
    "$inspector" types 2>err
    echo $? >status
} | :
[ "$(cat status)" -eq 0 ] && [ ! -s err ] || fail "a closed pipe: status $(cat status), errors: $(cat err)"
echo "$failures cases failed"
[ $failures -eq 0 ]
