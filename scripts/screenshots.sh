#!/usr/bin/env bash
# Starts the desktop program under Xvfb on the demo school and saves what a
# teacher sees: the splash and the three menus, in Afrikaans and in English.
# Usage: scripts/screenshots.sh [OUTPUT_FOLDER]   (default: shots/)
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-shots}")
mkdir -p "$out"
program=$PWD/build/veldo-tally
[ -x "$program" ] || bash scripts/build.sh

display=:97
Xvfb $display -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null || true' EXIT
sleep 1
export DISPLAY=$display QT_QPA_PLATFORM=xcb

shoot() { import -window root "$out/$1.png"; echo "  $out/$1.png"; }
key() { xdotool search --name VELDO-TALLY windowactivate --sync 2>/dev/null || true; xdotool key "$1"; sleep 0.8; }

start_program() {
    "$program" &
    app=$!
}
stop_program() {
    kill $app 2>/dev/null || true
    wait $app 2>/dev/null || true
}

for lang in af en; do
    drive=$(mktemp -d)
    export KESTRALIN_DRIVE=$drive
    "$program" demo --data "$drive/data" >/dev/null
    flag=$([ $lang = af ] && echo '#TRUE#' || echo '#FALSE#')
    mkdir -p "$drive/ProgramData/KESTRALIN"
    printf '""\r\n%s\r\n' "$flag" > "$drive/ProgramData/KESTRALIN/setup.txt"

    start_program
    sleep 0.8; shoot "splash-$lang"
    sleep 2.2; shoot "punte_mnu-$lang"
    key 1; shoot "punte_menu1-$lang"
    stop_program

    start_program
    sleep 3
    key 2; shoot "punte_menu2-$lang"
    stop_program
    rm -rf "$drive"
done
echo "Screenshots in $out"
