#!/usr/bin/env bash
# Builds everything, runs every check and every test, and ends with ctest's summary.
#   ./test.sh
# The tests run twice: in the release build and, their names beginning with "asan.", in a build with
# the address and undefined-behaviour sanitizers. A test that fails is run once more, because those
# with web servers and browsers depend on what else the machine does; it has to fail twice to fail
# the run, and both outputs are shown. Packages that are missing are installed first.
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

# One list of both builds, so that one run of ctest tells about all.
mkdir -p build/all
printf 'subdirs("%s")\n' "$PWD/build/release" "$PWD/build/asan" >build/all/CTestTestfile.cmake
echo "== Running the checks and tests"
exec ctest --test-dir build/all -j "$jobs" --output-on-failure --timeout 1200 --repeat until-pass:2
