# json.sh LIBRARY ROOT: the library for JSON exports what zyn/json.h declares and nothing else, is found under its
# SONAME, and needs the codec and the run-time libraries of C and C++ alone.
set -euo pipefail
export LC_ALL=C
library=$1 root=$2
status=0

# The absolute symbol is the version that all names carry.
exported=$(nm -D --defined-only --without-symbol-versions "$library" | awk '$2 != "A" { print $NF }' | sort)
declared=$(sed -n 's/^ZYN_API .*[ *]\(ZynJson[A-Za-z]*\)(.*/\1/p' "$root/include/zyn/json.h" | sort)
[[ -n $declared && $exported == "$declared" ]] ||
    { printf 'exported:\n%s\ndeclared:\n%s\n' "$exported" "$declared"; status=1; }

dynamic=$(readelf -dW "$library")
soname=$(sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p' <<<"$dynamic")
[[ $soname == libzynjson.so.1 ]] || { echo "the SONAME is '$soname'"; status=1; }
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
[[ $needed == *libzyn.so.1* ]] || { echo "no codec among what is needed: '$needed'"; status=1; }
for name in $needed; do
    [[ $name =~ ^(libzyn|libstdc\+\+|libm|libgcc_s|libc|ld-linux[-a-z0-9_]*|ld[0-9]*)\.so\.[0-9]+$ ]] ||
        { echo "needs $name"; status=1; }
done
exit $status
