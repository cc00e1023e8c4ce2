#!/usr/bin/env bash
# Lays out the jailbreak package of libquenby.dylib, or places the dylib in an
# unpacked app for side-loading. The host app's bundle identifier is a setting
# (--bundle-id, or QUENBY_HOST_BUNDLE_ID in the ios build), never built in.
#
#   package-ios.sh deb --bundle-id ID [--dylib PATH] [--out DIR] [--version V] [--rootless] [--unsigned]
#       DIR/root/Library/MobileSubstrate/DynamicLibraries/Quenby.dylib and
#       Quenby.plist (the loader's filter: only the host app loads it), DEBIAN/control,
#       and DIR/quenby_V_ARCH.deb when dpkg-deb is available. --rootless puts
#       the tree under var/jb/ for rootless jailbreaks. --unsigned leaves the
#       dylib as built (otherwise ldid or codesign fake-signs it when at hand).
#   package-ios.sh sideload --app PATH/Host.app [--dylib PATH]
#       Copies the dylib into Host.app/Frameworks/ and, when insert_dylib is
#       available, adds the load command @executable_path/Frameworks/libquenby.dylib
#       to the app's executable, then checks that the executable lists it
#       (otool or llvm-objdump); signing and installing are left to the person
#       (see README).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
mode=${1:-}
[ -n "$mode" ] && shift
dylib="$here/build/ios/platform/ios/libquenby.dylib"
out="$here/build/ios/package"
version="0.1"
bundle_id=""
app=""
rootless=0
signed=1

usage() {
  sed -n '2,21p' "$0" | sed 's/^# \{0,1\}//' >&2
  exit 2
}

while [ $# -gt 0 ]; do
  case "$1" in
    --bundle-id) bundle_id=$2; shift 2 ;;
    --dylib) dylib=$2; shift 2 ;;
    --out) out=$2; shift 2 ;;
    --version) version=$2; shift 2 ;;
    --app) app=$2; shift 2 ;;
    --rootless) rootless=1; shift ;;
    --unsigned) signed=0; shift ;;
    *) usage ;;
  esac
done

die() {
  echo "package-ios: $*" >&2
  exit 1
}

[ -f "$dylib" ] || die "no dylib at $dylib (build it with: cmake --preset ios && cmake --build --preset ios)"

# Fake-signs for a jailbroken device when a signer is at hand.
sign() {
  if [ "$signed" -eq 0 ]; then
    return
  elif command -v ldid >/dev/null; then
    ldid -S "$1"
  elif command -v codesign >/dev/null; then
    codesign -f -s - "$1"
  else
    echo "package-ios: no ldid or codesign; $1 is unsigned" >&2
  fi
}

case "$mode" in
  deb)
    [ -n "$bundle_id" ] || die "--bundle-id is required: the host app's bundle identifier"
    [[ "$bundle_id" =~ ^[A-Za-z0-9][A-Za-z0-9.-]*$ ]] || die "not a bundle identifier: $bundle_id"
    prefix=""
    arch=iphoneos-arm
    if [ "$rootless" -eq 1 ]; then
      prefix="var/jb/"
      arch=iphoneos-arm64
    fi
    root="$out/root"
    rm -rf "$root"
    libdir="$root/${prefix}Library/MobileSubstrate/DynamicLibraries"
    mkdir -p "$libdir" "$root/DEBIAN"
    cp "$dylib" "$libdir/Quenby.dylib"
    sign "$libdir/Quenby.dylib"
    cat >"$libdir/Quenby.plist" <<PLIST
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Filter</key>
	<dict>
		<key>Bundles</key>
		<array>
			<string>$bundle_id</string>
		</array>
	</dict>
</dict>
</plist>
PLIST
    cat >"$root/DEBIAN/control" <<CONTROL
Package: org.quenby.quenby
Name: Quenby
Version: $version
Architecture: $arch
Description: Keeps chosen contacts out of sight in $bundle_id.
Maintainer: Quenby
Author: Quenby
Section: Tweaks
Depends: mobilesubstrate, firmware (>= 14.0)
CONTROL
    if command -v dpkg-deb >/dev/null; then
      dpkg-deb -Zgzip --root-owner-group -b "$root" "$out/quenby_${version}_${arch}.deb" >/dev/null
      echo "package-ios: $out/quenby_${version}_${arch}.deb"
    else
      echo "package-ios: laid out in $root (no dpkg-deb to build the .deb)"
    fi
    ;;
  sideload)
    [ -n "$app" ] && [ -d "$app" ] || die "--app must name an unpacked .app folder"
    exe=$(/usr/libexec/PlistBuddy -c 'Print :CFBundleExecutable' "$app/Info.plist" 2>/dev/null || true)
    mkdir -p "$app/Frameworks"
    cp "$dylib" "$app/Frameworks/libquenby.dylib"
    # The app's own Frameworks folder, named from the executable: an @rpath
    # name loads only where the host happens to have that rpath.
    load="@executable_path/Frameworks/libquenby.dylib"
    if [ -n "$exe" ] && command -v insert_dylib >/dev/null; then
      insert_dylib --inplace --all-yes "$load" "$app/$exe" >/dev/null
      listed=""
      if command -v otool >/dev/null; then
        listed=$(otool -L "$app/$exe")
      elif command -v llvm-objdump >/dev/null; then
        listed=$(llvm-objdump --macho --dylibs-used "$app/$exe")
      fi
      if [ -z "$listed" ]; then
        echo "package-ios: $app/$exe now loads $load (no otool or llvm-objdump to check it)"
      elif grep -qF "$load" <<<"$listed"; then
        echo "package-ios: $app/$exe now loads $load"
      else
        die "$app/$exe does not list $load after insert_dylib"
      fi
    else
      echo "package-ios: copied to $app/Frameworks; add the load command $load to the app's executable (see README)"
    fi
    ;;
  *) usage ;;
esac
