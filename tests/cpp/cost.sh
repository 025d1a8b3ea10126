#!/usr/bin/env bash
# cost.sh SOURCE BUILD: compiles the same work in C and in C++ with optimisation, counts the instructions that either takes,
# library included, and fails if the C++ takes more than 3 % more.
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
flags=(-O2 -I "$source/include" -I "$source/tests/cpp" -L "$build/lib" -Wl,-rpath,"$build/lib")
cc -std=c11 "$source/tests/cpp/cost-c.c" -o "$work/c" "${flags[@]}" -lzyn
c++ -std=c++20 "$source/tests/cpp/cost-cpp.cpp" -o "$work/cpp" "${flags[@]}" -lzyn
count() { # PROGRAM: instructions in work and below it
    valgrind --tool=callgrind --callgrind-out-file=/dev/null --toggle-collect='work*' "$1" 2>&1 |
        awk '/Collected :/ { print $NF }'
}
c=$(count "$work/c") cpp=$(count "$work/cpp")
printf 'instructions: C %d, C++ %d, %+.2f %%\n' "$c" "$cpp" "$(awk "BEGIN { print 100 * ($cpp / $c - 1) }")"
((c > 100000 && cpp <= c + c * 3 / 100))
