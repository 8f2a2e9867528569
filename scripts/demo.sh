#!/usr/bin/env bash
# Installs what is needed, builds, writes the demo school and runs the
# program on it. Everything lands under demo/ in the work tree; that folder
# stands for the root of the drive (KESTRALIN_DRIVE).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
export KESTRALIN_DRIVE="$PWD/demo"
data="$KESTRALIN_DRIVE/data"
mkdir -p "$KESTRALIN_DRIVE"
build/veldo-tally demo --data "$data"
echo
echo "Mark series of the demo school:"
build/veldo-tally series --data "$data"
echo
echo "The class list of series 1 ($data/punte1.dbf), first lines:"
build/veldo-tally dump "$data/punte1.dbf" | head -n 6
echo
echo "The demo data folder is $data; the drive root is $KESTRALIN_DRIVE."
# With a display the desktop program starts on the demo school; its folder
# dialog opens on the demo data folder.
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    printf '"%s"\r\n""\r\n""\r\n' "$data" > build/user_info.txt
    echo "Starting the desktop program; choose DATA FOLDER to open $data."
    exec build/veldo-tally
fi
