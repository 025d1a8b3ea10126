# dependencies.sh LIBRARY: the library is found under its SONAME and needs the run-time libraries of C and C++ alone.
set -euo pipefail
dynamic=$(readelf -dW "$1")
status=0

soname=$(sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p' <<<"$dynamic")
[[ $soname == libzyn.so.1 ]] || { echo "the SONAME is '$soname'"; status=1; }

needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
[[ $needed == *libc.so* ]] || { echo "no C library among what is needed: '$needed'"; status=1; }
for name in $needed; do
    [[ $name =~ ^(libstdc\+\+|libm|libgcc_s|libc|ld-linux[-a-z0-9_]*|ld[0-9]*)\.so\.[0-9]+$ ]] ||
        { echo "needs $name"; status=1; }
done
exit $status
