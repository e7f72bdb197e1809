#!/usr/bin/env bash
# Builds what goes onto an embedded target: the client and VendorSpecificMessageApp, which need
# nothing there but the C library and the device library. Prints where the tarball is.
set -euo pipefail

usage() {
    cat <<'TEXT'
Usage: packaging/target.sh MACHINE [--check]

  MACHINE   armhf, aarch64, mipsel or mips; native: this machine, for comparison
  --check   has an emulator run sessions with what is in the tarball, on the simulated modem

The tarball is build/target-MACHINE/tarvelwimaxapp-MACHINE.tar.gz. The programs find libqor020.so in
the working directory: unpack it beside the library.
TEXT
}

emulator=qemu-${1:-}
case ${1:-} in
armhf)
    triplet=arm-linux-gnueabihf
    emulator=qemu-arm
    ;;
aarch64) triplet=aarch64-linux-gnu ;;
mipsel) triplet=mipsel-linux-gnu ;;
mips) triplet=mips-linux-gnu ;;
native) triplet= ;;
--help)
    usage
    exit
    ;;
*)
    usage >&2
    exit 2
    ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")/.."
. .ci/packages.sh
install_missing cmake=cmake ninja=ninja-build g++=g++ \
    /usr/include/toml++/toml.h=libtomlplusplus-dev ${triplet:+"$triplet-g++=g++-$triplet"}

build=build/target-$1
programs=(TarvelWiMAXApp VendorSpecificMessageApp)
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
quietly cmake --preset "target-$1"
# The device library that they are linked with is the simulated modem, which stays here.
quietly cmake --build "$build" --target "${programs[@]}"

folder=$build/tarvelwimaxapp-$1
rm -rf "$folder"
mkdir "$folder"
for program in "${programs[@]}"; do
    "${triplet:+$triplet-}strip" --strip-all --remove-section=.comment --remove-section=.note \
        -o "$folder/$program" "$build/$program"
    # The loader and the mathematical functions are parts of the C library.
    others=$(readelf --dynamic "$folder/$program" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
        grep -vE '^(libc\.so\.6|libm\.so\.6|ld[a-z0-9.-]*\.so\.[0-9]|libqor020\.so)$' || true)
    if [ -n "$others" ]; then
        echo "target.sh: $program needs $others" >&2
        exit 1
    fi
done

tar --create --file="$folder.tar.gz" --directory="$build" --sort=name --owner=0 --group=0 \
    --numeric-owner --mode=755 --mtime="@$SOURCE_DATE_EPOCH" --format=ustar \
    --use-compress-program='gzip -9n' "tarvelwimaxapp-$1"
if [ "${2:-}" = --check ]; then
    [ -z "$triplet" ] || install_missing "$emulator=qemu-user"
    for session in life-of-a-link oma-dm-at-a-terminal statistics-during-a-handover; do
        tests/run_session.py ${triplet:+--emulator "$emulator -L /usr/$triplet"} \
            --client "$folder/TarvelWiMAXApp" --scripted "$build/libqor020.so" \
            --simulated "$build/libqor020.so" --scenarios sim/scenarios \
            "tests/sessions/sim/$session.session" >&2
    done
fi
echo "$PWD/$folder.tar.gz"
