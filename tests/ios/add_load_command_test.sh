#!/usr/bin/env bash
# The load-command tool (scripts/add-load-command.py) on an arm64 executable
# linked like an app's: afterwards the executable loads the library, its
# earlier load commands are there unchanged and in order, and no byte past
# the load commands differs; a second run changes nothing. In a universal
# file only the arm64 slice gains it. Refused, the file untouched: a file
# that is not Mach-O, a universal file without arm64, an executable with no
# room left after its load commands (filled here with long ones).
# Usage: add_load_command_test.sh TOOL EXECUTABLE X86_64_OBJECT
set -uo pipefail
tool=$1
exe=$2
x86=$3
python=${QB_PYTHON:-python3}
objdump=${QB_OBJDUMP:-llvm-objdump-14}
lipo=${QB_LIPO:-llvm-lipo-14}
load="@executable_path/Frameworks/libquenby.dylib"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
fail() {
  echo "add_load_command_test: $*" >&2
  status=1
}

# The load commands from the first on, as llvm-objdump prints them.
commands() {
  "$objdump" --macho --private-headers "$@" | sed -n '/^Load command 0$/,$p'
}

# Runs the tool on FILE [LIBRARY] expecting it to refuse with MESSAGE, FILE unchanged.
refused() {
  local file=$1 message=$2 out
  shift 2
  cp "$file" "$work/before"
  if out=$("$python" "$tool" "$file" "$@" 2>&1); then
    fail "accepted $(basename "$file"): $out"
  fi
  grep -qF "$message" <<<"$out" || fail "refusing $(basename "$file") said '$out', not '$message'"
  cmp -s "$work/before" "$file" || fail "refusing $(basename "$file") changed it"
}

cp "$exe" "$work/app"
before=$(commands "$work/app")
size=$(stat -c %s "$work/app")
"$python" "$tool" "$work/app" || fail "the tool failed on the fixture"
after=$(commands "$work/app")
"$objdump" --macho --dylibs-used "$work/app" | grep -qF "$load" || fail "the executable does not load $load"
[ "${after:0:${#before}}" = "$before" ] || fail "the earlier load commands changed"
added=${after:${#before}}
[ "$(grep -c '^Load command' <<<"$added")" -eq 1 ] || fail "not exactly one load command added"
grep -q 'cmd LC_LOAD_DYLIB$' <<<"$added" && grep -qF "name $load " <<<"$added" ||
  fail "the added command is not LC_LOAD_DYLIB $load: $added"
# Only the header's counts and the new command's bytes may differ.
commands_end=$(( 32 + $("$objdump" --macho --private-headers "$work/app" | awk '$1 == "MH_MAGIC_64" {print $7; exit}') ))
last_change=$(cmp -l "$exe" "$work/app" | awk 'END {print $1 + 0}')
[ "$last_change" -gt 0 ] && [ "$last_change" -le "$commands_end" ] ||
  fail "bytes changed past the load commands (last at $last_change, commands end at $commands_end)"
[ "$(stat -c %s "$work/app")" -eq "$size" ] || fail "the file's size changed"
[ "$("$objdump" -d "$exe" | tail -n +3)" = "$("$objdump" -d "$work/app" | tail -n +3)" ] || fail "the code changed"

cp "$work/app" "$work/once"
out=$("$python" "$tool" "$work/app" 2>&1) || fail "a second run failed: $out"
cmp -s "$work/once" "$work/app" || fail "a second run changed the file"
grep -q 'nothing added' <<<"$out" || fail "a second run did not say it added nothing: $out"

"$lipo" -create "$exe" "$x86" -output "$work/universal"
"$lipo" -thin x86_64 "$work/universal" -output "$work/x86-before"
"$python" "$tool" "$work/universal" || fail "the tool failed on a universal file with arm64"
"$objdump" --macho --dylibs-used --arch=arm64 "$work/universal" | grep -qF "$load" || fail "the arm64 slice does not load $load"
"$lipo" -thin x86_64 "$work/universal" -output "$work/x86-after"
cmp -s "$work/x86-before" "$work/x86-after" || fail "the x86_64 slice changed"

echo "not an executable" >"$work/text"
refused "$work/text" "is not a Mach-O file"
"$lipo" -create "$x86" -output "$work/x86-only"
refused "$work/x86-only" "universal file with no arm64 slice (it has: x86_64)"
cp "$x86" "$work/x86-thin.o"
refused "$work/x86-thin.o" "with no arm64 slice (it has: x86_64)"
# Long names until the room is nearly gone; one more must be refused.
cp "$exe" "$work/full"
long=$(printf 'x%.0s' $(seq 1000))
tries=0
until ! "$python" "$tool" "$work/full" "@executable_path/$tries$long.dylib" >/dev/null 2>&1; do
  tries=$((tries + 1))
  [ "$tries" -lt 100 ] || { fail "100 long load commands added and still room"; break; }
done
refused "$work/full" "no room for the load command" "@executable_path/$tries$long.dylib"

exit $status
