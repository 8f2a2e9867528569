#!/usr/bin/env bash
# A printer for the print tests: the CUPS PDF printer VELDO-PDF, which writes
# each job as a PDF file into the PDF folder of the user who printed it.
# Starts the CUPS scheduler when none runs (a fresh machine or a container
# has no service manager to start it) and adds the queue once.
set -euo pipefail
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export LC_ALL=C
# lpstat -r answers 0 whether or not the scheduler runs: read what it says.
scheduler_runs() { lpstat -r 2>/dev/null | grep -q 'scheduler is running'; }
if ! scheduler_runs; then
  $SUDO cupsd
  for _ in $(seq 50); do scheduler_runs && break; sleep 0.1; done
fi
if ! lpstat -p VELDO-PDF >/dev/null 2>&1; then
  ppd=$(find /usr/share/ppd/cups-pdf -name 'CUPS-PDF_opt.ppd' | head -n 1)
  $SUDO lpadmin -p VELDO-PDF -E -v cups-pdf:/ -P "$ppd"
fi
lpstat -p VELDO-PDF
