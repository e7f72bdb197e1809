#!/usr/bin/env bash
# Builds the client and starts it on the simulated modem. Only the client writes to the standard
# output.
set -euo pipefail

usage() {
    cat <<'TEXT'
Usage: ./run.sh [--scenario FILE | --replay FILE] [--record FILE] [--control PATH]

Builds the client and the simulated modem when needed and starts the client on it.

  --scenario FILE  what the simulated modem does (see docs/simulator.md and sim/scenarios/);
                   without it, its built-in radio environment
  --replay FILE    plays a recording instead of the simulated modem, as fast as it was, or
                   QOR020_REPLAY_SPEED times as fast; 0: at once (see docs/recording.md)
  --record FILE    records the session into FILE, which is replaced
  --control PATH   the simulated modem listens at the socket PATH, where simctl steers it (see
                   docs/control.md)
  --help           this text
TEXT
}

refuse() {
    echo "run.sh: $1" >&2
    exit 2
}

device=(qor020 .) # what is built of it, and where it lies in the build
recorder=()
environment=()
while [ $# -gt 0 ]; do
    case $1 in
    --scenario | --replay | --record | --control) [ $# -ge 2 ] || refuse "$1 needs a file" ;;&
    --scenario)
        [ -f "$2" ] || refuse "no such scenario: $2"
        QOR020_SCENARIO=$(realpath "$2")
        export QOR020_SCENARIO
        shift 2
        ;;
    --replay)
        [ -f "$2" ] || refuse "no such recording: $2"
        QOR020_REPLAY=$(realpath "$2")
        export QOR020_REPLAY
        device=(qor020_replay replay)
        shift 2
        ;;
    --record)
        recorder=(qor020record)
        environment+=("QOR020_RECORDING=$(realpath --no-symlinks --canonicalize-missing "$2")")
        shift 2
        ;;
    --control)
        QOR020_CONTROL_SOCKET=$(realpath --no-symlinks --canonicalize-missing "$2")
        export QOR020_CONTROL_SOCKET
        shift 2
        ;;
    --help)
        usage
        exit 0
        ;;
    *) refuse "unknown option: $1 (--help explains)" ;;
    esac
done

if [ "${device[0]}" != qor020 ] && [ -n "${QOR020_CONTROL_SOCKET:-}" ]; then
    refuse "--control steers a simulated modem, and a replay is none"
fi

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
build cmake --build build/release --target TarvelWiMAXApp simctl "${device[0]}" "${recorder[@]}"

if [ "${device[0]}" = qor020 ]; then
    [ -z "${QOR020_SCENARIO:-}" ] || build/release/simctl --check "$QOR020_SCENARIO" || exit 2
    if [ -n "${QOR020_CONTROL_SOCKET:-}" ]; then
        echo "Steer the modem with: $PWD/build/release/simctl $QOR020_CONTROL_SOCKET" >&2
    fi
fi
if [ ${#recorder[@]} -gt 0 ]; then
    environment+=("LD_PRELOAD=$PWD/build/release/libqor020record.so")
fi
client=$PWD/build/release/TarvelWiMAXApp
cd "build/release/${device[1]}"
exec env "${environment[@]}" "$client"
