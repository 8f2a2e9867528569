#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the demo need.
set -euo pipefail
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends \
  build-essential cmake ninja-build pkg-config clang libclang-rt-dev \
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev \
  libshp-dev libxlsxwriter-dev libfreexl-dev libzip-dev \
  googletest libgtest-dev libgmock-dev libbenchmark-dev \
  fonts-dejavu-core fonts-liberation poppler-utils xvfb xauth imagemagick xdotool \
  libreoffice-calc-nogui dbview strace cups printer-driver-cups-pdf gcovr \
  >/dev/null
