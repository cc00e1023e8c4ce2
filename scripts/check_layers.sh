#!/usr/bin/env bash
# Fails when a file under src/ is in no layer, or includes a higher layer, a
# sideways neighbour (host and the core state; triggers and notify), or
# anything outside src/ (platform/ above all), naming both files. Every file
# counts, whatever its extension, and every spelling a compiler accepts:
# quotes or angle brackets, #import, spaces around the '#', '..' in the path,
# and paths relative to the including file's folder. The build's include roots
# (cmake/layers.cmake) stop only the plain spellings; this stops the rest.
# Layers, from the bottom: base; the facades rt, sys, ui; host and the core
# state; hiding; triggers and notify; panel; start-up.
#
#   scripts/check_layers.sh [ROOT]    ROOT holds src/ (the repository by default)
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# Sets rank and group for a path from the top of the tree; empty when in no layer.
layer_of() {
  case "$1" in
    src/base/*) rank=0 group=base ;;
    src/rt/* | src/sys/* | src/ui/*) rank=1 group=facade ;;
    src/core/*) rank=2 group=core ;;
    src/host/*) rank=2 group=host ;;
    src/hiding/*) rank=3 group=hiding ;;
    src/triggers/*) rank=4 group=triggers ;;
    src/notify/*) rank=4 group=notify ;;
    src/panel/*) rank=5 group=panel ;;
    src/startup/*) rank=6 group=startup ;;
    *) rank="" group="" ;;
  esac
}

# Sets REPLY to the path with its dots resolved on paper (a/b/../c is a/c),
# as a compiler would once the folders exist; empty when it climbs out of the tree.
normalise() {
  local -a parts out=()
  local part
  IFS=/ read -r -a parts <<<"$1"
  REPLY=""
  for part in "${parts[@]}"; do
    case "$part" in
      '' | .) ;;
      ..)
        [ ${#out[@]} -gt 0 ] || return 0
        unset 'out[-1]'
        ;;
      *) out+=("$part") ;;
    esac
  done
  local IFS=/
  REPLY="${out[*]}"
}

# Sets REPLY to the file an include lands on: a quoted one beside the including
# file first; then under src/, from the top of the tree, or under a platform's
# include roots. Empty when it is in none of them (a system header).
resolve() {
  local dir=$1 kind=$2 inc=$3 try
  local -a tries=("src/$inc" "$inc" "platform/$inc" "platform/sim/$inc" "platform/ios/$inc")
  [ "$kind" = '"' ] && tries=("$dir/$inc" "${tries[@]}")
  for try in "${tries[@]}"; do
    normalise "$try"
    [ -n "$REPLY" ] && [ -f "$REPLY" ] && return 0
  done
  REPLY=""
}

status=0
fail() {
  echo "check_layers: $*" >&2
  status=1
}

directive='^[[:space:]]*#[[:space:]]*(include_next|include|import)[[:space:]]*(["<])([^">]*)[">]'
while IFS= read -r file; do
  layer_of "$file"
  if [ -z "$rank" ]; then
    fail "$file is in no layer"
    continue
  fi
  own_rank=$rank own_group=$group
  while IFS=: read -r line text; do
    if ! [[ $text =~ $directive ]]; then
      fail "$file:$line: an include this check cannot read: $text"
      continue
    fi
    kind=${BASH_REMATCH[2]} inc=${BASH_REMATCH[3]}
    resolve "${file%/*}" "$kind" "$inc"
    target=$REPLY
    if [ -z "$target" ]; then
      [ "$kind" = '"' ] && fail "$file:$line includes $inc, found nowhere in the tree"
      continue
    fi
    layer_of "$target"
    if [ "${target#src/}" = "$target" ]; then
      fail "$file:$line includes $target, outside src/ (the system reaches a platform only through its facades)"
    elif [ -z "$rank" ]; then
      fail "$file:$line includes $target, which is in no layer"
    elif [ "$rank" -gt "$own_rank" ] || { [ "$rank" -eq "$own_rank" ] && [ "$group" != "$own_group" ]; }; then
      fail "$file:$line ($own_group) includes $target ($group): upward or sideways"
    fi
  done < <(grep -n -E '^[[:space:]]*#[[:space:]]*(include_next|include|import)([^[:alnum:]_]|$)' "$file" || true)
done < <(find src -type f ! -path src/CMakeLists.txt | sort)

[ "$status" -eq 0 ] && echo "check_layers: every include in src/ runs downward"
exit "$status"
