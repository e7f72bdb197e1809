#!/usr/bin/env bash
# Checks the Debian package: what lintian says, that it is made of the same bytes elsewhere and at
# another time, and that it does what it should in a Debian root that has nothing else.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cd "$here/.."
. .ci/packages.sh
install_missing lintian=lintian mmdebstrap=mmdebstrap faketime=faketime

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
# What apt, as nobody, and the user of the bare root read.
chmod 755 "$scratch"

say() { echo "package: $*"; }

fail() {
    say "$*"
    exit 1
}

export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
package=$(packaging/build.sh)
say "$(basename "$package"), $(stat --format=%s "$package") bytes"

lintian --allow-root --display-info --fail-on error,warning,info "$package" ||
    fail "lintian has found something"

# The header suffices for a library author, in C and in C++.
dpkg-deb --extract "$package" "$scratch/tree"
headers=$scratch/tree/usr/include/tarvelwimaxapp
gcc -std=c99 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c "$headers/WiMAXDevice.h"
g++ -std=c++20 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c++ "$headers/Wire.h"

# All that is tracked or new, in a folder with a longer name, years later, somewhere else on earth,
# by the compiler itself.
another=$scratch/the-same-tree-in-a-folder-with-a-longer-name
mkdir "$another"
git ls-files -z --cached --others --exclude-standard |
    xargs -0 sh -c 'for file; do [ ! -e "$file" ] || printf "%s\0" "$file"; done' sh |
    tar --create --null --files-from=- | tar --extract --directory="$another"
later=$(env --unset=CMAKE_C_COMPILER_LAUNCHER --unset=CMAKE_CXX_COMPILER_LAUNCHER NO_FAKE_STAT=1 \
    TZ=Asia/Tokyo LC_ALL=C.UTF-8 faketime -f '+1000d' "$another/packaging/build.sh")
cmp "$package" "$later" || fail "another folder and another date give other bytes"
say "the same bytes in another folder at another date: $(sha256sum <"$package" | cut -d' ' -f1)"

# Debian's part of what this machine's apt is configured with.
apt-get indextargets --format '$(ORIGIN)|$(CREATED_BY)|deb $(REPO_URI) $(RELEASE) $(COMPONENT)' |
    sed -n 's/^Debian|Packages|//p' >"$scratch/sources.list"
mkdir "$scratch/given"
cp "$package" packaging/check_in_root.sh packaging/check_as_user.sh "$scratch/given"
cp tests/recordings/simulated-network-entry.output "$scratch/given"
if ! mmdebstrap --variant=minbase --format=null --quiet --dpkgopt=force-unsafe-io \
    --customize-hook="cp -r '$scratch/given' \"\$1\"/" \
    --customize-hook='chroot "$1" bash /given/check_in_root.sh' \
    "$(. /etc/os-release && echo "$VERSION_CODENAME")" /dev/null - <"$scratch/sources.list" \
    >"$scratch/root.log" 2>&1; then
    tail -60 "$scratch/root.log"
    fail "it does not do what it should in a bare root"
fi
sed -n 's/^checked: /package: in a bare root: /p' "$scratch/root.log"
say "all is well"
