#!/usr/bin/env bash
# Sets up the machine (with the peer library for the side-by-side benchmark), builds the optimised
# benchmark preset and runs the Google Benchmark cases and the peer benchmark. Arguments go to the
# Google Benchmark executable (for example --benchmark_filter=Gizmo).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
if ! dpkg-query -W -f='${Status}' libimgui-dev 2>/dev/null | grep -q "install ok installed"; then
    SUDO=""
    [ "$(id -u)" -ne 0 ] && SUDO="sudo"
    $SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends libimgui-dev
fi
cmake --preset bench >/dev/null
cmake --build --preset bench
./build/bench/bench/trelvogui_bench --benchmark_min_time=0.5 "$@"
if [ -x build/bench/bench/trelvogui_peer_bench ]; then
    ./build/bench/bench/trelvogui_peer_bench
    # Memory of the larger sizes, each in a process of its own (the run above gives N = 10's).
    for n in 100 1000; do
        ./build/bench/bench/trelvogui_peer_bench --case memory --n "$n" | grep "^RATIO memory "
    done
    # The same with compact id layers (RATIO memory_compact), every size in a process of its own.
    for n in 10 100 1000; do
        ./build/bench/bench/trelvogui_peer_bench --case memory --n "$n" --compact-ids | grep "^RATIO memory_compact "
    done
fi
if [ -x build/bench/bench/trelvogui_chart_peer_bench ]; then
    ./build/bench/bench/trelvogui_chart_peer_bench
fi
