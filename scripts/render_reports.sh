#!/usr/bin/env bash
# Renders the demo school's reports as a teacher would print them: the mark
# books of series 1 and 5 (totals recalculated), the symbol distribution of
# series 1 and the setup of series 1, to PDF and to PNG pages.
# Usage: scripts/render_reports.sh [OUTPUT_FOLDER]   (default: reports-out/)
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-reports-out}")
mkdir -p "$out"
program=$PWD/build/veldo-tally
[ -x "$program" ] || bash scripts/build.sh
export KESTRALIN_DRIVE=$(mktemp -d)
trap 'rm -rf "$KESTRALIN_DRIVE"' EXIT
data=$KESTRALIN_DRIVE/data
"$program" demo --data "$data" >/dev/null
for n in 1 5; do "$program" recalc --data "$data" --series $n >/dev/null; done

"$program" print markbook --data "$data" --series 1 --pdf "$out/markbook-1.pdf" --lang af
"$program" print markbook --data "$data" --series 5 --pdf "$out/markbook-5.pdf"
"$program" print symbols --data "$data" --series 1 --pdf "$out/symbols-1.pdf" --lang af
"$program" print setup --data "$data" --series 1 --pdf "$out/setup-1.pdf"
"$program" print symbols --data "$data" --series 1 --xlsx "$out/symbols-1.xlsx"
for pdf in "$out"/*.pdf; do pdftoppm -png -r 80 "$pdf" "${pdf%.pdf}"; done
ls "$out"
