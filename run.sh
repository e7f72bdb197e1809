#!/usr/bin/env bash
# Builds the client and starts it on the simulated modem. Only the client writes to the standard
# output.
set -euo pipefail

usage() {
    cat <<'TEXT'
Usage: ./run.sh [--scenario FILE]

Builds the client and the simulated modem when needed and starts the client on it.

  --scenario FILE  what the simulated modem does (see docs/simulator.md and sim/scenarios/);
                   without it, its built-in radio environment
  --help           this text
TEXT
}

refuse() {
    echo "run.sh: $1" >&2
    exit 2
}

while [ $# -gt 0 ]; do
    case $1 in
    --scenario)
        [ $# -ge 2 ] || refuse "--scenario needs a file"
        [ -f "$2" ] || refuse "no such scenario: $2"
        QOR020_SCENARIO=$(realpath "$2")
        export QOR020_SCENARIO
        shift 2
        ;;
    --help)
        usage
        exit 0
        ;;
    *) refuse "unknown option: $1 (--help explains)" ;;
    esac
done

cd "$(dirname "${BASH_SOURCE[0]}")"
. .ci/packages.sh
install_missing "${BUILD_PACKAGES[@]}"

# Shows what a step prints the first time; later only when it fails.
build() {
    if [ -x build/release/TarvelWiMAXApp ]; then
        quietly "$@"
    else
        "$@" >&2
    fi
}

if [ ! -f build/release/build.ninja ]; then
    build cmake --preset release -DWIMAX_TESTS=OFF -DWIMAX_BENCH=OFF
fi
build cmake --build build/release --target TarvelWiMAXApp qor020

cd build/release
exec ./TarvelWiMAXApp
