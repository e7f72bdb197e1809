#!/usr/bin/env bash
# Runs every check, section by section. The last line is the sum of all.
set -uo pipefail

# Name, when it runs (always, or the option that asks for it), what it is.
sections=(
    "release     always      the tests, optimised"
    "asan-ubsan  always      the tests under AddressSanitizer and UndefinedBehaviorSanitizer"
    "fuzz        always      each fuzz target for some seconds"
    "tsan        always      the tests under ThreadSanitizer, of what has threads"
    "linter      always      clang-tidy over what is shipped"
    "format      always      the layout of the sources"
    "benchmarks  --long      figures only"
    "sweep       --long      every session with each thing that can go wrong, in full"
    "storms      --long      a minute of each storm under the sanitizers"
    "lint-tests  --long      clang-tidy over tests, benchmarks and fuzz targets"
    "package     --package   the Debian package: lintian, the same bytes again, in a bare root"
    "armhf       --machines  all tests on 32-bit ARM, run by qemu"
    "mips        --machines  all tests on 32-bit big-endian MIPS, run by qemu"
    "s390x       --machines  all tests on 64-bit big-endian S/390, run by qemu"
)

usage() {
    cat <<'TEXT'
Usage: ./test.sh [--machines] [--long] [--package] [--only SECTION]...

Gets what is missing, builds, and runs every check. The last line is the sum: N passed, N failed,
N skipped. The exit status is 0 when nothing failed.

  --machines      all tests on other machines too: armhf, mips, s390x (about ten minutes each)
  --package       the Debian package too (six minutes)
  --long          the long sections too, and those that repeat something do it for longer
  --only SECTION  this section and no other; may stand several times
  --help          this text

Sections:
TEXT
    printf '  %s\n' "${sections[@]}"
}

refuse() {
    echo "test.sh: $1" >&2
    exit 2
}

wanted=" always "
only=" "
fuzz_seconds=4
while [ $# -gt 0 ]; do
    case $1 in
    --machines | --package) wanted+="$1 " ;;
    --long)
        wanted+="--long "
        fuzz_seconds=60
        ;;
    --only)
        [ $# -ge 2 ] || refuse "--only needs a section"
        printf '%s\n' "${sections[@]}" | grep -q "^$2 " || refuse "no such section: $2"
        only+="$2 "
        shift
        ;;
    --help)
        usage
        exit 0
        ;;
    *) refuse "unknown option: $1 (--help explains)" ;;
    esac
    shift
done

cd "$(dirname "${BASH_SOURCE[0]}")" || exit
. .ci/packages.sh

jobs=$(nproc)
passed=0
failed=0
skipped=0

# Whether a section runs; the arguments are its name and when it does.
is_wanted() {
    if [ "$only" != " " ]; then
        [[ $only == *" $1 "* ]]
    else
        [[ $wanted == *" $2 "* ]]
    fi
}

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

skip() {
    skipped=$((skipped + 1))
    echo "skipped: $1"
}

configure() { cmake --preset "$1" -DWIMAX_TESTS="$2" >/dev/null; }

build() { cmake --build "build/$1" -j "$jobs" "${@:2}"; }

# What ctest printed and logged, as passed, failed and skipped tests. A part of a program holds many
# tests, which the log counts.
count_tests() {
    awk '
        / Test +#[0-9]+: / {
            part = $0 ~ /: [a-z]+\/part-/
            if ($0 ~ /\*\*\*Skipped/) skipped++
            else if ($0 !~ / Passed +[0-9.]+ sec/) failed++
            else if (!part) passed++
        }
        / Testing: / { part = $3 ~ /\/part-/ }
        NR > FNR && part && /^\[  PASSED  \]/ { passed += $4 }
        NR > FNR && part && /^\[  SKIPPED \] [0-9]+ test/ { skipped += $4 }
        END { print passed + 0, failed + 0, skipped + 0 }' "$@"
}

# Runs the tests of a build, each of which counts; further arguments are for ctest.
run_tests() {
    local preset=$1 log=build/$1/test.log ended=0 counts
    shift
    # Most sessions wait for something most of the time, so more of them than processors run.
    ctest --preset "$preset" -j $((jobs * 6)) "$@" | tee "$log" || ended=$?
    read -r -a counts < <(count_tests "$log" "build/$preset/Testing/Temporary/LastTest.log")
    # However ctest ended, something failed that it did not list.
    if [ "$ended" -ne 0 ] && [ "${counts[1]}" -eq 0 ] || [ "${counts[0]}" -eq 0 ]; then
        counts[1]=$((counts[1] + 1))
    fi
    passed=$((passed + counts[0]))
    failed=$((failed + counts[1]))
    skipped=$((skipped + counts[2]))
    printf '%s: %d passed, %d failed, %d skipped\n' "$preset" "${counts[@]}"
}

# What later sections need is made ahead, one thing after the other, with the processor time that the
# tests leave over while they wait.
ahead=() # sections
worker=

make_ahead() {
    local name
    for name in "${ahead[@]}"; do
        "prepare_${name//-/_}" >"$scratch/$name.log" 2>&1
        echo $? >"$scratch/$name.ended"
        mv "$scratch/$name.ended" "$scratch/$name.status"
    done
}

start_making_ahead() {
    if [ -z "$worker" ] && [ ${#ahead[@]} -gt 0 ]; then
        set -m # a process group of its own, which ends with this script
        (renice -n 19 $BASHPID >/dev/null && make_ahead) &
        worker=$!
        set +m
    fi
}

# Prepares a section, or waits until that has been done.
prepare() {
    if [[ " ${ahead[*]} " != *" $1 "* ]]; then
        "prepare_${1//-/_}"
        return
    fi
    start_making_ahead
    while [ ! -f "$scratch/$1.status" ] && kill -0 "$worker" 2>/dev/null; do
        sleep 0.5
    done
    [ "$(cat "$scratch/$1.status" 2>/dev/null)" = 0 ] || { cat "$scratch/$1.log" && false; }
}

# Builds a preset and runs its tests.
test_preset() {
    check prepare "$1" || return
    start_making_ahead
    run_tests "$1"
}

prepare_preset() { configure "$1" ON && build "$1"; }
prepare_release() { prepare_preset release; }
prepare_asan_ubsan() { prepare_preset asan-ubsan; }
prepare_tsan() { prepare_preset tsan; }
prepare_linter() { configure lint ON && cmake --build build/lint --target tidy; }

section_release() { test_preset release; }
section_asan_ubsan() { test_preset asan-ubsan; }
section_tsan() { test_preset tsan; }

# Hours, unlike the samples among the tests.
section_sweep() {
    check configure release ON && check build release &&
        check tests/sweep.py --client build/release/TarvelWiMAXApp \
            --scripted build/release/scripted/libqor020.so \
            --faults build/release/tests/faults/libfaults.so tests/sessions
}

section_storms() {
    local preset
    for preset in asan-ubsan tsan; do
        check configure "$preset" ON && check build "$preset" &&
            check tests/storm/storm_test.py --client "build/$preset/TarvelWiMAXApp" \
                --library "build/$preset/storm/libqor020.so" --seconds 60 Storms
    done
}

# The cross compiler of a machine and what runs its programs. Where they cannot be had, the machine
# is skipped.
get_machine() {
    install_missing "qemu-$1=qemu-user" "$2-g++=g++-$2" /usr/src/googletest=googletest ||
        { skip "$1: its packages cannot be had"; return 1; }
}

test_machine() { get_machine "$2" "$3" && check prepare_preset "$1" && run_tests "$1"; }

section_armhf() { test_machine armhf arm arm-linux-gnueabihf; }
section_mips() { test_machine mips mips mips-linux-gnu; }
section_s390x() { test_machine s390x s390x s390x-linux-gnu; }

run_benchmarks() { (cd build/release && ./bench_start && ./bench_reports && ./bench_modem && ./bench_device && ./bench_recording); }

section_benchmarks() {
    [ -x build/release/bench_start ] || { check configure release ON && check build release; } || return
    check run_benchmarks
}

section_package() { check packaging/check.sh; }

section_format() {
    [ -f build/release/build.ninja ] || check configure release ON || return
    check build release --target check-format
}

# Runs a fuzz target on its seeds and on what it found before; new finds stay in the build.
fuzz() {
    local room=build/asan-ubsan/fuzz
    mkdir -p "$room/found/$1"
    (cd "$room" && "./fuzz_$1" -max_total_time="$fuzz_seconds" "-max_len=${longest[$1]}" \
        "found/$1" "../../../fuzz/corpus/$1") >"$scratch/fuzz_$1.log" 2>&1
    echo $? >"$scratch/fuzz_$1.status"
}

tell_of_fuzzing() {
    if [ "$(<"$scratch/fuzz_$1.status")" -eq 0 ]; then
        echo "fuzz_$1: $(tail -1 "$scratch/fuzz_$1.log")"
    else
        tail -60 "$scratch/fuzz_$1.log"
        return 1
    fi
}

section_fuzz() {
    local target
    check prepare asan-ubsan || return
    . fuzz/lengths.sh
    for target in "${!longest[@]}"; do
        while [ "$(jobs -rp | grep -cvx "$worker")" -ge "$jobs" ]; do
            sleep 0.2
        done
        fuzz "$target" &
    done
    while [ "$(jobs -rp | grep -cvx "$worker")" -gt 0 ]; do
        sleep 0.2
    done
    for target in "${!longest[@]}"; do
        check tell_of_fuzzing "$target"
    done
}

section_linter() { check quietly prepare linter; }
section_lint_tests() { check configure lint ON && check build lint --target tidy-tests; }

# Puts the seconds of processor time, user and system, that all commands have taken into a variable.
processor_seconds() {
    times >"$scratch/times" # in a pipe it would tell its own
    printf -v "$1" '%.0f' "$(awk -F'[ms ]' 'NR == 2 { print $1 * 60 + $2 + $4 * 60 + $5 }' "$scratch/times")"
}

figures=()

# Runs a section under its headline and keeps what it took.
run_section() {
    local name=$1 from=$SECONDS before=("$passed" "$failed" "$skipped") began ended
    printf '\n=== %s: %s (%d:%02d since the start)\n' "$name" "$2" $((SECONDS / 60)) $((SECONDS % 60))
    processor_seconds began
    "section_${name//-/_}"
    processor_seconds ended
    figures+=("$(printf '%-10s %5d s %6d s %6d passed %3d failed %3d skipped' "$name" \
        $((SECONDS - from)) $((ended - began)) $((passed - before[0])) \
        $((failed - before[1])) $((skipped - before[2])))")
}

scratch=$(mktemp -d)
trap '[ -z "$worker" ] || kill -- "-$worker" 2>/dev/null; rm -rf "$scratch"' EXIT

echo "=== packages"
install_missing "${BUILD_PACKAGES[@]}" \
    /usr/include/gtest/gtest.h=libgtest-dev /usr/include/benchmark/benchmark.h=libbenchmark-dev \
    clang++=clang "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*=libclang-rt-14-dev" \
    clang-format=clang-format clang-tidy=clang-tidy run-clang-tidy=clang-tidy \
    python3=python3 tshark=tshark lua5.2=lua5.2 lua5.3=lua5.3 lua5.4=lua5.4 || exit 1
install_missing fish=fish || echo "Without fish nobody tries its completion" >&2
install_missing chromium=chromium || echo "Without Chromium nobody looks at the monitor's pages" >&2

for section in "${sections[@]}"; do
    read -r name when _ <<<"$section"
    if is_wanted "$name" "$when" && [[ $name =~ ^(asan-ubsan|tsan|linter)$ ]]; then
        ahead+=("$name")
    fi
done

for section in "${sections[@]}"; do
    read -r name when what <<<"$section"
    if is_wanted "$name" "$when"; then
        run_section "$name" "$what"
    fi
done

printf '\nWhat each section took, in all and of processor time:\n'
printf '%s\n' "${figures[@]}"
printf '\n%d passed, %d failed, %d skipped\n' "$passed" "$failed" "$skipped"
[ "$failed" -eq 0 ]
