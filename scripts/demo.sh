#!/usr/bin/env bash
# Sets up the machine, builds, and runs the headless demo (writes PNG frames and prints their paths).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target trelvogui_demo
./build/default/examples/trelvogui_demo "$@"
