#!/usr/bin/env bash
# Installs what is needed, builds, and runs every test: the unit and
# program tests, and a short run of each fuzz target over outside bytes.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh

# The fuzz targets need clang's libFuzzer; they get a build of their own.
cmake -S . -B build-fuzz -G Ninja -DVELDO_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
ninja -C build-fuzz

bash scripts/build.sh -DVELDO_FUZZ_DIR="$PWD/build-fuzz"
export QT_QPA_PLATFORM=offscreen
cd build
ctest --output-on-failure -j2
