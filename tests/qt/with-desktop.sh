#!/usr/bin/env bash
# Runs a command on its own virtual display with its own session bus, and
# stops both afterwards: the GUI tests never touch the user's desktop.
set -euo pipefail
source "$(dirname "$0")/../../scripts/desktop-env.sh"
trap desktop_stop EXIT
desktop_start_display
desktop_start_bus
"$@"
