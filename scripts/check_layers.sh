#!/usr/bin/env bash
# Fails when a file under src/ includes a higher layer, a sideways neighbour
# (host and the core state; triggers and notify), or anything from platform/.
# Layers, from the bottom: base; the facades rt, sys, ui; host and the core
# state; hiding; triggers and notify; panel; start-up (src/core/startup.*).
set -euo pipefail
cd "$(dirname "$0")/.."

# Prints "rank group" for a path under src/ (without the src/ prefix).
layer_of() {
  case "$1" in
    base/*) echo "0 base" ;;
    rt/* | sys/* | ui/*) echo "1 facade" ;;
    core/startup.*) echo "6 startup" ;;
    core/*) echo "2 core" ;;
    host/*) echo "2 host" ;;
    hiding/*) echo "3 hiding" ;;
    triggers/*) echo "4 triggers" ;;
    notify/*) echo "4 notify" ;;
    panel/*) echo "5 panel" ;;
    *) echo "" ;;
  esac
}

status=0
while IFS= read -r file; do
  rel=${file#src/}
  read -r rank group <<<"$(layer_of "$rel")"
  if [ -z "${rank:-}" ]; then
    echo "check_layers: $file is in no layer" >&2
    status=1
    continue
  fi
  while IFS=: read -r line inc; do
    [ -n "$inc" ] || continue
    if [ ! -f "src/$inc" ]; then
      echo "check_layers: $file:$line includes $inc, which is not under src/ (the system reaches a platform only through its facades)" >&2
      status=1
      continue
    fi
    read -r irank igroup <<<"$(layer_of "$inc")"
    if [ "$irank" -gt "$rank" ] || { [ "$irank" -eq "$rank" ] && [ "$igroup" != "$group" ]; }; then
      echo "check_layers: $file:$line ($group) includes src/$inc ($igroup): upward or sideways" >&2
      status=1
    fi
  done < <(grep -n -o -E '^#include "[^"]+"' "$file" | sed -E 's/^([0-9]+):#include "(.*)"/\1:\2/')
done < <(find src -name '*.hpp' -o -name '*.cpp' | sort)

[ "$status" -eq 0 ] && echo "check_layers: every include in src/ runs downward"
exit "$status"
