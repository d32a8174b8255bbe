#!/bin/sh
# The example's client and those of rpcgen and libtirpc tell the same story of either server, over TCP and UDP. Then a
# recorder passes it on in small segments, and the capture has every message.
#   story.sh BIN_DIR PEER_DIR PYTHON
set -eu
here=$(cd "$(dirname "$0")" && pwd)
bin=$1 peer=$2 python=$3
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT

start() { # PROGRAM: sets `server`, and `port` to where it listens
    : >"$work/listens"
    "$1" >"$work/listens" &
    server=$!
    until grep -q '^listens at .*:[0-9]*$' "$work/listens"; do
        kill -0 "$server" || { echo "$1 has ended"; exit 1; }
        sleep 0.05
    done
    port=$(sed 's/.*://' "$work/listens")
}
finish() { kill "$server"; wait "$server" || true; server=; }
compare() { # WHAT
    grep -v '^hears of jobs at' "$work/told" | diff "$here/story.txt" - || { echo "$1 tells another story"; exit 1; }
}

for spooler in "$bin/spooler_server" "$peer/peer_server"; do
    for client in "$bin/spooler_client" "$peer/peer_client"; do
        for protocol in tcp udp; do
            start "$spooler"
            "$client" "$protocol" 127.0.0.1 "$port" >"$work/told"
            compare "$client $protocol to $spooler"
            finish
        done
    done
done

start "$bin/spooler_server"
"$python" -B "$here/record.py" "$work/story.pcap" --tcp "127.0.0.1:$port" --tcp "@$work/told" --split 3,50 -- \
    sh -c "'$bin/spooler_client' tcp 127.0.0.1 {1} {2} >'$work/told'"
compare "the recorded client"
finish
"$python" "$here/captured_calls.py" "$work/story.pcap" 50 >"$work/calls"
printf '14 calls of program 0x20000f01\n1 calls of program 0x20000f02\n' | diff - "$work/calls"
