#!/usr/bin/env bash
# Line and branch coverage of the whole test suite, per folder of the
# program: a build of its own (build-coverage/, gcc --coverage, no
# optimisation), every test but the fuzz runs, then gcovr's figures summed
# per folder. Run scripts/setup.sh and scripts/pdf-printer.sh first.
# Usage: scripts/coverage.sh [SUMMARY.json]
set -euo pipefail
cd "$(dirname "$0")/.."
summary=$(realpath -m "${1:-build-coverage/coverage.json}")
cmake -S . -B build-coverage -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVELDO_BENCH=OFF \
  -DCMAKE_C_FLAGS="--coverage -fprofile-update=atomic" -DCMAKE_CXX_FLAGS="--coverage -fprofile-update=atomic" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
ninja -C build-coverage
find build-coverage -name '*.gcda' -delete
# Tests of read-only files run again as the nobody account; its profile
# data counts too, so the build's folders and the data files it makes are
# open to it.
chmod -R a+rwX build-coverage
# Two tests look at what the program prints as another user and at its
# system calls; the profile files of this build add to both, so they may
# fail here and only here.
(umask 000 && cd build-coverage && QT_QPA_PLATFORM=offscreen ctest -j2 -E fuzz | tail -n 8) || true
# Branches that only an exception or the compiler's own code can take are
# left out: they are not the program's decisions.
gcovr -r . --object-directory build-coverage -j 2 \
  --filter '(util|store|shell|markbook|input|reports|exchange|gui|app)/' \
  --exclude-throw-branches --exclude-unreachable-branches --gcov-ignore-parse-errors \
  --json-summary "$summary" >/dev/null
python3 - "$summary" <<'PY'
import json, sys
from collections import defaultdict
files = json.load(open(sys.argv[1]))["files"]
sums = defaultdict(lambda: [0, 0, 0, 0])
for f in files:
    s = sums[f["filename"].split("/")[0]]
    s[0] += f["line_covered"]; s[1] += f["line_total"]
    s[2] += f["branch_covered"]; s[3] += f["branch_total"]
total = [sum(s[i] for s in sums.values()) for i in range(4)]
pct = lambda a, b: f"{100.0 * a / b:5.1f}%" if b else "   - "
print(f"{'folder':10} {'lines':>16} {'branches':>18}")
for name in sorted(sums) + ["all"]:
    s = total if name == "all" else sums[name]
    print(f"{name:10} {pct(s[0], s[1])} {s[0]:>5}/{s[1]:<5} {pct(s[2], s[3])} {s[2]:>6}/{s[3]:<6}")
PY
