#!/usr/bin/env bash
# Prints how many lines of app/, ext/ and device/ the fuzz targets reach with their corpora.
#   --missed    the lines that they do not reach, too
# Directories behind that are further corpora, each with a directory for each target.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
. .ci/packages.sh
install_missing "${BUILD_PACKAGES[@]}" clang++=clang llvm-cov=llvm python3=python3 \
    "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*=libclang-rt-14-dev"
missed=false
if [ "${1-}" = --missed ]; then
    missed=true
    shift
fi
build=build/fuzz-coverage
cmake --preset fuzz-coverage >/dev/null
cmake --build "$build" --target fuzz_callback fuzz_console -j "$(nproc)" >/dev/null

profiles=()
for target in callback console; do
    corpora=("fuzz/corpus/$target")
    for more in "$@"; do
        corpora+=("$more/$target")
    done
    LLVM_PROFILE_FILE=$build/$target.profraw "$build/fuzz/fuzz_$target" -runs=0 -rss_limit_mb=0 \
        "${corpora[@]}" >"$build/$target.log" 2>&1
    profiles+=("$build/$target.profraw")
done
llvm-profdata merge -o $build/all.profdata "${profiles[@]}"
llvm-cov export -format=lcov -instr-profile $build/all.profdata \
    $build/fuzz/fuzz_callback -object $build/fuzz/fuzz_console app ext device >$build/lcov.info
python3 - $build/lcov.info $missed <<'PYTHON'
import os
import sys

reached, missing, path = {}, [], None
for line in open(sys.argv[1]):
    if line.startswith("SF:"):
        path = os.path.relpath(line[3:].strip())
    elif line.startswith("DA:"):
        number, count = line[3:].split(",")[:2]
        reached.setdefault(path.split("/")[0], []).append(int(count) > 0)
        if int(count) == 0:
            missing.append(f"{path}:{number}")
if sys.argv[2] == "true":
    print("\n".join(missing))
lines = [line for directory in reached.values() for line in directory]
for directory, its in [*sorted(reached.items()), ("all", lines)]:
    print(f"{directory}: {sum(its)} of {len(its)} lines, {100 * sum(its) / len(its):.1f} %")
PYTHON
