# golden.sh BIN MESSAGES: each golden message through the tool, without being told its channel: it prints as its file says,
# JSON leads back to the same octets, and a tree shows each octet once and knows every element.
set -euo pipefail
bin=$1 messages=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH=$bin:$PATH

failures=0
fail() {
    echo "$*" >&2
    failures=$((failures + 1))
}

# The octets column of a tree, as digits.
octetsOfTree() { sed -n -e '/^offset/d; s/^.\{8\}\(.\{43\}\).*/\1/p; t' -e 's/^ \{8\}//p' | tr -d ' \n'; }

# follow FILE WHAT: there and back, and as a tree, of messages as they are in FILE.
follow() {
    zyn decode --out json "$1" | zyn encode --out raw | cmp - "$1" || fail "$2: JSON does not lead back to the octets"
    zyn decode --out tree "$1" >"$work/tree"
    octetsOfTree <"$work/tree" | cmp - <(od -An -v -tx1 "$1" | tr -d ' \n' | tr a-f A-F) || fail "$2: the tree has other octets"
    if grep -n '  ?\|<- ' "$work/tree" >&2; then fail "$2: the tree does not know an element"; fi
}

count=0
for file in "$messages"/*.txt; do
    name=$(basename "$file" .txt)
    sed -n '/^#/d; /^$/q; /^[0-9A-F ]*$/p' "$file" >"$work/hex"
    sed '1,/^$/d' "$file" >"$work/notation"
    zyn decode "$work/hex" | diff - "$work/notation" >&2 || fail "$name: printed in another way"
    tr -d ' \n' <"$work/hex" | sed 's/../\\x&/g' >"$work/escaped"
    printf '%b' "$(cat "$work/escaped")" >"$work/raw"
    follow "$work/raw" "$name"
    count=$((count + 1))
done
((count > 0)) || fail "no messages in $messages"
zyn sample --count 3000 --seed 21 >"$work/raw"
follow "$work/raw" "random messages"
((failures == 0))
