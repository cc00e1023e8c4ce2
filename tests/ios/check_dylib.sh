#!/usr/bin/env bash
# Checks an iOS build's dylib: an arm64 Mach-O dylib with an initialiser,
# every undefined symbol bound to a library it loads (none left to dynamic
# lookup), the iOS 15 names of the declaration set bound weakly, ARC and
# blocks in use. What the libraries do not export is the link's to refuse
# (tests/ios/link_rejects.sh). Also fails when a facade header has no file of
# its own in platform/ios. Ends with the `file` line.
# Usage: check_dylib.sh DYLIB SOURCE_ROOT
set -euo pipefail
dylib=$1
root=$2
nm=${QB_NM:-llvm-nm-14}
objdump=${QB_OBJDUMP:-llvm-objdump-14}
filecmd=${QB_FILE:-file}
status=0

fail() {
  echo "check_dylib: $*" >&2
  status=1
}

kind=$("$filecmd" -b "$dylib")
case "$kind" in
  "Mach-O 64-bit arm64 dynamically linked shared library"*) ;;
  *) fail "not an arm64 Mach-O dylib: $kind" ;;
esac

if ! "$objdump" --section-headers "$dylib" | grep -q '__mod_init_func'; then
  fail "no initialiser (__mod_init_func): the library would not run at load"
fi

# The initialisers must include the library's entry (platform/ios/entry.mm):
# the 64-bit little-endian pointers of __mod_init_func against its address.
entry=$("$nm" "$dylib" | awk '$3 ~ /quenbyLoaded/ && !seen++ {print $1}')
if [ -z "$entry" ]; then
  fail "no library entry function in the dylib"
else
  words=$("$objdump" -s --section=__mod_init_func "$dylib" | awk '/^ [0-9a-f]+ / {for (i = 2; i <= 5; i++) if (length($i) == 8 && $i ~ /^[0-9a-f]+$/) print $i}')
  le() { echo "${1:6:2}${1:4:2}${1:2:2}${1:0:2}"; }
  found=0
  set -- $words
  while [ $# -ge 2 ]; do
    if [ $((16#$(le "$2")$(le "$1"))) -eq $((16#$entry)) ]; then found=1; fi
    shift 2
  done
  [ "$found" -eq 1 ] || fail "the library entry is not among the initialisers"
fi

# Every undefined symbol is bound to a library the dylib loads: the link
# against the SDK's stubs resolved it. One left to dynamic lookup is a name no
# stub exports, found or not only on the phone.
# The declaration set's classes and functions newer than iOS 14 must be bound
# weakly, or the dylib would not load there.
declared=$(python3 "$root/scripts/declared_symbols.py" "$root/platform/ios/check-sdk/include" 14.0)
weakDeclared=$(awk '$2 == "weak" {print $1}' <<<"$declared")
bindings=$("$nm" -m "$dylib" | grep '(undefined)' || true)
count=0
while IFS= read -r line; do
  [ -z "$line" ] && continue
  count=$((count + 1))
  sym=$(awk '{for (i = 1; i < NF; i++) if ($i == "external") {print $(i + 1); exit}}' <<<"$line")
  case "$line" in
    *"(from "*) ;;
    *) fail "bound by dynamic lookup, from no library: $sym" ;;
  esac
  if grep -qxF "$sym" <<<"$weakDeclared" && [[ "$line" != *"weak external"* ]]; then
    fail "binds $sym strongly: it is newer than iOS 14, the dylib would not load there"
  fi
done <<<"$bindings"
if [ "$count" -eq 0 ]; then fail "no undefined symbols at all: not a real link of the backend"; fi
undefined=$("$nm" -u "$dylib")
# The backend was compiled as ARC code with blocks: the compiler's ARC entry
# points and the stack-block class are referenced.
grep -qx '_objc_storeStrong' <<<"$undefined" || fail "no ARC entry points: not built with -fobjc-arc"
grep -qx '__NSConcreteStackBlock' <<<"$undefined" || fail "no blocks in the backend"

# Every facade header with out-of-line functions has an iOS file of the same
# name. Headers of plain data, those whose code is portable (a .cpp beside
# them in src/), and templates over the other facades (sys/guarded) need none.
for header in "$root"/src/rt/*.hpp "$root"/src/sys/*.hpp "$root"/src/ui/*.hpp; do
  dir=$(basename "$(dirname "$header")")
  name=$(basename "$header" .hpp)
  [ -f "$root/src/$dir/$name.cpp" ] && continue
  case "$dir/$name" in rt/types | rt/geometry | sys/guarded) continue ;; esac
  [ -f "$root/platform/ios/$dir/$name.mm" ] || fail "facade src/$dir/$name.hpp has no platform/ios/$dir/$name.mm"
done

[ "$status" -eq 0 ] || exit 1
echo "check_dylib: $count undefined symbols, each bound to a library the dylib loads; initialiser present"
"$filecmd" "$dylib"
