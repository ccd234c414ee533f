#!/usr/bin/env bash
# Sets up the machine, builds and runs every test suite: the normal build, a consumer project built
# against a fresh install, and the suites again under AddressSanitizer and UndefinedBehaviorSanitizer.
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

echo "== install and build a consumer project against it"
rm -rf build/install build/consumer
cmake --install build/default --prefix build/install >/dev/null
cmake -S tests/consumer -B build/consumer -G Ninja -DCMAKE_PREFIX_PATH="$PWD/build/install" >/dev/null
cmake --build build/consumer
LD_LIBRARY_PATH="$PWD/build/install/lib" ./build/consumer/consumer

if [ -x build/default/examples/trelvogui_glfw_demo ]; then
    echo "== interactive demo smoke test under Xvfb"
    xvfb-run -a -s "-screen 0 1024x768x24" ./build/default/examples/trelvogui_glfw_demo --frames 5
fi

echo "== sanitizers"
cmake --preset asan >/dev/null
cmake --build --preset asan
ctest --preset asan
