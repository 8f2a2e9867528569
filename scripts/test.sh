#!/usr/bin/env bash
# Installs what is needed, builds, and runs every test: the unit and
# program tests, and a short run of each fuzz target over outside bytes.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/pdf-printer.sh

# The fuzz targets need clang's libFuzzer; they get a build of their own,
# under AddressSanitizer and UndefinedBehaviorSanitizer, which also builds
# the program and the unit tests so that the whole suite runs under them.
# Leaks are not looked for (Qt and fontconfig keep what they load); any
# other finding ends the test that made it.
export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
cmake -S . -B build-fuzz -G Ninja -DVELDO_FUZZ=ON -DVELDO_SANITIZED_TESTS=ON -DVELDO_BENCH=OFF \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
ninja -C build-fuzz

bash scripts/build.sh -DVELDO_FUZZ_DIR="$PWD/build-fuzz"
export QT_QPA_PLATFORM=offscreen
echo "== The tests, and a short run of each fuzz target"
(cd build && ctest --output-on-failure -j2)
echo "== The tests under AddressSanitizer and UndefinedBehaviorSanitizer"
(cd build-fuzz && ctest --output-on-failure -j2)
