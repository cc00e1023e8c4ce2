#!/usr/bin/env bash
# Regenerates the README's pictures from the simulator (scripts/pictures.qbs),
# scaled down to 390 pixels wide. Run after a build.
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
bin="${BUILD_DIR:-$root/build/default}/tools/quenby-sim"
out="$root/docs/pictures"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

sed "s|@OUT@|$work|" "$root/scripts/pictures.qbs" >"$work/pictures.qbs"
"$bin/quenby-sim" run "$work/pictures.qbs" >/dev/null

mkdir -p "$out"
for name in main-hidden contacts search faceid call panel window-editor lockscreen sharesheet; do
  "$bin/quenby-picture-shrink" "$work/$name.png" "$out/$name.png" 390
done
ls -l "$out"
