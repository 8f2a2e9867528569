#!/usr/bin/env bash
# Installs what is needed, builds, writes the demo school and runs the
# program on it. Everything lands under demo/ in the work tree; that folder
# stands for the root of the drive (KESTRALIN_DRIVE) and demo/data is the
# data folder. Without a display the main job runs on the demo school (see
# scripts/run_demo.sh); with one, the desktop program starts on it.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
drive="$PWD/demo"
rm -rf "$drive"
if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec bash scripts/run_demo.sh "$PWD/build/veldo-tally" "$drive"
fi
export KESTRALIN_DRIVE="$drive"
data="$drive/data"
build/veldo-tally demo --data "$data" | head -n 1
# The folder dialog of DATA FOLDER opens on the demo data folder.
printf '"%s"\r\n""\r\n""\r\n' "$data" > build/user_info.txt
echo "The desktop program starts: choose a language, DATA FOLDER and $data, then MARK BOOK (PUNTEBOEK)."
exec build/veldo-tally
