#!/usr/bin/env bash
# Line and branch coverage of the unit tests, sessions and storms over app/, ext/ and device/: a table,
# and what is not reached. Fails when that is more than tests/unreached.txt gives reasons for.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")"
. .ci/packages.sh

jobs=$(nproc)
build=build/coverage

install_missing "${BUILD_PACKAGES[@]}" /usr/include/gtest/gtest.h=libgtest-dev python3=python3
quietly cmake --preset coverage
quietly cmake --build "$build" -j "$jobs" --target unit_tests qor020_scripted qor020_storm qor020 TarvelWiMAXApp \
    VendorSpecificMessageApp
find "$build" -name '*.gcda' -delete

failed=0
"$build/tests/unit/unit_tests" --gtest_brief=1 || failed=1
# Most sessions wait for something most of the time, so more of them than processors run.
# Another user's client may not write the counters.
ctest --preset coverage -R '^(sessions|storm)/' -E another_user_owns -j $((jobs * 4)) --quiet || failed=1

tests/coverage_report.py "$build" || failed=1
exit $failed
