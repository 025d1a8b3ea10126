# terminal.sh BIN: what the tool shows at a terminal, which is a pseudo-terminal here, and nowhere else.
set -euo pipefail
bin=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export PATH=$bin:$PATH TERM=xterm
unset NO_COLOR

fail() {
    echo "$*" >&2
    cat -v "$work/screen" >&2
    exit 1
}
# at COMMAND: runs it at a terminal; what that shows is in screen.
at() { script -qec "$1" /dev/null >screen </dev/null || fail "$1 ends in $?"; }
shows() { grep -aq "$1" screen || fail "no $1: $2"; }
showsNot() { ! grep -aq "$1" screen || fail "$1: $2"; }

# As many messages as take a second or so.
at 'stty cols 100; zyn sample --count 1500000 --seed 1 >capture.bin'
shows '\[=* *\]  [0-9]* %  .* [kM]/s  .* left' 'a bar with rate and time left, of messages made'
at 'stty cols 100; zyn decode --out json capture.bin >out.json'
shows '\[=* *\]  [0-9]* %  .* MB/s  .* left' 'a bar with rate and time left'
[[ $(tail -c 3 screen) == $'\033[K' ]] || fail 'the bar does not go away at the end'
grep -aq $'\r' out.json && fail 'the bar is among the results'
at 'stty cols 30; zyn decode --out json capture.bin >/dev/null'
(($(tr '\r' '\n' <screen | sed 's/\x1b\[K//' | awk '{ print length }' | sort -n | tail -n 1) < 30)) || fail 'wider than the terminal'
at 'cat capture.bin | zyn decode --out json >/dev/null'
shows '[0-9] MB  .* MB/s' 'amount and rate where the whole is not known'
showsNot left 'time left where the whole is not known'
at 'head -c 1000000 capture.bin | zyn decode --out json 2>errors | tail -n 1; cat errors'
showsNot MB/s 'a bar in a file'
zyn sample --count 5 >few.bin
at 'zyn decode --out json few.bin >/dev/null'
showsNot % 'a bar for work that takes no time'

at 'zyn decode --out tree few.bin'
shows $'\033\\[1m' 'a tree in colours'
at 'NO_COLOR=1 zyn decode --out tree few.bin'
showsNot $'\033' 'a tree in colours that nobody wants'
at 'zyn sample 456 --seed 1'
shows '^30 .* BF 83 48 00' 'a sample in hexadecimal, as raw octets are not for terminals'
