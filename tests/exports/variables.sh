# variables.sh LIBRARY: what threads share and anyone may write is the exported variables and the process-wide state, and
# nothing besides. Whatever else the library keeps between calls belongs into a context (sbuf/state.h).
set -euo pipefail
export LC_ALL=C

sections=$(readelf -SW "$1" | sed -n 's/^ *\[ *\([0-9]*\)\] \(\.data\|\.bss\) .*/\1/p' | paste -sd'|')
[[ $sections == *'|'* ]] || { echo "no variables found: '$sections'"; exit 1; }
# completed.* and the two names behind it are of the start-up code of the C compiler.
shared=$(readelf -sW "$1" | awk -v sections="^($sections)$" '
    $4 == "OBJECT" && $7 ~ sections { sub(/@.*/, "", $8); print $8 }' | c++filt |
    grep -vE '^(completed\.[0-9]+|__dso_handle|__TMC_END__)$' | sort -u)
expected='MINUS_INFINITY
PLUS_INFINITY
nmG
numToHexCharTblG
stdIndentG
strStkG
zyn::(anonymous namespace)::processWide'
[[ $shared == "$expected" ]] || { printf 'shared by all threads:\n%s\n' "$shared"; exit 1; }
