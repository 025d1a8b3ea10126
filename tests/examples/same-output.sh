# same-output.sh FILE PROGRAM: the program ends well, and what it writes to the standard output, followed by what it
# writes to the standard error stream, is what FILE holds, but for the line break at the end.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$2" >"$work/output" 2>"$work/error"
diff "$1" <(echo "$(cat "$work/output" "$work/error")")
