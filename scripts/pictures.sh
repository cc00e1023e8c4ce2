#!/usr/bin/env bash
# Regenerates the README's pictures from the simulator: the demo's picture
# story (the hidden main list, the panel) and the window editor's first
# dialog, scaled down to 390 pixels wide. Run after a build.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
bin="${BUILD_DIR:-$root/build/default}/tools/quenby-sim"
out="$root/docs/pictures"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

"$bin/quenby-sim" --pictures "$work/demo" demo >/dev/null
sed "s|@OUT@|$work|" "$root/scripts/pictures_editor.qbs" >"$work/editor.qbs"
"$bin/quenby-sim" run "$work/editor.qbs" >/dev/null

mkdir -p "$out"
"$bin/quenby-picture-shrink" "$work/demo/001-main.png" "$out/main-hidden.png" 390
"$bin/quenby-picture-shrink" "$(ls "$work"/demo/*-panel.png | head -n 1)" "$out/panel.png" 390
"$bin/quenby-picture-shrink" "$work/window-editor.png" "$out/window-editor.png" 390
ls -l "$out"
