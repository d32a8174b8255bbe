#!/bin/sh
# Holds the inspector, given as the only argument, to its command line: each case is a line
# "STATUS | INPUT | WORDS | PRINTED | SAID", with the texts as printf's %b has them. PRINTED stands in what goes to
# standard output, SAID in what goes to standard error, where nothing stands if it is empty.
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

plain() {  # TEXT with a blank at either end
    text=${1# }
    printf '%b' "${text% }"
}

while IFS='|' read -r expected input words printed said; do
    case $expected in '#'* | '') continue ;; esac
    plain "$input" >in
    eval "'$inspector' $words" <in >out 2>err
    status=$?
    out=$(tr -d '\0' <out)
    err=$(cat err)
    case $status:$out in
    "${expected% }":*"$(plain "$printed")"*) ;;
    *) fail "quorvaxdr$words: status $status, printed: $out" ;;
    esac
    case $err in
    *"$(plain "$said")"*) [ -n "${said# }" ] || [ -z "$err" ] || fail "quorvaxdr$words: said: $err" ;;
    *) fail "quorvaxdr$words: expected \"$said\", said: $err" ;;
    esac
done <"$cases"

{
    sleep 0.2
    "$inspector" types 2>/dev/null
    echo $? >status
} | :
[ "$(cat status)" -eq 1 ] || fail "a closed pipe: status $(cat status)"
echo "$failures of the command line differ"
[ $failures -eq 0 ]
