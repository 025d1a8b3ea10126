# expect.sh LINES: copies the standard input to the standard output and fails unless it has a line for each of the
# patterns in the file LINES, in their order. Patterns are extended regular expressions, one a line; # starts a
# comment.
set -euo pipefail
mapfile -t patterns < <(sed '/^#/d; /^$/d' "$1")
met=0
while IFS= read -r line || [[ -n $line ]]; do
    printf '%s\n' "$line"
    if ((met < ${#patterns[@]})) && [[ $line =~ ${patterns[met]} ]]; then met=$((met + 1)); fi
done
((${#patterns[@]} > 0)) || { echo "no patterns in $1" >&2; exit 1; }
((met == ${#patterns[@]})) || { echo "no line after the first $met matches: ${patterns[met]}" >&2; exit 1; }
