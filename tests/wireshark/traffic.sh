#!/bin/sh
# Records what the examples' client and server say to each other, over TCP in small segments and over UDP, and compares
# what tshark counts with the capture: every call has its reply, and no message has a finding.
#   traffic.sh SOURCE_DIR PROGRAMS_DIR
set -eu
source=$1 programs=$2
work=$(mktemp -d)
server=
trap '[ -z "$server" ] || kill "$server"; rm -rf "$work"' EXIT

"$programs/quorvaxdrc" wireshark --out "$work/quorva.lua" -I "$source/types" "$source/examples/rpc/spooler.x"
record() { # CAPTURE, options of record.py and a command
    : >"$work/listens"
    "$programs/spooler_server" >"$work/listens" &
    server=$!
    until port=$(sed -n 's/^listens at .*://p' "$work/listens") && [ -n "$port" ]; do
        kill -0 "$server" || { echo "the server has ended"; exit 1; }
        sleep 0.05
    done
    capture=$work/$1 protocol=$2
    shift 2
    python3 -B "$source/tests/rpc/record.py" "$capture" "--$protocol" "127.0.0.1:$port" "$@" >"$work/ports"
    kill "$server"
    wait "$server" || true
    server=
}
shown() { # CAPTURE FILTER
    tshark -2 -X "lua_script:$work/quorva.lua" -r "$work/$1" -Y "$2" -T fields -E separator=, -e quorva.rpc.program \
        2>"$work/said" | tr , '\n' | sort | uniq -c | awk '{ printf "%d calls of program 0x%x\n", $1, $2 }'
    ! grep Lua "$work/said"
}

record tcp.pcap tcp --tcp "@$work/told" --split 3,50 -- \
    sh -c "'$programs/spooler_client' tcp 127.0.0.1 {1} {2} >'$work/told'"
python3 "$source/tests/rpc/captured_calls.py" "$work/tcp.pcap" 50 >"$work/expected"
record udp.pcap udp -- sh -c "'$programs/spooler_client' udp 127.0.0.1 {1} >'$work/told'"
for protocol in tcp udp; do
    shown $protocol.pcap quorva.rpc.request_in >"$work/$protocol.replies"
    shown $protocol.pcap quorva.rpc.response_in | diff "$work/$protocol.replies" -
    [ -z "$(shown $protocol.pcap 'quorva && _ws.expert')" ] || { echo "$protocol: there are findings"; exit 1; }
done
diff "$work/expected" "$work/tcp.replies"
cat "$work/tcp.replies" "$work/udp.replies"
