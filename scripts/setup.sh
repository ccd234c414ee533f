#!/usr/bin/env bash
# Installs the Debian packages the project needs, skipping those already present.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    libboost-dev libglm-dev libglew-dev libglu1-mesa-dev libpng-dev
    libfreetype-dev libfontconfig-dev fonts-dejavu-core
    libegl-dev libegl-mesa0 libgl1-mesa-dri libgl-dev
    libgtest-dev libbenchmark-dev
    libglfw3-dev xvfb xauth
    libsdl2-dev qt6-base-dev libqt6opengl6-dev # the optional SDL and Qt backends
    xdotool # real events for the windowed hosts' tests
    doxygen
    clang # the fuzz preset (libFuzzer)
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    echo "setup: all packages present"
    exit 0
fi

echo "setup: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
