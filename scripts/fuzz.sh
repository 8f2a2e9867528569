#!/usr/bin/env bash
# Runs every fuzz target for longer than the test command's short runs:
#
#   bash scripts/fuzz.sh [SECONDS]     (default 600 a target)
#
# Targets run two at a time (the machine has two cores). New inputs go to
# build-fuzz/fuzz_work/<target>; an input that crashes a target is saved as
# fuzz/corpus/<target>/crash-<sha1> so that the smoke run of the test command
# tries it from then on. Exits non-zero when a target crashed.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
export ASAN_OPTIONS=detect_leaks=0
if [ ! -x build-fuzz/fuzz_dbf_table ]; then
    cmake -S . -B build-fuzz -G Ninja -DVELDO_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ >/dev/null
fi
ninja -C build-fuzz $(cd fuzz && ls fuzz_*.cpp | sed 's/\.cpp$//')

run_one() {
    local name=$1 work="build-fuzz/fuzz_work/$1" seeds="fuzz/corpus/$1"
    mkdir -p "$work" "$seeds"
    if build-fuzz/"$name" -max_total_time="$seconds" -max_len=4096 -artifact_prefix="$seeds/" \
        -print_final_stats=1 "$work" "$seeds" > "build-fuzz/$name.log" 2>&1; then
        echo "$name: no crash in $seconds s ($(grep -o 'stat::number_of_executed_units: *[0-9]*' "build-fuzz/$name.log" | grep -o '[0-9]*$') runs)"
    else
        echo "$name: CRASHED, see build-fuzz/$name.log; the input is kept in $seeds"
        return 1
    fi
}

status=0
targets=$(cd fuzz && ls fuzz_*.cpp | sed 's/\.cpp$//')
set -- $targets
while [ $# -gt 0 ]; do
    run_one "$1" & first=$!
    second=""
    if [ $# -gt 1 ]; then run_one "$2" & second=$!; fi
    wait $first || status=1
    [ -z "$second" ] || wait $second || status=1
    shift; [ $# -gt 0 ] && shift
done
exit $status
