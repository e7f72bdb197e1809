#!/usr/bin/env bash
# Runs every check: format, the tests in three builds, the fuzz targets for some seconds, the
# linter. The last line is the sum: N passed, N failed.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")"
. .ci/packages.sh

jobs=$(nproc)
fuzz_seconds=10
passed=0
failed=0

headline() { printf '\n=== %s\n' "$1"; }

# Runs a check that counts as one; the arguments are the command.
check() {
    if "$@"; then
        passed=$((passed + 1))
    else
        failed=$((failed + 1))
        echo "FAILED: $*"
        return 1
    fi
}

configure() { cmake --preset "$1" -DWIMAX_TESTS="$2" >/dev/null; }

# Builds a preset and runs its tests, each of which counts.
test_preset() {
    local log of
    headline "$1: build and tests"
    check configure "$1" ON && check cmake --build "build/$1" -j "$jobs" || return
    log=build/$1/test.log
    # Most sessions wait for something most of the time, so more of them than processors run.
    ctest --preset "$1" -j $((jobs * 4)) | tee "$log"
    of=$(sed -n 's/.*, \([0-9]*\) tests failed out of \([0-9]*\)$/\1 \2/p' "$log" | tail -1)
    if [ -z "$of" ]; then
        failed=$((failed + 1))
        return
    fi
    failed=$((failed + ${of% *}))
    passed=$((passed + ${of#* } - ${of% *}))
}

# Runs a fuzz target on its seeds and on what it found before; new finds stay in the build.
fuzz() {
    local log=build/fuzz/$1.log
    mkdir -p "build/fuzz/found/$1"
    if (cd build/fuzz && "./fuzz/fuzz_$1" -max_total_time="$fuzz_seconds" -max_len=4096 \
        "found/$1" "../../fuzz/corpus/$1") >"$log" 2>&1; then
        echo "fuzz_$1: $(tail -1 "$log")"
    else
        tail -60 "$log"
        return 1
    fi
}

headline "packages"
install_missing "${BUILD_PACKAGES[@]}" \
    /usr/include/gtest/gtest.h=libgtest-dev /usr/include/benchmark/benchmark.h=libbenchmark-dev \
    clang++=clang "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*=libclang-rt-14-dev" \
    clang-format=clang-format clang-tidy=clang-tidy run-clang-tidy=clang-tidy \
    python3=python3 tshark=tshark || exit 1

test_preset release
test_preset asan-ubsan
test_preset tsan

headline "benchmarks (figures only)"
(cd build/release && ./bench_start && ./bench_reports)

headline "format"
check cmake --build build/release --target check-format

headline "fuzz targets, $fuzz_seconds seconds each"
if check configure fuzz OFF && check cmake --build build/fuzz -j "$jobs" --target fuzz_targets; then
    for corpus in fuzz/corpus/*/; do
        check fuzz "$(basename "$corpus")"
    done
fi

headline "linter"
check configure lint ON && check quietly cmake --build build/lint --target tidy

printf '\n%d passed, %d failed\n' "$passed" "$failed"
[ "$failed" -eq 0 ]
