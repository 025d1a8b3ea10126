# way.sh WAY SOURCE BUILD VERSION: a project in a scratch folder depends on the library in the way that WAY names,
# builds, links and runs. What BUILD holds is installed, and then moved: nothing may know where it was.
set -euo pipefail
way=$1 source=$2 build=$3 version=$4
here=$source/tests/packaging
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

fail() {
    echo "$*" >&2
    exit 1
}

# loud COMMAND...: runs it, and shows what it wrote if it fails.
loud() { "$@" >"$work/log" 2>&1 || { cat "$work/log" >&2; fail "failed: $*"; }; }

install() {
    loud cmake --install "$build" --prefix "$work/first"
    mv "$work/first" "$prefix"
}

# shows PROGRAM OUTPUT [ARGUMENT]
shows() {
    local output
    output=$("$1" ${3:+"$3"}) || fail "$1 ends in $?"
    [[ $output == "$2" ]] || fail "$1 shows '$output'"
}

# run_in FOLDER: the four programs of the project.
run_in() {
    local kind
    for kind in '' -static; do
        shows "$1/user$kind" "$version: 29 octets, alternative 455"
        shows "$1/json$kind" '{"loginPassword":"open sesame"}'
    done
}

# build_user CMAKE-OPTION...: builds and runs the project with CMake.
build_user() {
    loud cmake -S "$here/user" -B "$work/build" -G Ninja "$@"
    loud cmake --build "$work/build" -j 2
    run_in "$work/build"
    shows "$work/build/values" "$version: 29 octets, a logon"
}

way_files() {
    local file
    install
    for file in bin/zyn lib/libzyn.so.{1,"$version"} lib/libzyn.{so,a} lib/libzynjson.so.{1,"$version"} \
        lib/libzynjson.{so,a} share/man/man1/zyn.1 share/bash-completion/completions/zyn share/zsh/site-functions/_zyn \
        share/fish/vendor_completions.d/zyn.fish share/doc/{libzyn1,libzyn-dev,zyn-tools}/copyright; do
        [[ -s $prefix/$file ]] || fail "not installed: $file"
    done
    diff -r "$source/include/zyn" "$prefix/include/zyn"
    diff -r "$source/examples" "$prefix/share/doc/zyn/examples"
    for file in "$source"/{records,asn1}/*.asn1; do cmp "$file" "$prefix/share/zyn/asn1/${file##*/}"; done
    head -n 1 "$prefix/share/doc/libzyn1/copyright" | cmp - "$source/COPYRIGHT"
    for file in "$prefix"/{bin/zyn,lib/*.so}; do
        [[ $(readelf -SW "$file") != *.debug_info* ]] || fail "not stripped: $file"
    done
    ! grep -rlF -e "$build" -e "$work/first" "$prefix"/{include,share,lib/cmake,lib/pkgconfig} || fail 'paths of the build'
    shows "$prefix/bin/zyn" "zyn $version" --version
}

way_find_package() {
    install
    build_user -DWAY=find_package -DCMAKE_PREFIX_PATH="$prefix"
    # The examples, as they are installed, build the same way.
    loud cmake -S "$prefix/share/doc/zyn/examples" -B "$work/examples" -G Ninja -DCMAKE_PREFIX_PATH="$prefix"
    loud cmake --build "$work/examples"
    loud "$work/examples/order/order"
}

way_pkg-config() {
    install
    export PKG_CONFIG_PATH=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$prefix/lib
    [[ $(pkg-config --modversion zyn) == "$version" ]] || fail 'another version'
    local program library
    for program in user json; do
        library=zyn
        [[ $program == user ]] || library=zynjson
        # shellcheck disable=SC2046 # flags are words
        loud cc -o "$work/$program" "$here/user/$program.c" $(pkg-config --cflags --libs $library)
        # shellcheck disable=SC2046
        loud cc -static -o "$work/$program-static" "$here/user/$program.c" $(pkg-config --static --cflags --libs $library)
    done
    run_in "$work"
}

# The packages have together what is installed, each file in one of them, and say what they need.
way_packages() {
    local package file packed=$work/packed
    install
    loud cpack --config "$build/CPackConfig.cmake" -G DEB -B "$packed" -D CPACK_DEBIAN_COMPRESSION_TYPE=none
    for package in libzyn1 libzyn-dev zyn-tools; do
        [[ $(dpkg-deb -f "$packed/${package}_$version"_*.deb Version) == "$version" ]] || fail "$package has another version"
        dpkg-deb -x "$packed/${package}_$version"_*.deb "$work/$package"
        cmp "$build/copyright" "$work/$package/usr/share/doc/$package/copyright"
        (cd "$work/$package/usr" && find . -type f -o -type l) >>"$work/in-packages"
    done
    diff <(cd "$prefix" && find . -type f -o -type l | sort) <(sort "$work/in-packages")
    for file in libzyn1/usr/lib/libzynjson.so.1 libzyn-dev/usr/lib/libzyn.so zyn-tools/usr/bin/zyn; do
        [[ -e $work/$file || -L $work/$file ]] || fail "not there: $file"
    done
    [[ $(dpkg-deb -f "$packed"/libzyn1_*.deb Depends) == *libstdc++6* ]] || fail 'libzyn1 needs no libstdc++6'
    [[ $(dpkg-deb -f "$packed"/libzyn-dev_*.deb Depends) == "libzyn1 (= $version)" ]] || fail 'libzyn-dev needs no libzyn1'
}

# The archive has all that git knows, builds where there is no git, and is taken in by FetchContent; what that unpacks, by
# add_subdirectory, with the library as it was built for the former.
way_source() {
    loud cpack --config "$build/CPackSourceConfig.cmake" -B "$work/packed"
    local archive=$work/packed/zyn-$version.tar.xz
    if git -C "$source" rev-parse 2>/dev/null; then
        tar tf "$archive" | sed "s|^zyn-$version/||" | sort >"$work/has"
        git -C "$source" ls-files | sort | comm -23 - "$work/has" >"$work/lacks"
        [[ ! -s $work/lacks ]] || fail "the archive lacks: $(cat "$work/lacks")"
    fi
    mkdir "$work/bin"
    printf '#!/bin/sh\necho git is called >&2\nexit 1\n' >"$work/bin/git"
    chmod +x "$work/bin/git"
    PATH=$work/bin:$PATH
    build_user -DWAY=FetchContent -DZYN="$archive"
    rm "$work/build/"{user,json}{,-static}
    build_user -DWAY=add_subdirectory -DZYN="$work/build/_deps/zyn-src"
    loud cmake --preset test -S "$work/build/_deps/zyn-src"

    # Nothing of it is installed, and what is made of it lies in the folder for it.
    loud cmake --install "$work/build" --prefix "$prefix"
    [[ ! -e $prefix ]] || fail "installed: $(find "$prefix" -type f | head)"
    local stray
    stray=$(find "$work/build" -name 'libzyn*' -not -path "$work/build/_deps/*")
    [[ -z $stray ]] || fail "stray: $stray"
}

"way_$way"
