#!/usr/bin/env bash
# Starts the desktop program under Xvfb on the demo school and saves what a
# teacher sees: the splash, the three menus, the mark book list, an open
# book with marks typed and one refused, a column's menu, the cycle marks,
# assessment and mark list screens, the setup screen, the symbol
# distribution and the export, in Afrikaans and in English.
# Usage: scripts/screenshots.sh [OUTPUT_FOLDER]   (default: shots/)
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-shots}")
mkdir -p "$out"
program=$PWD/build/veldo-tally
[ -x "$program" ] || bash scripts/build.sh

[ -f build/user_info.txt ] && cp build/user_info.txt "$out/.user_info.txt"
display=:97
Xvfb $display -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
restore() {
    kill $xvfb 2>/dev/null || true
    if [ -f "$out/.user_info.txt" ]; then mv "$out/.user_info.txt" build/user_info.txt; else rm -f build/user_info.txt; fi
}
trap restore EXIT
sleep 1
export DISPLAY=$display QT_QPA_PLATFORM=xcb

shoot() { import -window root "$out/$1.png"; echo "  $out/$1.png"; }
key() { xdotool search --name VELDO-TALLY windowactivate --sync 2>/dev/null || true; xdotool key "$1"; sleep 0.8; }

start_program() {
    "$program" &
    app=$!
}
# The program started and the demo's data folder taken (DATA FOLDER, then
# Return in its dialog), at the top menu.
start_at_top_menu() {
    start_program
    sleep 3
    xdotool mousemove 372 489 click 1; sleep 1.5   # DATA FOLDER
    key Return
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
    # The folder dialog of DATA FOLDER opens on the demo's data folder (the
    # program's folder holds the folder last chosen; put back afterwards).
    printf '"%s"\r\n""\r\n""\r\n' "$drive/data" > build/user_info.txt

    start_program
    sleep 0.8; shoot "splash-$lang"
    sleep 2.2; shoot "punte_mnu-$lang"
    key 1; shoot "punte_menu1-$lang"
    stop_program

    start_program
    sleep 3
    xdotool mousemove 372 489 click 1; sleep 1.5   # DATA FOLDER
    shoot "data_folder-$lang"
    key Return
    key 2; shoot "punte_menu2-$lang"
    key 2; shoot "pboek_inlees-list-$lang"
    key Return; shoot "pboek_inlees-book-$lang"
    for k in 7 Return 9 period 5 Return 1 1; do xdotool key $k; sleep 0.2; done
    shoot "pboek_inlees-typing-$lang"
    key Return; shoot "pboek_inlees-refused-$lang"
    key Return
    # A heading's click opens the column's menu.
    xdotool mousemove 460 110 click 1; sleep 0.8
    shoot "kol_opsies-$lang"
    xdotool mousemove 530 120 click 1; sleep 0.8   # scaling
    shoot "scaling-$lang"
    xdotool type 65; key Return
    shoot "scaled-$lang"
    stop_program

    # Cycle marks: series 1 out of 50, effort keys too; a mark, a key, a
    # refused mark.
    start_at_top_menu
    key 1; key 1; shoot "punte_inlees-list-$lang"
    key Return; shoot "punte_inlees-total-$lang"
    xdotool type 50; key Return; shoot "punte_inlees-converting-$lang"
    key Return; shoot "punte_inlees-effort-$lang"
    key Return; shoot "punte_inlees-series-$lang"
    for k in 4 2 Return 3 Return 3 8 period 5 Return Return 5 1; do xdotool key $k; sleep 0.2; done
    shoot "punte_inlees-typing-$lang"
    key Return; shoot "punte_inlees-refused-$lang"
    key Return; key Escape
    stop_program

    # Assessment: series 1 out of 50 in the mode with every column, both
    # lookup lists on; a mark, then the lists beside the key and the
    # formative columns. Then the mark lists screen.
    printf '"%s"\r\n#TRUE#\r\n#TRUE#\r\n' "$drive/data" > "$drive/data/user_info.txt"
    start_at_top_menu
    key 1; key 2; shoot "obe_inlees-list-$lang"
    key Return; xdotool type 50; key Return; shoot "obe_inlees-mode-$lang"
    xdotool mousemove 553 592 click 1; sleep 0.3   # MULTI-ASSESSERING
    xdotool mousemove 639 619 click 1; sleep 0.8   # OK
    shoot "obe_inlees-converting-$lang"
    key Return; shoot "obe_inlees-series-$lang"
    for k in 4 2 Return; do xdotool key $k; sleep 0.2; done
    sleep 0.6; shoot "obe_inlees-effort-list-$lang"
    for k in 2 Return; do xdotool key $k; sleep 0.2; done
    sleep 0.6; shoot "obe_inlees-formative-list-$lang"
    stop_program

    start_at_top_menu
    key 1; key 3; shoot "punte_druk-list-$lang"
    key Return; shoot "punte_druk-chosen-$lang"
    stop_program

    # The setup screen: a book chosen, a row in the panel, the explanations.
    start_at_top_menu
    key 2; key 1; shoot "pboek_opstel-list-$lang"
    key Return; sleep 0.5
    for k in Down Down Down Down; do xdotool key $k; sleep 0.2; done
    sleep 0.5; shoot "pboek_opstel-panel-$lang"
    xdotool mousemove 400 300 click 3; sleep 1; shoot "pboek_opstel-explanations-$lang"
    xdotool mousemove 909 596 click 1; sleep 0.5   # kb_ok
    xdotool mousemove 611 697 click 1; sleep 0.8; shoot "pboek_opstel-copy-$lang"
    stop_program

    # Moving a learner from 8A to 10A, from the mark book input list.
    start_at_top_menu
    key 2; key 2
    xdotool mousemove 1005 697 click 1; sleep 1   # MOVE LEARNERS
    shoot "pboek_inlees-move-from-$lang"
    xdotool type 8A; key Return; xdotool type 10A; key Return
    sleep 0.5; shoot "pboek_inlees-move-list-$lang"
    stop_program

    # The symbol distribution and the export, from the mark book menu.
    start_at_top_menu
    key 2; key 5; shoot "simbole_druk-list-$lang"
    key Return; shoot "simbole_druk-grid-$lang"
    stop_program

    start_at_top_menu
    key 2; key 4; shoot "pboek_uitvoer-list-$lang"
    key Return; shoot "pboek_uitvoer-tasks-$lang"
    xdotool mousemove 300 189 click --repeat 2 --delay 80 1; sleep 1.5   # task 1
    shoot "pboek_uitvoer-folder-$lang"
    key Return; shoot "pboek_uitvoer-confirm-$lang"
    key Return; sleep 0.5; shoot "pboek_uitvoer-done-$lang"
    stop_program
    rm -rf "$drive"
done
echo "Screenshots in $out"
