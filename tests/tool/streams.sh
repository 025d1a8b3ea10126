# streams.sh BIN [limited]: captures that grow, pipes that stay open, and captures larger than the memory there is.
set -euo pipefail
bin=$1 limited=${2:-}
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
cd "$work"
export PATH=$bin:$PATH

fail() {
    echo "$*" >&2
    exit 1
}
# until COMMAND: waits until it is so, at most a minute.
until_() {
    for ((i = 0; i < 600; i++)); do
        ! "$@" 2>/dev/null || return 0
        sleep 0.1
    done
    fail "in vain: $*"
}
lines() { (($(wc -l <out) == $1)); }

printf '\xB2\x04\x04\x02OK' >ok.bin

# A file that grows: messages come out whole, and one that is not complete when all ends is not bad.
cat ok.bin ok.bin >capture.bin
zyn decode --follow --out json capture.bin >out 2>errors &
until_ lines 2
head -c 3 ok.bin >>capture.bin
sleep 0.2
lines 2 || fail 'a message came out before it was complete'
tail -c +4 ok.bin >>capture.bin
until_ lines 3
head -c 3 ok.bin >>capture.bin
sleep 0.2
kill -INT $!
wait $! || fail "following ends in $?"
lines 3 && [[ ! -s errors ]] || fail "after following: $(cat out errors)"

# A pipe that stays open: each message is shown as it comes.
mkfifo pipe
zyn decode --out json --jobs 2 pipe >out &
exec 3>pipe
for i in 1 2 3; do
    cat ok.bin >&3
    until_ lines $i
done
exec 3>&-
wait $!

# Where the reader goes away, nothing is said.
zyn sample --count 100000 | zyn decode 2>errors | sed 1q >out || true
[[ ! -s errors ]] || fail "to a closed pipe: $(cat errors)"

[[ $limited == limited ]] || exit 0
# Captures of 50 MB, and what is made of them, with 40 MB of memory in all. One line may be as long as that too.
zyn sample --count 20000 --seed 1 >some.bin
many() { for ((i = 0; i < $1; i++)); do cat some.bin; done; }
check() { [[ $1 == "$2" ]] || fail "$1 lines instead of $2: $3"; }
check "$(many 45 | (ulimit -v 40000; exec zyn decode --out json) | wc -l)" 900000 'raw'
check "$(many 45 | base64 -w 0 | (ulimit -v 40000; exec zyn decode --in base64 --out json) | wc -l)" 900000 'one line of base64'
check "$(many 20 | od -An -v -tx1 -w500 | tr -d '\n' | (ulimit -v 40000; exec zyn decode --in hex --out json) | wc -l)" 400000 'one line of hexadecimal'
check "$(many 20 | od -Ax -v -tx1 | (ulimit -v 40000; exec zyn decode --out json) | wc -l)" 400000 'a hex dump'
check "$(many 20 | zyn decode --out json | (ulimit -v 60000; exec zyn encode --out hex) | wc -l)" 400000 'JSON'
check "$(many 45 | (ulimit -v 60000; exec zyn decode --skip-junk --out json) | wc -l)" 900000 'with junk'
# What says that it is longer is told apart from what is.
(printf '\x30\x84\x7F\xFF\xFF\xFF\x04\x01A\xBF'; many 45) | (ulimit -v 40000; exec zyn decode 2>errors) && fail 'a message of 2 GiB is good'
grep -q 'more than --limit' errors || fail "2 GiB: $(cat errors)"
