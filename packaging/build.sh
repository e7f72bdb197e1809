#!/usr/bin/env bash
# Builds the Debian package of this tree and prints where it is. The same tree gives the same bytes,
# in any folder, at any time.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
. .ci/packages.sh
install_missing "${BUILD_PACKAGES[@]}" scdoc=scdoc dpkg-shlibdeps=dpkg-dev

export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
quietly cmake --preset package
quietly cmake --build build/package
rm -f build/package/*.deb
(cd build/package && quietly cpack)
echo "$PWD"/build/package/*.deb
