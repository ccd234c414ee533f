#!/usr/bin/env bash
# Sets up the machine, builds and runs every test suite: the normal build, a consumer project and the
# minimal host built against an install in a temporary prefix (run without LD_LIBRARY_PATH), the
# windowed hosts under Xvfb, the API reference, and the suites again under AddressSanitizer and
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

echo "== install to an outside prefix; build a consumer and the minimal host against it"
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

lines=$(wc -l < examples/minimal.cpp)
echo "minimal host: $lines lines"
[ "$lines" -le 80 ]
# The README shows the minimal host in full (its one ```cpp block); keep the copy true.
awk '/^```cpp$/ {f = 1; next} /^```$/ {f = 0} f' README.md | diff -u examples/minimal.cpp -

if [ -x "$consumer/minimal" ]; then
    echo "== windowed hosts and the GLFW backend's tests under Xvfb"
    xvfb-run -a -s "-screen 0 1024x768x24" ctest --preset default -R GLFWBackend
    env -u LD_LIBRARY_PATH xvfb-run -a -s "-screen 0 1024x768x24" "$consumer/minimal" 5
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
