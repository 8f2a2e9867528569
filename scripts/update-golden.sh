#!/bin/bash
# Rewrites the golden files under tests/data from what the program gives now
# (optionally for one gtest filter), then shows what changed. Read the diff:
# a golden file is only as right as the output it was taken from.
set -euo pipefail
cd "$(dirname "$0")/.."
ninja -C build veldo_tests
(cd build/tests && VELDO_UPDATE_GOLDEN=1 QT_QPA_PLATFORM=offscreen ./veldo_tests --gtest_filter="${1:-*}" >/dev/null)
git status --short tests/data
git diff --stat tests/data
