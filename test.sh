#!/usr/bin/env bash
# Builds everything, runs every check and every test, and ends with ctest's summary.
#   ./test.sh
# The tests run twice: in the release build and, as the one test "sanitizers" of the summary, in a
# build with the address and undefined-behaviour sanitizers. Packages that are missing are
# installed first.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
jobs=$(nproc)

scripts/install_packages.sh build serve test
scripts/fetch_real_content.sh build/real_content

for preset in release asan; do
  echo "== Building $preset"
  cmake --preset $preset >build/$preset.log
  cmake --build --preset $preset -j "$jobs" >>build/$preset.log 2>&1 || {
    tail -60 build/$preset.log
    exit 1
  }
done

# One list of both builds, so that one run of ctest tells about all. The checks of the source
# (format, includes, ...) do not depend on the build and are made once.
mkdir -p build/all
cat >build/all/CTestTestfile.cmake <<LIST
add_test(sanitizers ctest --test-dir "$PWD/build/asan" -j $jobs -LE check --output-on-failure)
set_tests_properties(sanitizers PROPERTIES TIMEOUT 2400 RUN_SERIAL TRUE)
subdirs("$PWD/build/release")
LIST
echo "== Running the checks and tests"
exec ctest --test-dir build/all -j "$jobs" --output-on-failure --timeout 1200
