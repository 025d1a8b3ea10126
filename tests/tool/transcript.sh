# transcript.sh BIN FILE: runs the commands of a transcript one after the other in a directory of its own and compares what
# they print, on both streams, with what stands in it.
#
# "$ " starts a command and "> " another line of it; what it prints follows, and [N] is its exit code where that is not 0.
# Commands may use octets, below. Lines that start with "# " are comments. Blank lines at the end of what is printed do not count. What differs is shown;
# the transcript as it would be now is BIN/../transcripts/FILE, to be looked at and copied.
set -u
bin=$(realpath "$1") file=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$bin/../transcripts" "$work/here"
now=$bin/../transcripts/$(basename "$file")
export PATH=$bin:$PATH LC_ALL=C TERM=dumb

# octets 30 1B ...: these octets, as they are.
octets() {
    local all=" $*"
    printf '%b' "${all// /\\x}"
}

cd "$work/here"
command='' blanks='' commands=0
run() {
    [[ -n $command ]] || return 0
    { eval "$command"; } >"$work/output" 2>&1 </dev/null # in this shell, so that variables last
    local code=$?
    # Command substitution takes the line breaks at the end away.
    local output
    output=$(cat "$work/output")
    [[ -z $output ]] || printf '%s\n' "$output"
    ((code == 0)) || printf '[%d]\n' "$code"
    printf '%s' "$blanks"
    command='' blanks=''
    commands=$((commands + 1))
}
inCommand=false
while IFS= read -r line || [[ -n $line ]]; do
    if [[ $line == '$ '* || $line == '# '* ]]; then
        run
        blanks=''
        printf '%s\n' "$line"
        inCommand=false
        [[ $line == '# '* ]] || { command=${line:2} inCommand=true; }
    elif [[ $line == '> '* && $inCommand == true ]]; then
        printf '%s\n' "$line"
        command+=$'\n'${line:2}
    elif [[ -z $line ]]; then
        blanks+=$'\n'
        inCommand=false
    else
        blanks='' inCommand=false
    fi
done <"$file" >"$now" && run >>"$now"
((commands > 0)) || { echo "no commands in $file" >&2; exit 1; }
diff -u "$file" "$now"
