#!/usr/bin/env bash
# Checks that each iOS backend file reaches the Apple interfaces its facade
# header names (tests/ios/apple_calls.txt): every listed selector is among
# the object file's message names, every `_` name and `class:` among its
# undefined symbols. A facade body left empty, or reaching the wrong call,
# fails here even though the dylib links.
# Usage: check_calls.sh TABLE OBJECT_DIR
set -euo pipefail
table=$1
objects=$2
nm=${QB_NM:-llvm-nm-14}
objdump=${QB_OBJDUMP:-llvm-objdump-14}
status=0
checked=0

while read -r file names; do
  case "$file" in '' | '#'*) continue ;; esac
  obj="$objects/$file.o"
  if [ ! -f "$obj" ]; then
    echo "check_calls: no object file for $file" >&2
    status=1
    continue
  fi
  selectors=$("$objdump" --macho --section=__TEXT,__objc_methname "$obj" | awk 'NR > 2 {print $2}')
  symbols=$("$nm" -u "$obj")
  for name in $names; do
    case "$name" in
      class:*) found=$(grep -cxF "_OBJC_CLASS_\$_${name#class:}" <<<"$symbols" || true) ;;
      _*) found=$(grep -cxF "$name" <<<"$symbols" || true) ;;
      *) found=$(grep -cxF "$name" <<<"$selectors" || true) ;;
    esac
    checked=$((checked + 1))
    [ "$found" -gt 0 ] || { echo "check_calls: $file does not reach $name" >&2; status=1; }
  done
done <"$table"

[ "$checked" -gt 0 ] || { echo "check_calls: nothing listed in $table" >&2; exit 1; }
[ "$status" -eq 0 ] || exit 1
echo "check_calls: $checked Apple interfaces reached where their facades name them"
