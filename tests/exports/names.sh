# names.sh LIBRARY ROOT CC: the library exports what the public headers declare ZYN_API and nothing else, and the
# headers declare the operations of every record type of the schema.
set -euo pipefail
export LC_ALL=C
library=$1 root=$2 cc=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The absolute symbol is the version that all names carry.
nm -D --defined-only --without-symbol-versions "$library" | awk '$2 != "A" { print $NF }' | sort >"$work/exported"

# After preprocessing, ZYN_API is an attribute; the name is the last word in front of the parameters or the array's
# size.
echo '#include <zyn/zyn.h>' | "$cc" -std=c11 -E -P -I "$root/include" -x c - | tr '\n' ' ' |
    awk -v RS=';' '/visibility\("default"\)/ {
        sub(/.*visibility\("default"\)\)\)/, "")
        sub(/[[(].*/, "")
        words = split($0, word, /[ *]+/)
        print word[words] == "" ? word[words - 1] : word[words]
    }' | sort >"$work/declared"

awk '/^  (message )?(SEQUENCE|SET OF|CHOICE) / {
        sub(/, empty$/, "")
        type = $NF
        print "BEnc" type "Content\nBDec" type "Content\nPrint" type "\nFree" type
        if ($1 == "message") print "BEnc" type "\nBDec" type
    }' "$root/tests/golden/schema.txt" | sort >"$work/operations"

status=0
# none WHAT: fails with WHAT if there is a name on the standard input.
none() {
    local names
    names=$(cat)
    [[ -z $names ]] || { printf '%s:\n%s\n' "$1" "$names"; status=1; }
}
none 'exported, but not declared' < <(comm -23 "$work/exported" "$work/declared")
none 'declared, but not exported' < <(comm -13 "$work/exported" "$work/declared")
none 'an operation of a record type, but not declared' < <(comm -23 "$work/operations" "$work/declared")

# 323 record types with four operations each, of which four are messages with two more.
count=$(uniq "$work/operations" | wc -l)
((count == 4 * 323 + 2 * 4)) || { echo "$count operations of record types"; status=1; }
exit $status
