# abi.sh CHECK: what the check of the binary interface lets pass, by a library of a few lines in two forms.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/{abi,include,old/lib,new/lib,none/lib,next/lib}
cp "$1" "$work/abi/check"
status=0

cat >"$work/include/old.h" <<'END'
typedef struct ZynRecord { int one; } ZynRecord;
typedef enum ZynKind { first } ZynKind;
extern int variable[2];
int kept(ZynRecord* record, ZynKind kind);
int number(int value);
END
sed 's/int one;/& int two;/; s/first/&, second/; s/\[2\]/[3]/; s/int value/long value/; $a int ZynAdded(void);' \
    "$work/include/old.h" >"$work/include/new.h"
cat >"$work/old.c" <<'END'
#include FORM
int variable[SIZE];
int kept(ZynRecord* record, ZynKind kind) { return record->one + (int)kind; }
END
cp "$work/old.c" "$work/new.c"
echo 'int number(int value) { return value; }' >>"$work/old.c"
echo 'int number(long value) { return value != 0; } int ZynAdded(void) { return 1; }' >>"$work/new.c"

# make FOLDER FORM VERSION CC-OPTION...: both libraries, the second one always the same.
make() {
    local folder=$1 form=$2 version=$3
    shift 3
    cc -g -shared -fPIC -I "$work/include" -DFORM="\"$form.h\"" "$@" -Wl,-soname,libzyn.so."$version" \
        -o "$work/$folder/lib/libzyn.so.$version" "$work/$form.c"
    echo 'int json(void) { return 1; }' | cc -g -shared -fPIC -x c - -o "$work/$folder/lib/libzynjson.so.$version"
}
make old old 1 -DSIZE=2
make new new 1 -DSIZE=3
make none old 1 -DSIZE=2 -Dkept=ZynOther
make next old 2 -DSIZE=2 -Dkept=ZynOther

# row WHY EXPECTED FOLDER VERSION CHANGELOG WORD: the check ends in EXPECTED and says WORD.
row() {
    local why=$1 expected=$2 folder=$3 version=$4 got=0
    printf '%b' "$5" >"$work/CHANGELOG.md"
    bash "$work/abi/check" "$work/$folder" "$version" ${7:-} >"$work/log" 2>&1 || got=$?
    if [[ $got != "$expected" ]] || ! grep -qF -- "$6" "$work/log"; then
        printf '%s: ends in %s\n' "$why" "$got"
        cat "$work/log"
        status=1
    fi
}
row 'there is nothing to compare with' 1 old 1.0.0 '' 'nothing stored'
row 'the first description' 0 old 1.0.0 '' 'stored' --store
row 'nothing has changed' 0 old 1.0.1 '' 'libzyn.so.1: as released'

all='`ZynRecord`, `ZynKind`, `variable`, `number`, `ZynAdded`\n'
row 'each change is named' 1 new 1.1.0 '' 'CHANGELOG.md: ZynAdded ZynKind ZynRecord number variable'
row 'what is refused is not stored' 1 new 1.1.0 '' 'CHANGELOG.md:' --store
row 'and all are announced' 0 new 1.1.0 "## Unreleased\n### ABI\n- $all" 'as CHANGELOG.md announces'
row 'in the section of the version' 0 new 1.1.0 "## Unreleased\n## 1.1.0\n### ABI\n- $all" 'as CHANGELOG.md announces'
row 'all but one' 1 new 1.1.0 "## Unreleased\n### ABI\n- ${all/'`number`,'/}" 'CHANGELOG.md: number'
row 'a star' 0 new 1.1.0 '## Unreleased\n### ABI\n- `Zyn*`, `number`, `var*`\n' 'as CHANGELOG.md announces'
row 'another version announced it' 1 new 1.1.0 "## Unreleased\n## 1.0.0\n### ABI\n- $all" 'CHANGELOG.md: ZynAdded'
row 'below another heading' 1 new 1.1.0 "## Unreleased\n### ABI\n### Added\n- $all" 'CHANGELOG.md: ZynAdded'
row 'without backquotes' 1 new 1.1.0 "## Unreleased\n### ABI\n- ${all//'`'/}" 'CHANGELOG.md: ZynAdded'

row 'a name goes' 1 none 1.1.0 '## Unreleased\n### ABI\n- `kept`, `ZynOther`\n' 'takes a new major version'
row 'with a new version' 0 next 2.0.0 '## Unreleased\n### ABI\n- `kept`, `ZynOther`\n' 'as CHANGELOG.md announces'
row 'stored at a release' 0 new 1.1.0 "## 1.1.0\n### ABI\n- $all" 'stored' --store
row 'is what counts from then on' 0 new 1.1.1 '' 'libzyn.so.1: as released'
exit $status
