#!/usr/bin/env bash
# Regenerates the README's gallery: builds and runs the headless demo, then copies a few of its
# frames and the skin sheet to docs/images/. Frames are picked by name, not number, so the demo can
# gain steps without breaking this. Re-run after changing what the library draws, and commit.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset default >/dev/null
cmake --build --preset default --target trelvogui_demo
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
./build/default/examples/trelvogui_demo --out "$out" >/dev/null

mkdir -p docs/images
rm -f docs/images/*.png
for name in initial occlusion-on occlusion-term clicked notes-resized gizmo-moved-x gizmo-turned-y cube-plus-y light-dragged chart-hover chart-zoomed gizmo-plane-moved; do
    frame=$(ls "$out"/frame-*-"$name".png 2>/dev/null | head -n 1)
    if [ -z "$frame" ]; then
        echo "gallery: the demo wrote no frame named $name" >&2
        exit 1
    fi
    cp "$frame" "docs/images/$name.png"
done
cp "$out/skin-sheet.png" docs/images/skin-sheet.png
# The frames are small already (flat colours compress well); shrink them only if they grow.
if [ -x /usr/bin/convert ]; then
    for f in docs/images/*.png; do
        if [ "$(stat -c %s "$f")" -gt 150000 ]; then
            /usr/bin/convert "$f" -resize 50% "$f"
        fi
    done
fi
du -ch docs/images/*.png | tail -n 1
ls docs/images
