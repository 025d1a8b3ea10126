#!/usr/bin/env bash
# The front door of the repository: './do VERB' from a clean clone, './do' alone for the list of verbs.
# A comment that starts with ## stands above each verb and is its line in that list.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")"

build_packages=(g++ cmake ninja-build rapidjson-dev libcli11-dev)
test_packages=("${build_packages[@]}" libgtest-dev)
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
        memcheck
        return
    fi
    build "$preset"
    say "testing, preset $preset"
    ctest --preset "$preset"
}

# Runs the library's tests with fewer bit patterns; an error or a leak ends it.
memcheck() {
    local part
    for part in sbuf records api thread; do
        say "memcheck, $part-tests"
        ZYN_FEW_PATTERNS=1 valgrind --quiet --leak-check=full --error-exitcode=1 "build/test/bin/$part-tests" --gtest_brief
    done
}

## bench [HOW]  measure beside the peers and the floors and print all figures; --plot: draw them as well; instructions:
##              only count instructions, and compare them with those stored
verb_bench() {
    if [[ ${1:-} == instructions ]]; then
        set_up "${build_packages[@]}" valgrind
        build bench zyn-bench-steady
        say "counting instructions"
        bench/instructions build/bench
        return
    fi
    [[ ${1:---plot} == --plot ]] || wrong_use "bench takes --plot, instructions or nothing"
    set_up "${bench_packages[@]}"
    build bench
    say "measuring; this takes minutes"
    bench/table build/bench
    say "measuring JSON"
    build/bench/bin/zyn-bench-json
    if [[ ${1:-} == --plot ]]; then
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

## generate     make again what the schema compiler makes of records/*.asn1
verb_generate() {
    set_up "${build_packages[@]}"
    build release zyn-schema
    say "writing include/zyn/records, include/zyn/records.h, records/generated, asn1/Zyn.asn1 and tests/golden/schema.txt"
    build/release/bin/zyn-schema --headers include/zyn/records --rows records/generated \
        --dump tests/golden/schema.txt --flat asn1/Zyn.asn1 records/*.asn1
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
[[ $verb =~ ^(test|bench|fuzz|interop)$ ]] || (($# == 0)) || wrong_use "'$verb' takes nothing behind it"
(($# <= 1)) || wrong_use "'$verb' takes one word at most"
"verb_$verb" "$@"
