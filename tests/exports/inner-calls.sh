# inner-calls.sh LIBRARY: no call from the library to itself goes through the procedure linkage table, where it would
# cost a jump more and could be caught by another library's function of the same name.
set -euo pipefail
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

readelf -rW "$1" | awk '/_JU?MP_SLOT?/ { sub(/@.*/, "", $5); print $5 }' | sort >"$work/called"
nm -D --defined-only --without-symbol-versions "$1" | awk '{ print $NF }' | sort >"$work/own"

# If these two are not found, then neither would be what is looked for.
grep -qx longjmp "$work/called" || grep -qx memcpy "$work/called" || { echo 'no call of the C library found'; exit 1; }
grep -qx NibbleAlloc "$work/own" || { echo 'no function of our own found'; exit 1; }
through=$(comm -12 "$work/called" "$work/own")
[[ -z $through ]] || { printf 'called through the table:\n%s\n' "$through"; exit 1; }
