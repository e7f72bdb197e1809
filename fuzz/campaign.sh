#!/usr/bin/env bash
# Runs the fuzz targets for a long time and counts. What they find new is kept in build/fuzz/found,
# what they find wrong in build/fuzz/crashes. Stopped and started again, it goes on counting.
#   fuzz/campaign.sh [--jobs N] [--executions N] [TARGET...]
# Executions are those of all targets together, 10^8 without the option; the client's targets get
# most of them. The figures: fuzz/campaign.sh --table
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit
. .ci/packages.sh
. fuzz/lengths.sh

# Of a hundred executions.
declare -A share=([console]=87 [callback]=6 [scenario]=1 [state]=2 [requests]=1 [bytes]=2 [control]=1)
order=(console callback scenario state requests bytes control)
piece=200000
jobs=1
executions=100000000
targets=()
only_table=false
while [ $# -gt 0 ]; do
    case $1 in
    --jobs) jobs=$2 && shift ;;
    --executions) executions=$2 && shift ;;
    --table) only_table=true ;;
    *) targets+=("$1") ;;
    esac
    shift
done
[ ${#targets[@]} -gt 0 ] || targets=("${order[@]}")
counts=build/fuzz/campaign # a file for each target, a line for each piece: executions, seconds

count() {
    local file=$counts/$1
    [ -f "$file" ] || file=/dev/null
    awk -v f="$2" '{ sum += $f } END { print sum + 0 }' "$file"
}

table() {
    local target all=0 seconds=0 n s
    echo "| Target | Executions | Seconds | A second | Found |"
    echo "|---|---:|---:|---:|---:|"
    for target in "${order[@]}"; do
        n=$(count "$target" 1)
        s=$(count "$target" 2)
        all=$((all + n))
        seconds=$((seconds + s))
        echo "| $target | $n | $s | $((s > 0 ? n / s : 0)) | $(find build/fuzz/crashes -name "$target-*" 2>/dev/null | wc -l) |"
    done
    echo "| all | $all | $seconds | $((seconds > 0 ? all / seconds : 0)) | |"
}

if $only_table; then
    table
    exit
fi

install_missing "${BUILD_PACKAGES[@]}" clang++=clang \
    "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*=libclang-rt-14-dev" || exit 1
cmake --preset fuzz >/dev/null && quietly cmake --build build/fuzz --target fuzz_targets || exit 1
mkdir -p "$counts" build/fuzz/crashes
# A copy: the sources may change while it runs.
programs=$(mktemp -d)
trap 'rm -rf "$programs"; kill $(jobs -p) 2>/dev/null' EXIT
cp build/fuzz/fuzz/fuzz_* "$programs"

run_piece() {
    local target=$1 processor=$2 log ended=0
    log=$(mktemp)
    mkdir -p "build/fuzz/found/$target"
    (cd build/fuzz && taskset -c "$processor" "$programs/fuzz_$target" -runs=$piece "-max_len=${longest[$target]}" \
        -reload=0 -entropic=0 -rss_limit_mb=0 -timeout=60 -report_slow_units=60 -print_final_stats=1 \
        "-artifact_prefix=crashes/$target-" "found/$target" "../../fuzz/corpus/$target") \
        >"$log" 2>&1 || ended=$?
    [ $ended -eq 0 ] || cp "$log" "build/fuzz/crashes/$target.log"
    awk '/^stat::number_of_executed_units/ { n = $2 } /^stat::average_exec_per_sec/ { s = $2 }
         END { if (n) print n, int(n / (s ? s : 1)) }' "$log" >>"$counts/$target"
    rm "$log"
}

# The target that is furthest behind its share; nothing when all have theirs.
next_target() {
    local target
    for target in "${targets[@]}"; do
        echo "$(($(count "$target" 1) * 10000 / (executions * ${share[$target]} / 100 + 1))) $target"
    done | sort -n | awk 'NR == 1 && $1 < 10000 { print $2 }'
}

# Both threads of a target on one processor: they take turns anyway.
worker() {
    local target
    while target=$(next_target) && [ -n "$target" ]; do
        run_piece "$target" "$1"
    done
}

for ((i = 0; i < jobs; ++i)); do
    worker $((i % $(nproc))) &
done
wait
table
