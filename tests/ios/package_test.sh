#!/usr/bin/env bash
# The jailbreak packages, rootful and rootless, read back as a device would
# get them: dpkg-deb's listing and control fields, the filter naming exactly
# the bundle identifier given and SpringBoard, and the packaged dylib's load commands (its
# install name, the linker's signature kept, iOS 14 as its minimum, and the
# libraries it loads: the product's frameworks and the system's libraries,
# nothing else). No package without an identifier, none for one that is not.
# Side-loading into an unpacked app whose executable is EXECUTABLE: the
# executable loads the dylib from the app's Frameworks folder, where it is;
# an app whose executable is not Mach-O is refused and left as it was.
# Usage: package_test.sh SOURCE_ROOT DYLIB EXECUTABLE FRAMEWORK...
set -uo pipefail
root=$1
dylib=$2
executable=$3
shift 3
frameworks=("$@")
script="$root/scripts/package-ios.sh"
objdump=${QB_OBJDUMP:-llvm-objdump-14}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
fail() {
  echo "package_test: $*" >&2
  status=1
}

expected_libraries=$(
  for f in "${frameworks[@]}"; do echo "/System/Library/Frameworks/$f.framework/$f"; done
  printf '%s\n' /usr/lib/libobjc.A.dylib /usr/lib/libc++.1.dylib /usr/lib/libSystem.B.dylib
)

# One package: KIND (rootful or rootless), its folder prefix and architecture.
check_package() {
  local kind=$1 prefix=$2 arch=$3 out="$work/$1" deb listing info dir headers
  local flags=(--bundle-id com.example.Host --dylib "$dylib" --out "$out")
  [ "$kind" = rootless ] && flags+=(--rootless)
  "$script" deb "${flags[@]}" >"$work/$kind.log" 2>&1 || { cat "$work/$kind.log"; fail "$kind: packaging failed"; return; }
  deb="$out/quenby_0.1_$arch.deb"
  [ -f "$deb" ] || { fail "$kind: no $deb"; return; }

  listing=$(dpkg-deb -c "$deb")
  echo "== $kind: dpkg-deb -c"; echo "$listing"
  dir="./${prefix}Library/MobileSubstrate/DynamicLibraries"
  local files
  files=$(awk '$1 !~ /^d/ {print $NF}' <<<"$listing" | sort)
  [ "$files" = "$(printf '%s\n' "$dir/Quenby.dylib" "$dir/Quenby.plist")" ] ||
    fail "$kind: the package holds $(tr '\n' ' ' <<<"$files")instead of the dylib and its filter in $dir"
  grep -q ' root/root ' <<<"$listing" && ! grep -qv ' root/root ' <<<"$listing" || fail "$kind: files not owned by root"

  info=$(dpkg-deb -I "$deb")
  echo "== $kind: dpkg-deb -I"; echo "$info"
  for field in "Package: org.quenby.quenby" "Architecture: $arch" "Version: 0.1"; do
    grep -qxF " $field" <<<"$info" || fail "$kind: control has no '$field'"
  done
  grep -qE '^ Depends: .*firmware \(>= 14\.0\)' <<<"$info" || fail "$kind: no firmware dependency"

  dpkg-deb -x "$deb" "$out/unpacked"
  cmp -s "$dylib" "$out/unpacked/$dir/Quenby.dylib" || fail "$kind: the packaged dylib is not the one built"
  python3 - "$out/unpacked/$dir/Quenby.plist" <<'PY' || fail "$kind: the filter does not name exactly the host and SpringBoard"
import plistlib, sys
filt = plistlib.load(open(sys.argv[1], "rb"))
sys.exit(0 if filt == {"Filter": {"Bundles": ["com.example.Host", "com.apple.springboard"]}} else 1)
PY

  headers=$("$objdump" --macho --private-headers "$out/unpacked/$dir/Quenby.dylib")
  grep -A3 'cmd LC_ID_DYLIB' <<<"$headers" | grep -q 'name @rpath/libquenby.dylib ' || fail "$kind: install name"
  grep -q 'cmd LC_CODE_SIGNATURE' <<<"$headers" || fail "$kind: no code signature"
  grep -A4 'cmd LC_BUILD_VERSION' <<<"$headers" | grep -qw 'platform ios' || fail "$kind: not built for iOS"
  grep -A4 'cmd LC_BUILD_VERSION' <<<"$headers" | grep -qw 'minos 14.0' || fail "$kind: minimum OS is not 14.0"
  local loaded
  loaded=$(awk '/cmd LC_LOAD_DYLIB/ {getline; getline; print $2}' <<<"$headers" | sort)
  [ "$loaded" = "$(sort <<<"$expected_libraries")" ] ||
    fail "$kind: loads $(tr '\n' ' ' <<<"$loaded")instead of $(sort <<<"$expected_libraries" | tr '\n' ' ')"
}

check_package rootful "" iphoneos-arm
check_package rootless "var/jb/" iphoneos-arm64

app="$work/Host.app"
mkdir -p "$app"
cp "$executable" "$app/Host"
python3 -c 'import plistlib, sys; plistlib.dump({"CFBundleExecutable": "Host"}, open(sys.argv[1], "wb"))' "$app/Info.plist"
"$script" sideload --app "$app" --dylib "$dylib" >"$work/sideload.log" 2>&1 || { cat "$work/sideload.log"; fail "side-loading failed"; }
"$objdump" --macho --dylibs-used "$app/Host" | grep -qF "@executable_path/Frameworks/libquenby.dylib" ||
  fail "the side-loaded executable does not load the dylib"
cmp -s "$dylib" "$app/Frameworks/libquenby.dylib" || fail "the dylib is not in the app's Frameworks folder"
echo "not an executable" >"$app/Host"
rm -r "$app/Frameworks"
if "$script" sideload --app "$app" --dylib "$dylib" >/dev/null 2>&1; then fail "side-loaded into a non-Mach-O executable"; fi
[ ! -e "$app/Frameworks" ] && [ "$(cat "$app/Host")" = "not an executable" ] || fail "a refused side-load changed the app"

if "$script" deb --dylib "$dylib" --out "$work/c" >/dev/null 2>&1; then fail "packaged without a bundle id"; fi
if "$script" deb --bundle-id 'a</string><string>b' --dylib "$dylib" --out "$work/d" >/dev/null 2>&1; then
  fail "accepted a bundle id that breaks the filter"
fi
exit $status
