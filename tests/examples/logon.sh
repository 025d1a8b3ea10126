# logon.sh ROOT BIN: the logon example as two processes, and its server against streams that carry no message.
set -euo pipefail
root=$1 bin=$2
work=$(mktemp -d)
server=
trap 'kill $server 2>/dev/null || true; rm -rf "$work"' EXIT

"$root/examples/logon/run" "$bin" | bash "$root/tests/examples/expect.sh" "$root/tests/examples/logon.lines" |
    tee "$work/transcript"
good=$(sed -n 's/^client: sending //p' "$work/transcript" | head -n 1)
damaged=$(sed -n 's/^client: sending, damaged, //p' "$work/transcript")

fail() {
    echo "$*" >&2
    cat "$work/log" >&2
    exit 1
}

trap '' PIPE # the server hangs up while octets are still on their way

# send COUNT ANSWER OCTETS WHY: a server of its own gets OCTETS. It takes COUNT messages off the stream, a reply begins
# with ANSWER or none comes, and the server ends well when the stream is closed.
send() {
    local count=$1 answer=$2 octets=$3 why=$4 port='' first='' taken
    timeout 30 "$bin/logon-server" 0 >"$work/log" 2>&1 &
    server=$!
    while [[ -z $port ]]; do
        sleep 0.02
        kill -0 $server || fail "no server: $why"
        port=$(sed -n 's/^server: listening on port //p' "$work/log")
    done
    exec 3<>"/dev/tcp/127.0.0.1/$port"
    printf "${octets:+\\x${octets// /\\x}}" >&3 2>/dev/null || true
    [[ -z $answer ]] || first=$(head -c 1 <&3 | od -An -tx1)
    exec 3>&-
    wait $server || fail "the server failed: $why"
    server=
    [[ ${first// /} == "$answer" ]] || fail "answered by '$first': $why"
    taken=$(grep -c '^server: a ' "$work/log") || true
    ((taken == count)) || fail "$taken messages: $why"
}
zeros() { printf ' 00%.0s' $(seq "$1"); }
send 1 b2 "$good" 'a logon'
send 2 b2 "$damaged $good" 'a logon behind a damaged message: the server goes on'
send 2 b2 "BF 83 47 00 $good" 'a tag of three octets'
send 2 b2 "30 82 01 02$(zeros 258) $good" 'a length of two octets behind the first'
send 2 b2 "30 84 00 00 00 01 00 $good" 'a length of four octets behind the first'
send 2 b2 "30 82 0F FC$(zeros 4092) $good" 'a message as long as the room for it'
send 0 '' '' 'nothing at all'
send 0 '' "${good:0:20}" 'a message cut off'
send 0 '' '30' 'a tag alone'
send 0 '' '30 80 00 00' 'an indefinite length'
send 0 '' '30 85 00 00 00 00 00' 'a length of five octets behind the first'
send 0 '' '30 84 FF FF FF FF' 'a length beyond all memory'
send 0 '' "30 82 0F FD$(zeros 4093)" 'a message one octet longer than the room for it'
send 0 '' 'BF 83 80 80 01 00' 'a tag of more than three octets'

status=0
"$bin/logon-client" 127.0.0.1 1 2>"$work/log" || status=$?
((status == 1)) || fail "the client ends in $status where nobody listens"
status=0
"$bin/logon-client" 127.0.0.1 2>"$work/log" || status=$?
((status == 2)) || fail "the client ends in $status without a port"
