#!/usr/bin/env bash
# Fails when a file of platform/sim includes a folder of it that its layer may
# not include (the table in cmake/sim_layers.cmake, read here, not copied),
# anything of src/ beyond base and the facade headers, or a file by a path
# relative to itself, naming both. The build's include roots stop the plain
# spellings; this stops the rest.
#
#   scripts/check_sim_layers.sh [ROOT]    ROOT holds platform/sim (the repository by default)
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

declare -A allowed
while read -r layer rest; do
  list=""
  for word in $rest; do
    if [[ $word =~ ^\$\{QUENBY_SIM_LAYER_([a-z]+)\}$ ]]; then
      list+=" ${allowed[${BASH_REMATCH[1]}]}"
    else
      list+=" $word"
    fi
  done
  allowed[$layer]="$list "
done < <(sed -nE 's/^set\(QUENBY_SIM_LAYER_([a-z]+) (.*)\)$/\1 \2/p' cmake/sim_layers.cmake)
[ ${#allowed[@]} -gt 0 ] || { echo "check_sim_layers: no layers in cmake/sim_layers.cmake" >&2; exit 1; }

# The layer a file belongs to: its folder, the facade folders together, the
# process for the files at the top.
layer_of() {
  local rel=${1#platform/sim/}
  case "$rel" in
    */*) REPLY=${rel%%/*} ;;
    *) REPLY=process ;;
  esac
  case "$REPLY" in rt | sys | ui) REPLY=facades ;; esac
}

status=0
fail() {
  echo "check_sim_layers: $*" >&2
  status=1
}

directive='^[[:space:]]*#[[:space:]]*(include_next|include|import)[[:space:]]*(["<])([^">]*)[">]'
while IFS= read -r file; do
  layer_of "$file"
  layer=$REPLY
  if [ -z "${allowed[$layer]:-}" ]; then
    fail "$file is in no layer (cmake/sim_layers.cmake)"
    continue
  fi
  while IFS=: read -r line text; do
    [[ $text =~ $directive ]] || {
      fail "$file:$line: an include this check cannot read: $text"
      continue
    }
    kind=${BASH_REMATCH[2]} inc=${BASH_REMATCH[3]}
    if [ "$kind" = '"' ] && [ -f "${file%/*}/$inc" ] && [ "${inc#sim/}" = "$inc" ]; then
      fail "$file:$line includes $inc relative to itself (write sim/… or the facade's path)"
      continue
    fi
    case "$inc" in
      sim/process.hpp) folder=process ;;
      sim/*/*) folder=${inc#sim/} folder=${folder%%/*} ;;
      sim/*) fail "$file:$line includes $inc, which is in no folder"; continue ;;
      base/* | rt/* | sys/* | ui/*) continue ;;
      *) [ -e "src/$inc" ] && fail "$file:$line includes src/$inc (only base and the facade headers)"; continue ;;
    esac
    case "${allowed[$layer]}" in
      *" $folder "*) ;;
      *) fail "$file:$line ($layer) includes $inc ($folder): not in its layer's list" ;;
    esac
  done < <(grep -n -E '^[[:space:]]*#[[:space:]]*(include_next|include|import)([^[:alnum:]_]|$)' "$file" || true)
done < <(find platform/sim -type f \( -name '*.cpp' -o -name '*.hpp' -o -name '*.h' \) | sort)

[ "$status" -eq 0 ] && echo "check_sim_layers: every include in platform/sim runs downward"
exit "$status"
