#!/usr/bin/env bash
# Sets up the machine, builds and runs every test suite: the normal build, a consumer project and the
# example hosts built against an install in a temporary prefix (run without LD_LIBRARY_PATH), a
# plain-Makefile host built through pkg-config, the windowed hosts under Xvfb (idle cost, real
# events), the API reference, and the suites again under AddressSanitizer and
# UndefinedBehaviorSanitizer.
# Pass --quick to run only the normal build's tests.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh

quick=0
[ "${1:-}" = "--quick" ] && quick=1

echo "== build and test"
cmake --preset default >/dev/null
cmake --build --preset default
ctest --preset default

if [ $quick -eq 1 ]; then
    exit 0
fi

echo "== install to an outside prefix; build a consumer and the example hosts against it"
prefix="$(mktemp -d)"
consumer="$(mktemp -d)"
trap 'rm -rf "$prefix" "$consumer"' EXIT
cmake --install build/default --prefix "$prefix" >/dev/null
test -f "$prefix/share/doc/TrelvoGUI/LICENSE"
test -f "$prefix/share/doc/TrelvoGUI/LICENSE-DejaVu.txt"
cmake -S tests/consumer -B "$consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$consumer"
# Without LD_LIBRARY_PATH: the installed libraries find each other through their run path.
env -u LD_LIBRARY_PATH "$consumer/consumer"
# A host without CMake: a plain Makefile with pkg-config --cflags --libs trelvogui.
PKG_CONFIG_PATH="$(dirname "$(find "$prefix" -name trelvogui.pc)")" make -s -f tests/consumer/Makefile OUT="$consumer"
env -u LD_LIBRARY_PATH "$consumer/consumer-pkgconfig"

lines=$(wc -l < examples/minimal.cpp)
echo "minimal host: $lines lines"
[ "$lines" -le 80 ]
[ "$(wc -l < examples/qt_host.cpp)" -le 100 ]
# The 3D viewer's lines that talk to the library (code between its "// TrelvoGUI {" and
# "// TrelvoGUI }" marker lines, blank lines and comments aside).
viewer_lines=$(awk '/^[[:space:]]*\/\/ TrelvoGUI \{$/ {f = 1; next} /^[[:space:]]*\/\/ TrelvoGUI \}$/ {f = 0}
    f && !/^[[:space:]]*(\/\/.*)?$/ {n++} END {print n + 0}' examples/viewer.cpp)
echo "3D viewer: $viewer_lines library-facing lines"
[ "$viewer_lines" -gt 0 ] && [ "$viewer_lines" -le 60 ]
# The README shows the minimal host in full (its one ```cpp block); keep the copy true.
awk '/^```cpp$/ {f = 1; next} /^```$/ {f = 0} f' README.md | diff -u examples/minimal.cpp -

# Starts a host, waits for its first frame (the hosts then sleep until an event comes) and stops it.
first_frame() {
    local out
    out="$(mktemp)"
    env -u LD_LIBRARY_PATH TRELVOGUI_TRACE_FRAMES=1 "$@" >"$out" 2>&1 &
    local pid=$!
    for _ in $(seq 150); do
        grep -q "^frame 1$" "$out" && break
        sleep 0.2
    done
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    grep -q "^frame 1$" "$out" || { cat "$out"; rm -f "$out"; return 1; }
    rm -f "$out"
    echo "$(basename "$1"): first frame drawn"
}

if [ -x "$consumer/minimal" ]; then
    echo "== the backends and the windowed hosts under Xvfb"
    # The hosts untouched (frames drawn, CPU used) and driven by real events; the screen fits the Qt
    # host at device-pixel ratio 2 (1280 x 800). Without -noreset the server restarts whenever its
    # last client leaves, and a test connecting in that moment finds no display.
    # The 3D viewer is the one built against the install: the test drives it with real pointer events.
    TRELVO_VIEWER="$consumer/viewer" xvfb-run -a -s "-screen 0 1600x1200x24 -noreset" \
        ctest --preset default -R "Backend|WindowedHosts|ViewerHost"
    [ -x "$consumer/viewer" ]
    hosts=()
    for host in minimal sdl_host qt_host; do
        [ -x "$consumer/$host" ] && hosts+=("$consumer/$host")
    done
    xvfb-run -a -s "-screen 0 1024x768x24" \
        bash -c "$(declare -f first_frame)"'; for h in "$@"; do first_frame "$h" || exit 1; done' _ "${hosts[@]}"
    if [ -x build/default/examples/trelvogui_glfw_demo ]; then
        xvfb-run -a -s "-screen 0 1024x768x24" ./build/default/examples/trelvogui_glfw_demo --frames 5
    fi
fi

if command -v doxygen >/dev/null; then
    echo "== API reference (warnings fail it)"
    cmake --build --preset default --target docs
fi

echo "== sanitizers"
cmake --preset asan >/dev/null
cmake --build --preset asan
ctest --preset asan
