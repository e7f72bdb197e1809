#!/usr/bin/env bash
# Makes the corpora anew: the fewest inputs that reach what the corpora, what was found since and
# the seeds reach together.
#   fuzz/minimise.sh [TARGET...]
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
cmake --preset fuzz >/dev/null
cmake --build build/fuzz --target fuzz_targets -j "$(nproc)" >/dev/null
rm -rf build/fuzz/seeds
fuzz/seeds.py build/fuzz/seeds
. fuzz/lengths.sh
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=("${!longest[@]}")
for target in "${targets[@]}"; do
    new=build/fuzz/minimised/$target
    rm -rf "$new"
    mkdir -p "$new" "build/fuzz/found/$target" "build/fuzz/seeds/$target" "fuzz/corpus/$target"
    (cd build/fuzz && "fuzz/fuzz_$target" -merge=1 -use_counters=0 "-max_len=${longest[$target]}" -rss_limit_mb=0 "minimised/$target" \
        "../../fuzz/corpus/$target" "found/$target" "seeds/$target") >"build/fuzz/merge-$target.log" 2>&1
    rm -rf "fuzz/corpus/$target"
    cp -r "$new" "fuzz/corpus/$target"
    echo "$target: $(find "fuzz/corpus/$target" -type f | wc -l) inputs, $(du -sb "fuzz/corpus/$target" | cut -f1) bytes"
done
