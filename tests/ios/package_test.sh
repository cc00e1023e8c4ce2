#!/usr/bin/env bash
# The jailbreak package's layout: the dylib and its filter beside it under
# Library/MobileSubstrate/DynamicLibraries, the filter naming exactly the
# bundle identifier given, var/jb/ for rootless, a firmware dependency; no
# package without an identifier, and none for an identifier that is not one.
# Usage: package_test.sh SOURCE_ROOT DYLIB
set -uo pipefail
root=$1
dylib=$2
script="$root/scripts/package-ios.sh"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
fail() {
  echo "package_test: $*" >&2
  status=1
}

# Unsigned, so the copy can be compared byte for byte whatever signer is installed.
"$script" deb --unsigned --bundle-id com.example.Host --dylib "$dylib" --out "$work/a" >/dev/null 2>&1 || fail "packaging failed"
dir="$work/a/root/Library/MobileSubstrate/DynamicLibraries"
cmp -s "$dylib" "$dir/Quenby.dylib" || fail "the dylib is not in $dir"
grep -q "<string>com.example.Host</string>" "$dir/Quenby.plist" || fail "the filter does not name the bundle"
[ "$(grep -c '<string>' "$dir/Quenby.plist")" -eq 1 ] || fail "the filter names more than the host"
grep -q '^Architecture: iphoneos-arm$' "$work/a/root/DEBIAN/control" || fail "rootful control file"
grep -q '^Depends: .*firmware (>= 14.0)' "$work/a/root/DEBIAN/control" || fail "no firmware dependency"

"$script" deb --rootless --bundle-id com.example.Host --dylib "$dylib" --out "$work/b" >/dev/null 2>&1 || fail "rootless packaging failed"
[ -f "$work/b/root/var/jb/Library/MobileSubstrate/DynamicLibraries/Quenby.plist" ] || fail "rootless tree not under var/jb"
[ -s "$work/b/root/var/jb/Library/MobileSubstrate/DynamicLibraries/Quenby.dylib" ] || fail "rootless tree has no dylib (signed as the machine allows)"

if "$script" deb --dylib "$dylib" --out "$work/c" >/dev/null 2>&1; then fail "packaged without a bundle id"; fi
if "$script" deb --bundle-id 'a</string><string>b' --dylib "$dylib" --out "$work/d" >/dev/null 2>&1; then
  fail "accepted a bundle id that breaks the filter"
fi
exit $status
