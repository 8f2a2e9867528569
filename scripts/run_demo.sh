#!/usr/bin/env bash
# The system's main job on a fresh demo school, without windows: a mark book
# opened and recalculated, its class averages, the book and its symbol
# distribution printed to PDF and to a workbook, and the final total sent to
# the administration program's tables. Every step is a command word of the
# program, so the demo is also a smoke test of the command line; a step that
# fails stops the demo with its message and a non-zero exit.
#
#   bash scripts/run_demo.sh PROGRAM DRIVE_ROOT
#
# DRIVE_ROOT stands for the root of the drive: the data folder is
# DRIVE_ROOT/data, the prints go to DRIVE_ROOT/prints.
set -euo pipefail
program=$1
export KESTRALIN_DRIVE=$2
data="$KESTRALIN_DRIVE/data"
prints="$KESTRALIN_DRIVE/prints"
mkdir -p "$KESTRALIN_DRIVE" "$prints"

# Runs one step; its output is shown indented, and a failure ends the demo.
step() {
    local what=$1
    shift
    echo "-- $what"
    local out
    if ! out=$("$@" 2>&1); then
        printf '%s\n' "$out" | sed 's/^/   /'
        echo "The demo stopped: $what failed." >&2
        exit 1
    fi
    [ -z "$out" ] || printf '%s\n' "$out" | sed 's/^/   /'
}

# The first line of a command's output (the demo lists every file it wrote).
first_line() {
    local out
    out=$("$@") || return 1
    printf '%s\n' "${out%%$'\n'*}"
}

step "Writing the demo school" first_line "$program" demo --data "$data"
step "Opening mark book 1 (grade 8 Afrikaans, class 8A); the book is rebuilt in name order" \
    "$program" open --data "$data" --series 1
step "Recalculating its totals" "$program" recalc --data "$data" --series 1
step "Class averages per column (field, column, percentage of its total)" \
    "$program" averages --data "$data" --series 1
step "Printing the mark book" "$program" print markbook --data "$data" --series 1 --pdf "$prints/markbook1.pdf"
step "Printing its symbol distribution" "$program" print symbols --data "$data" --series 1 --pdf "$prints/symbols1.pdf"
step "The mark book as a workbook" "$program" print markbook --data "$data" --series 1 --xlsx "$prints/markbook1.xlsx"
step "Sending the final total (column 22, TOTAAL) to the administration tables" \
    "$program" export --data "$data" --series 1 --task 21

echo "-- Files made:"
for f in "$prints/markbook1.pdf" "$prints/symbols1.pdf" "$prints/markbook1.xlsx" \
         "$data/punte1.dbf" "$data/obe_p1.dbf" "$KESTRALIN_DRIVE/marks1.dbf"; do
    [ -f "$f" ] || { echo "The demo stopped: $f was not made." >&2; exit 1; }
    echo "   $f"
done
