#!/usr/bin/env bash
# Builds the client and the simulated modem when needed and starts the client on it: the installed
# tarvel-bench does the same with what was built before.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Shows what a step prints the first time; later only when it fails.
build() {
    if [ -x build/release/TarvelWiMAXApp ]; then
        quietly "$@"
    else
        "$@" >&2
    fi
}

# Arguments: the program, where the device library lies in the build folder, the recorder if any.
prepare() {
    local targets=("$1" simctl)
    [ "$2" = . ] && targets+=(qor020) || targets+=(qor020_replay)
    [ -z "$3" ] || targets+=(qor020record)
    (
        cd "$root"
        . .ci/packages.sh
        install_missing "${BUILD_PACKAGES[@]}"
        if [ ! -f build/release/build.ninja ]; then
            build cmake --preset release -DWIMAX_TESTS=OFF -DWIMAX_BENCH=OFF
        fi
        build cmake --build build/release --target "${targets[@]}"
    )
    folder=$root/build/release
    tools=$folder
}

. "$root/tools/bench/tarvel-bench.in"
