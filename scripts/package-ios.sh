#!/usr/bin/env bash
# Lays out the jailbreak package of libquenby.dylib, or places the dylib in an
# unpacked app for side-loading. The host app's bundle identifier is a setting
# (--bundle-id, or QUENBY_HOST_BUNDLE_ID in the ios build), never built in.
#
#   package-ios.sh deb --bundle-id ID [--dylib PATH] [--out DIR] [--version V] [--rootless]
#                      [--ldid | --unsigned]
#       DIR/root/Library/MobileSubstrate/DynamicLibraries/Quenby.dylib and
#       Quenby.plist (the loader's filter: only the host app loads it), DEBIAN/control,
#       and DIR/quenby_V_ARCH.deb when dpkg-deb is available. --rootless puts
#       the tree under var/jb/ for rootless jailbreaks. A dylib the linker
#       signed (ios-sdk, ios-check) keeps that ad-hoc signature; --ldid signs
#       it again with ldid -S; an unsigned one is signed with ldid or codesign
#       when at hand. --unsigned leaves the dylib as built.
#   package-ios.sh sideload --app PATH/Host.app [--dylib PATH]
#       Copies the dylib into Host.app/Frameworks/ and adds the load command
#       @executable_path/Frameworks/libquenby.dylib to the app's executable
#       (scripts/add-load-command.py, which needs Python's macholib), then
#       checks that the executable lists it (otool or llvm-objdump); signing
#       and installing are left to the person (see README).
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
sign_with=auto

usage() {
  sed -n '2,24p' "$0" | sed 's/^# \{0,1\}//' >&2
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
    --unsigned) sign_with=none; shift ;;
    --ldid) sign_with=ldid; shift ;;
    *) usage ;;
  esac
done

die() {
  echo "package-ios: $*" >&2
  exit 1
}

[ -f "$dylib" ] || die "no dylib at $dylib (build it with: cmake --preset ios && cmake --build --preset ios)"

# The load commands of a Mach-O file, with whichever tool is at hand.
load_commands() {
  local tool
  for tool in otool llvm-objdump-14 llvm-objdump; do
    if command -v "$tool" >/dev/null; then
      if [ "$tool" = otool ]; then otool -l "$1"; else "$tool" --macho --private-headers "$1"; fi
      return
    fi
  done
  return 1
}

# The signature a jailbroken device accepts: ad-hoc, by the linker or a signer.
sign() {
  case "$sign_with" in
    none) return ;;
    ldid)
      command -v ldid >/dev/null || die "--ldid given but no ldid here"
      ldid -S "$1"
      return
      ;;
  esac
  if load_commands "$1" 2>/dev/null | grep -q LC_CODE_SIGNATURE; then
    return
  elif command -v ldid >/dev/null; then
    ldid -S "$1"
  elif command -v codesign >/dev/null; then
    codesign -f -s - "$1"
  else
    echo "package-ios: no ldid or codesign; $1 is unsigned" >&2
  fi
}

# The first Python with macholib, for the load-command tool.
macholib_python() {
  local python
  for python in python3 /usr/bin/python3; do
    if "$python" -c 'import macholib' 2>/dev/null; then
      echo "$python"
      return
    fi
  done
  return 1
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
    # The processes the loader puts the library into, one a line: the host,
    # and SpringBoard for the lock-screen guard.
    filter_bundles=(
      "$bundle_id"
      "com.apple.springboard"
    )
    {
      cat <<'PLIST'
<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>Filter</key>
	<dict>
		<key>Bundles</key>
		<array>
PLIST
      printf '\t\t\t<string>%s</string>\n' "${filter_bundles[@]}"
      cat <<'PLIST'
		</array>
	</dict>
</dict>
</plist>
PLIST
    } >"$libdir/Quenby.plist"
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
    exe=$(python3 -c 'import plistlib, sys; print(plistlib.load(open(sys.argv[1], "rb"))["CFBundleExecutable"])' \
      "$app/Info.plist" 2>/dev/null) || die "$app/Info.plist names no CFBundleExecutable"
    [ -f "$app/$exe" ] || die "no executable $app/$exe"
    python=$(macholib_python) || die "the load-command tool needs Python's macholib (Debian: python3-macholib; pip install macholib)"
    # The app's own Frameworks folder, named from the executable: an @rpath
    # name loads only where the host happens to have that rpath.
    load="@executable_path/Frameworks/libquenby.dylib"
    # The executable first: if it refuses, the app is left as it was.
    "$python" "$here/scripts/add-load-command.py" "$app/$exe" "$load" || die "$app/$exe was left unchanged"
    mkdir -p "$app/Frameworks"
    cp "$dylib" "$app/Frameworks/libquenby.dylib"
    if listed=$(load_commands "$app/$exe" 2>/dev/null); then
      grep -qF "name $load " <<<"$listed" || die "$app/$exe does not list $load"
      echo "package-ios: $app/$exe loads $load; $app/Frameworks/libquenby.dylib in place"
    else
      echo "package-ios: $app/$exe loads $load (no otool or llvm-objdump to check it)"
    fi
    ;;
  *) usage ;;
esac
