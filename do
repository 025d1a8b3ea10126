#!/usr/bin/env bash
# The front door of the repository: './do VERB' from a clean clone, './do' alone for the list of verbs.
# A comment that starts with ## stands above each verb and is its line in that list.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"

build_packages=(g++ cmake ninja-build rapidjson-dev libcli11-dev)
docs_packages=("${build_packages[@]}" python3 python3-jinja2 python3-markdown python3-pygments)
test_packages=("${docs_packages[@]}" libgtest-dev pkg-config valgrind abigail-tools dpkg-dev file)
package_packages=("${build_packages[@]}" dpkg-dev file xz-utils)
fuzz_packages=("${build_packages[@]}" clang-14 libclang-rt-14-dev)
bench_packages=("${build_packages[@]}" libbenchmark-dev valgrind asn1c protobuf-compiler libprotobuf-dev
    flatbuffers-compiler libflatbuffers-dev)
interop_packages=("${test_packages[@]}" asn1c erlang-asn1)

say() { printf '== %s\n' "$*"; }

wrong_use() {
    printf './do: %s\n' "$*" >&2
    exit 2
}

installed() { dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed; }

# Installs those of the given Debian packages that are missing, or tells how to.
set_up() {
    local package missing=() root=()
    for package in "$@"; do
        installed "$package" || missing+=("$package")
    done
    ((${#missing[@]})) || return 0
    if ((EUID != 0)); then
        root=(sudo -n)
        if ! sudo -n true 2>/dev/null; then
            printf 'Some Debian packages are missing. This installs them; then try again:\n' >&2
            printf '    su -c "apt-get update && apt-get install -y %s"\n' "${missing[*]}" >&2
            exit 1
        fi
    fi
    say "installing ${missing[*]}"
    "${root[@]}" apt-get update -q
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET]: builds everything, or only the target.
build() {
    local start=$SECONDS
    say "building ${2:-everything}, preset $1, into build/$1"
    cmake --preset "$1"
    cmake --build --preset "$1" ${2:+--target "$2"}
    say "built in $((SECONDS - start)) s"
}

## run          build the library and let a client log on to a server over a loopback connection
verb_run() {
    set_up "${build_packages[@]}"
    build release
    say "running examples/logon"
    examples/logon/run build/release/bin
}

## build        build library, programs and examples, optimised, into build/release
verb_build() {
    set_up "${build_packages[@]}"
    build release
}

## test [HOW]   build and run all tests; asan: under AddressSanitizer and UndefinedBehaviorSanitizer; tsan: the tests of
##              threads under ThreadSanitizer; valgrind, i386, s390x: the library's tests under memcheck, as a 32-bit
##              build, and emulated on a big-endian machine
verb_test() {
    local preset=${1:-test}
    case $preset in
    test | asan | tsan) set_up "${test_packages[@]}" ;;
    valgrind) set_up "${test_packages[@]}" valgrind ;;
    i386) set_up "${test_packages[@]}" googletest g++-i686-linux-gnu ;;
    s390x) set_up "${test_packages[@]}" googletest g++-s390x-linux-gnu qemu-user ;;
    *) wrong_use "there is no test run '$preset'" ;;
    esac
    if [[ $preset == valgrind ]]; then
        build test library-tests
        library_tests test valgrind --quiet --leak-check=full --error-exitcode=1
        return
    fi
    build "$preset"
    say "testing, preset $preset"
    ctest --preset "$preset"
}

# library_tests PRESET [COMMAND ...]: runs the library's tests with fewer bit patterns, each program under the command.
library_tests() {
    local part preset=$1
    shift
    for part in sbuf records describe api thread; do
        say "$part-tests${1:+, $1}"
        ZYN_FEW_PATTERNS=1 "$@" "build/$preset/bin/$part-tests" --gtest_brief
    done
}

## coverage     which lines and branches of the library its tests run, in figures and as a page; fails below 97 and 95 %
verb_coverage() {
    set_up "${test_packages[@]}" python3
    build coverage
    find build/coverage -name '*.gcda' -delete
    library_tests coverage
    say "counting; the page is build/coverage/coverage.html"
    tools/coverage build/coverage
}

## mutate [N [SEED]]  break the library in N ways (200), one at a time, and tell which of them its tests catch; fails
##              below 95 %
verb_mutate() {
    [[ ${1:-1} =~ ^[1-9][0-9]*$ && ${2:-1} =~ ^[0-9]+$ ]] || wrong_use "mutate takes a number of faults and a seed"
    set_up "${test_packages[@]}" python3
    say "making faults"
    tools/mutate "$@"
}

## bench [HOW]  measure beside the peers and the floors and print all figures; --plot: draw them as well; instructions:
##              count instructions and compare them with those stored; worst: the worst messages; threads: two of them
verb_bench() {
    local how=${1:-}
    [[ $how =~ ^(|--plot|instructions|worst|threads)$ ]] ||
        wrong_use "bench takes --plot, instructions, worst, threads or nothing"
    if [[ $how =~ ^[iwt] ]]; then
        set_up "${build_packages[@]}" libbenchmark-dev valgrind
        build bench "zyn-bench-${how/instructions/steady}"
        say "measuring"
        if [[ $how == instructions ]]; then bench/instructions build/bench; else "build/bench/bin/zyn-bench-$how"; fi
        return
    fi
    set_up "${bench_packages[@]}"
    build bench
    say "measuring; this takes minutes"
    bench/table build/bench
    say "measuring JSON"
    build/bench/bin/zyn-bench-json
    if [[ $how == --plot ]]; then
        say "drawing docs/performance.svg"
        mkdir -p docs
        build/bench/bin/zyn-bench-plot build/bench/figures.csv docs/performance.svg
    fi
}

## interop [N] exchange messages with two general ASN.1 compilers, N of each alternative, and compare all values
verb_interop() {
    local count=${1:-60}
    [[ $count =~ ^[1-9][0-9]*$ ]] || wrong_use "interop takes a number of messages"
    set_up "${interop_packages[@]}"
    build test interop
    say "exchanging messages, $count of each alternative, as many in other forms and as many damaged ones"
    interop/run build/test/bin build/test/interop "$count"
}

## fuzz SECONDS run all fuzz targets side by side for about so long in all; --store: make fuzz/corpus anew
verb_fuzz() {
    [[ ${1:-} =~ ^([1-9][0-9]*|--store)$ ]] || wrong_use "fuzz takes a number of seconds, or --store"
    set_up "${fuzz_packages[@]}"
    build fuzz zyn-fuzz
    say "fuzzing"
    fuzz/run build/fuzz "$1"
}

## lint         check the form of all code by clang-format, and library, tools and examples by clang-tidy
verb_lint() {
    set_up "${build_packages[@]}" clang-format clang-tidy
    build release
    say "clang-format"
    written_code '*.c' '*.cpp' '*.h' '*.hpp' | xargs clang-format --dry-run -Werror
    say "clang-tidy"
    tidy 'sbuf/*.cpp' 'records/*.cpp' 'api/*.cpp' 'describe/*.cpp' 'json/*.cpp'
    # Programs go without the checks that follow all paths through a function: those take two thirds of the time.
    tidy --checks=-clang-analyzer-* 'tools/**.cpp' 'examples/**.c' 'examples/**.cpp'
}

# tidy [OPTION] FILE...: runs clang-tidy on all files named, on every processor. Not on the templates of the direct way:
# the compiler's own warnings see them, and one file takes a minute here.
tidy() {
    local option=()
    [[ $1 != -* ]] || { option=("$1"); shift; }
    written_code "$@" | grep -v '^records/direct-' | xargs -P "$(nproc)" -n1 clang-tidy -p build/release --quiet "${option[@]}" \
        2> >(grep -v -e ' warnings\? generated' >&2)
}

# The files among those named that people write.
written_code() { git ls-files -- "$@" | grep -v -e '^records/generated/' -e '^include/zyn/records' -e '^include/zyn/cpp/[A-Zr]'; }

## docs         make the reference and the guide as a site in build/docs, to be read there, and check it
verb_docs() {
    set_up "${docs_packages[@]}"
    build release zyn-tool
    build release zyn-schema
    say "writing build/docs"
    local start=$SECONDS bin=build/release/bin
    /usr/bin/python3 -B tools/docs/make.py --tool $bin/zyn --compiler $bin/zyn-schema --source . --out build/docs
    /usr/bin/python3 -B tools/docs/check.py --tool $bin/zyn --source . --site build/docs
    say "open build/docs/index.html; made in $((SECONDS - start)) s"
}

## generate     make again what the schema compiler makes of records/*.asn1
verb_generate() {
    set_up "${build_packages[@]}"
    build release zyn-schema
    say "writing include/zyn/records, include/zyn/records.h, include/zyn/cpp, records/generated, asn1/Zyn.asn1 and tests/golden/schema.txt"
    build/release/bin/zyn-schema --headers include/zyn/records --rows records/generated \
        --dump tests/golden/schema.txt --flat asn1/Zyn.asn1 records/*.asn1
}

## package [root]
##              make Debian packages and an archive of the source in build/packages; root: try the packages in a clean
##              Debian 12
verb_package() {
    [[ ${1:-root} == root ]] || wrong_use "package takes root or nothing"
    set_up "${package_packages[@]}" ${1:+debootstrap}
    build package
    say "packing"
    rm -rf build/packages
    cpack --config build/package/CPackConfig.cmake -B build/packages
    cpack --config build/package/CPackSourceConfig.cmake -B build/packages
    rm -r build/packages/_CPack_Packages
    ls -l build/packages
    if [[ -n ${1:-} ]]; then
        say "trying the packages in a clean root"
        local root=()
        ((EUID == 0)) || root=(sudo -n)
        "${root[@]}" bash tests/packaging/root.sh build/packages
    fi
}

## abi [--store]
##              compare the libraries' binary interface with the released one; --store: keep it as the released one
verb_abi() {
    [[ ${1:---store} == --store ]] || wrong_use "abi takes --store or nothing"
    set_up "${build_packages[@]}" abigail-tools xz-utils
    build release
    say "comparing the binary interface"
    abi/check build/release "$(build/release/bin/zyn --version | cut -d' ' -f2)" "$@"
}

## clean        remove all that was built
verb_clean() {
    say "removing build/"
    rm -rf build
}

if (($# == 0)); then
    printf 'Usage: ./do VERB\n\n'
    sed -n 's/^## /  /p' do
    exit 0
fi
verb=$1
shift
declare -F "verb_$verb" >/dev/null || wrong_use "there is no verb '$verb'; './do' alone lists them"
[[ $verb =~ ^(test|bench|fuzz|interop|package|abi|mutate)$ ]] || (($# == 0)) || wrong_use "'$verb' takes nothing behind it"
(($# <= 1)) || [[ $verb == mutate ]] || wrong_use "'$verb' takes one word at most"
"verb_$verb" "$@"
