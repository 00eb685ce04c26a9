#!/usr/bin/env bash
# Builds everything, runs every check and every test, and ends with ctest's summary.
#   ./test.sh [--quick | --all]
#     --quick    what is changed against main, or against HEAD on main itself: the tests of the rooms
#                that changed, golden answers and checks; no sanitizers, clang-tidy, servers or browser
#     --all      clang-tidy reads every file, also those that have not changed since they passed
# The tests run twice: in the release build and, their names beginning with "asan.", in a build with
# the address and undefined-behaviour sanitizers. A test that fails is run once more, because those
# with web servers and browsers depend on what else the machine does; it has to fail twice to fail
# the run, and both outputs are shown. Packages that are missing are installed first.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
jobs=$(nproc)

usage() {
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
}
mode=full
case ${1:-} in
  '') ;;
  --quick) mode=quick ;;
  --all) export VELA_CHECK_ALL=1 ;;
  -h | --help) usage; exit 0 ;;
  *) usage >&2; exit 2 ;;
esac

build() {  # PRESET [TARGET...]
  local preset=$1
  shift
  echo "== Building $preset"
  cmake --preset "$preset" >"build/$preset.log"
  cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"} >>"build/$preset.log" 2>&1 || {
    tail -60 "build/$preset.log"
    exit 1
  }
}

mkdir -p build
if [ $mode = quick ]; then
  scripts/install_packages.sh build test
  selection=$(scripts/changed_tests.py)  # a line of targets, a line with the tests' names
  read -r -a targets < <(head -1 <<<"$selection")
  build release "${targets[@]}"
  echo "== Running the checks and the tests of what changed"
  exec ctest --test-dir build/release -j "$jobs" --output-on-failure --timeout 300 \
    -R "$(tail -1 <<<"$selection")" -E '^check\.tidy$'  # which reads every file the first time
fi

scripts/install_packages.sh build serve test site
scripts/fetch_real_content.sh build/real_content
build release
build asan

# One list of both builds, so that one run of ctest tells about all.
mkdir -p build/all
printf 'subdirs("%s")\n' "$PWD/build/release" "$PWD/build/asan" >build/all/CTestTestfile.cmake
echo "== Running the checks and tests"
exec ctest --test-dir build/all -j "$jobs" --output-on-failure --timeout 1200 --repeat until-pass:2
